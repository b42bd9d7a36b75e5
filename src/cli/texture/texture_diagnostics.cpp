#include "cli/texture/texture_diagnostics.h"

#include "cli/report/diagnostic_text.h"

namespace cli {

Diagnostic texture_diagnostic(Diagnostic diagnostic, const std::string& file) {
    diagnostic.at.file = file;
    name_limit(diagnostic, diagnostic.limit);
    if (diagnostic.count > 1) {
        diagnostic.effects.push_back(std::to_string(diagnostic.count) +
                                     " times in the file; this is the first place");
    }
    return diagnostic;
}

std::vector<Diagnostic> texture_diagnostics(const TextureReading& reading, const std::string& file) {
    std::vector<Diagnostic> diagnostics;
    if (reading.error.has_value()) {
        diagnostics.push_back(texture_diagnostic(*reading.error, file));
    }
    for (const Diagnostic& warning : reading.warnings) {
        diagnostics.push_back(texture_diagnostic(warning, file));
    }
    return diagnostics;
}

std::optional<AlphaFinding> alpha_finding(const TextureReading& reading) {
    if (!reading.texture.has_value() || reading.texture->alphas.empty()) {
        return std::nullopt;
    }
    return find_alpha_use(*reading.texture, reading.colour_rows);
}

std::optional<Diagnostic> alpha_note(const TextureReading& reading, const std::string& file) {
    const std::optional<AlphaFinding> finding = alpha_finding(reading);
    if (!finding) {
        return std::nullopt;
    }
    return diagnostic::make(finding->use, {file}, alpha_use_text(*finding));
}

std::string texture_diagnostic_text(const Diagnostic& diagnostic, const Paint& paint) {
    Diagnostic shown = diagnostic;
    if (!shown.within.empty()) {
        shown.within = {chunk_path(diagnostic.within)};
    }
    return diagnostic_text(shown, paint);
}

ExitCode texture_exit_code(const diagnostic::Diagnostic& error) {
    switch (texture_fault(error.code).value_or(TextureFault::bad_value)) {
        case TextureFault::cannot_open:
        case TextureFault::header_not_written:
        case TextureFault::wrong_direction:
        case TextureFault::out_of_memory:
            return ExitCode::cannot_read_or_write;
        case TextureFault::empty_file:
        case TextureFault::not_a_texture:
        case TextureFault::short_transfer:
        case TextureFault::block_too_long:
        case TextureFault::wrong_tag:
        case TextureFault::stray_value:
        case TextureFault::truncated:
        case TextureFault::negative_size:
        case TextureFault::unsupported:
        case TextureFault::over_limit:
        case TextureFault::refused_picture:
        case TextureFault::no_picture:
        case TextureFault::bad_value:
            break;
    }
    return ExitCode::refused;
}

ExitCode texture_exit_code(const TextureReading& reading) {
    return reading.error.has_value() ? texture_exit_code(*reading.error) : ExitCode::fine;
}

std::string texture_size_text(const Texture& texture) {
    const std::size_t alphas = texture.alphas.size();
    return std::to_string(texture.width_px) + " x " + std::to_string(texture.height_px) + ", " +
           (texture.mode == Texture::kGrey ? "grey" : "RGB") + ", " +
           (alphas == 0 ? "no alpha"
                        : std::to_string(alphas) + (alphas == 1 ? " alpha channel" : " alpha channels"));
}

}  // namespace cli
