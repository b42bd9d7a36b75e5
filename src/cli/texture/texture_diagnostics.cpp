#include "cli/texture/texture_diagnostics.h"

#include <array>
#include <cstddef>
#include <utility>

#include "cli/report/diagnostic_text.h"

// The reader's codes as domains of src/diagnostic; the reader itself knows their names only.

const diagnostic::CodeInfo& code_info(TextureFault fault) {
    static const auto kTable = [] {
        std::array<diagnostic::CodeInfo, static_cast<std::size_t>(TextureFault::bad_value) + 1> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = {fault_name(static_cast<TextureFault>(i)), diagnostic::Severity::error, ""};
        }
        return table;
    }();
    return kTable[static_cast<std::size_t>(fault)];
}

const diagnostic::CodeInfo& code_info(TextureNotice notice) {
    static const auto kTable = [] {
        std::array<diagnostic::CodeInfo, static_cast<std::size_t>(TextureNotice::cut_off) + 1> table{};
        for (std::size_t i = 0; i < table.size(); ++i) {
            table[i] = {notice_name(static_cast<TextureNotice>(i)), diagnostic::Severity::warning, ""};
        }
        return table;
    }();
    return kTable[static_cast<std::size_t>(notice)];
}

namespace cli {
namespace {

/// What a repaired or skipped part means for the picture.
const char* effect_of(TextureNotice notice) {
    switch (notice) {
        case TextureNotice::row_cleared:
            return "that channel of the row is 0 throughout";
        case TextureNotice::row_repeated:
            return "that channel of the row repeats the row before";
        case TextureNotice::chunk_skipped:
            return "the chunk is passed over with everything in it";
        case TextureNotice::layer_without_alpha:
            return "the layer's alpha channel is 0 throughout";
        case TextureNotice::outside_picture:
            return "what is outside the picture is dropped";
        case TextureNotice::second_header:
            return "what was read before it is dropped";
        case TextureNotice::cut_off:
            return "the chunks that are missing are not known; what is there is used";
    }
    return "";
}

}  // namespace

Diagnostic texture_error(const TextureError& error, const std::string& file) {
    Place at{file};
    // A file that could not be looked at has no place that is worth showing.
    if (error.offset_bytes > 0 || !error.within.empty()) {
        at.offset_bytes = error.offset_bytes;
    }
    Diagnostic diagnostic = diagnostic::make(error.code, std::move(at), error.reason, error.within);
    name_limit(diagnostic, error.limit);
    return diagnostic;
}

Diagnostic texture_warning(const TextureWarning& warning, const std::string& file) {
    Diagnostic diagnostic =
        diagnostic::make(warning.code, Place{file, warning.offset_bytes}, warning.reason, warning.within);
    diagnostic.effects.emplace_back(effect_of(warning.code));
    diagnostic.count = warning.count;
    if (warning.count > 1) {
        diagnostic.effects.push_back(std::to_string(warning.count) + " times in the file, here first");
    }
    return diagnostic;
}

std::vector<Diagnostic> texture_diagnostics(const TextureReading& reading, const std::string& file) {
    std::vector<Diagnostic> diagnostics;
    if (reading.error.has_value()) {
        diagnostics.push_back(texture_error(*reading.error, file));
    }
    for (const TextureWarning& warning : reading.warnings) {
        diagnostics.push_back(texture_warning(warning, file));
    }
    return diagnostics;
}

std::string texture_diagnostic_text(const Diagnostic& diagnostic, const Paint& paint) {
    Diagnostic shown = diagnostic;
    if (!shown.within.empty()) {
        shown.within = {chunk_path(diagnostic.within)};
    }
    return diagnostic_text(shown, paint);
}

ExitCode texture_exit_code(const TextureError& error) {
    switch (error.code) {
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
