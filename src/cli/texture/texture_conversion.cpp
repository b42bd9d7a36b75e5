#include "cli/texture/texture_conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iterator>
#include <span>
#include <utility>

#include "cli/texture/texture_diagnostics.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "system/replacement_file.h"
#include "text/ascii.h"
#include "text/printable.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_file.h"

namespace cli {
namespace {

bool begins_as_texture_file(const std::string& path) {
    const os::InputFile file = os::open_input_file(path);
    std::array<std::uint8_t, 8> start{};
    return file != nullptr &&
           begins_as_texture(std::span(start).first(std::fread(start.data(), 1, start.size(), file.get())));
}

struct Input {
    std::optional<Texture> texture;
    std::vector<Diagnostic> diagnostics;  // the error first, if there is one
    ExitCode code = ExitCode::fine;
};

struct Refusal {
    Diagnostic error;
    ExitCode code;
};

Input read_image(const std::string& path, const image::AlphaOptions& alpha) {
    image::Reading reading = image::read(path, alpha);
    Input input;
    if (!reading.texture.has_value()) {
        input.code = image_exit_code(reading.diagnostics.front());
    }
    input.diagnostics = std::move(reading.diagnostics);
    input.texture = std::move(reading.texture);
    return input;
}

Input read_any(const std::string& path, const ConversionOptions& options) {
    if (!has_texture_extension(path) && !begins_as_texture_file(path)) {
        // "auto" means premultiplied here: there is no texture yet whose pixels could decide.
        const bool straight = options.label == AlphaLabel::straight;
        return read_image(path, {options.alpha_bytes, straight ? image::AlphaPixels::straight
                                                               : image::AlphaPixels::premultiplied});
    }
    TextureReading reading = read_texture(path);
    return {std::move(reading.texture), texture_diagnostics(reading, path), texture_exit_code(reading)};
}

std::optional<Refusal> write_texture_file(const std::string& path, const Texture& texture) {
    std::string reason;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, reason);
    if (!file.has_value()) {
        return Refusal{diagnostic::make(image::Code::cannot_open, {path}, reason),
                       ExitCode::cannot_read_or_write};
    }
    if (const std::optional<diagnostic::Diagnostic> error = write_texture(file->temporary_path(), texture);
        error.has_value()) {
        // When writing, a short transfer means a full disk.
        const ExitCode code = error->code == TextureFault::short_transfer ? ExitCode::cannot_read_or_write
                                                                          : texture_exit_code(*error);
        return Refusal{texture_diagnostic(*error, path), code};
    }
    if (!file->put_in_place(reason)) {
        return Refusal{diagnostic::make(image::Code::not_written, {path}, reason),
                       ExitCode::cannot_read_or_write};
    }
    return std::nullopt;
}

/// Adds a warning about names of alpha channels, which textures do not store.
std::optional<Refusal> write_as_texture(Conversion& conversion, const Texture& texture) {
    if (auto refusal = write_texture_file(conversion.output, texture)) {
        return refusal;
    }
    if (const std::vector<std::string> names = names_without_room(texture); !names.empty()) {
        conversion.diagnostics.push_back(diagnostic::make(
            image::Code::names_left_out, {conversion.output},
            "a texture calls every alpha channel Alpha; this drops the name " + text::quoted(names.front()) +
                (names.size() == 1 ? "" : " and " + std::to_string(names.size() - 1) + " more")));
    }
    return std::nullopt;
}

std::optional<Refusal> write_as_image(Conversion& conversion, const Texture& texture,
                                      const ConversionOptions& options) {
    image::WriteOptions write_options;
    write_options.alpha = {options.alpha_bytes, alpha_pixels(options.label, texture)};
    if (options.on_rows) {
        write_options.on_rows = [&](std::int64_t rows) { options.on_rows(rows, texture.height_px); };
    }
    image::Writing writing = image::write(conversion.output, texture, write_options);
    if (writing.error.has_value()) {
        const ExitCode code = image_exit_code(*writing.error);
        return Refusal{std::move(*writing.error), code};
    }
    std::move(writing.warnings.begin(), writing.warnings.end(), std::back_inserter(conversion.diagnostics));
    return std::nullopt;
}

bool lacks_rows(const std::vector<Diagnostic>& diagnostics) {
    return std::any_of(diagnostics.begin(), diagnostics.end(),
                       [](const Diagnostic& one) { return one.code == TextureNotice::rows_missing; });
}

/// Keeps the chosen alpha channels. Says why it cannot; empty on success.
std::string choose_alphas(Texture& texture, const AlphaChoice& choice) {
    std::vector<AlphaChannel>& alphas = texture.alphas;
    switch (choice.kind) {
        case AlphaChoice::Kind::all:
            return {};
        case AlphaChoice::Kind::none:
            alphas.clear();
            return {};
        case AlphaChoice::Kind::one:
            break;
    }
    if (choice.number > alphas.size()) {
        return no_such_alpha_text(choice.number, alphas.size());
    }
    AlphaChannel chosen = std::move(alphas[choice.number - 1]);
    alphas.clear();
    alphas.push_back(std::move(chosen));
    return {};
}

void refuse(Conversion& conversion, ExitCode code, Diagnostic error) {
    conversion.code = most_serious(conversion.code, code);
    conversion.diagnostics.insert(conversion.diagnostics.begin(), std::move(error));
}

/// `refusal` says why `texture` was not written; null if it was.
void conclude(Conversion& conversion, const Texture& texture, std::optional<Refusal> refusal) {
    if (refusal) {
        refuse(conversion, refusal->code, std::move(refusal->error));
    } else {
        conversion.size = texture_size_text(texture);
    }
}

void convert(Conversion& conversion, const ConversionOptions& options) {
    Input input = read_any(conversion.input, options);
    conversion.code = input.code;
    conversion.diagnostics = std::move(input.diagnostics);
    if (!input.texture.has_value()) {
        return;
    }
    Texture& texture = *input.texture;
    if (std::string reason = choose_alphas(texture, options.alpha); !reason.empty()) {
        refuse(conversion, ExitCode::refused,
               diagnostic::make(image::Code::no_such_alpha, {conversion.input}, std::move(reason)));
        return;
    }
    if (options.before_missing_rows && lacks_rows(conversion.diagnostics)) {
        options.before_missing_rows(conversion.diagnostics);
        conversion.diagnostics.clear();
    }
    conclude(conversion, texture,
             has_texture_extension(conversion.output) ? write_as_texture(conversion, texture)
                                                      : write_as_image(conversion, texture, options));
}

}  // namespace

std::optional<AlphaChoice> parse_alpha_choice(std::string_view text) {
    if (text == "all") {
        return AlphaChoice{};
    }
    if (text == "none") {
        return AlphaChoice{AlphaChoice::Kind::none, 0};
    }
    AlphaChoice choice{AlphaChoice::Kind::one, 0};
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, choice.number);
    if (error != std::errc() || stopped != end || choice.number == 0) {
        return std::nullopt;
    }
    return choice;
}

std::optional<AlphaLabel> parse_alpha_label(std::string_view text) {
    if (text == "premultiplied") {
        return AlphaLabel::premultiplied;
    }
    if (text == "straight") {
        return AlphaLabel::straight;
    }
    return text == "auto" ? std::optional(AlphaLabel::pixels) : std::nullopt;
}

void add_alpha_label_option(Options& options, std::string& label) {
    options
        .option("--alpha-label", label,
                "what the texture's colour is, and how to mark an image: premultiplied, as After Effects is "
                "told; straight; or auto, as the pixels show")
        .value_name("LABEL")
        .show_default()
        .check([](const std::string& text) {
            return parse_alpha_label(text) ? std::string()
                                           : '"' + text + "\" is neither premultiplied, straight nor auto";
        })
        .group("Alpha");
}

Conversion save_texture(const Texture& texture, const std::string& output) {
    Conversion conversion;
    conversion.output = output;
    try {
        conclude(conversion, texture, write_as_texture(conversion, texture));
    } catch (const std::exception& failure) {
        refuse(conversion, ExitCode::cannot_read_or_write,
               diagnostic::make(image::Code::gave_up, {output}, failure.what()));
    }
    return conversion;
}

image::AlphaPixels alpha_pixels(AlphaLabel label, const Texture& texture) {
    const bool straight =
        label == AlphaLabel::straight || (label == AlphaLabel::pixels && !texture.alphas.empty() &&
                                          find_alpha_use(texture).use == AlphaUse::straight);
    return straight ? image::AlphaPixels::straight : image::AlphaPixels::premultiplied;
}

Conversion convert_texture(const std::string& input, const std::string& output,
                           const ConversionOptions& options) {
    Conversion conversion;
    conversion.input = input;
    conversion.output = output;
    try {
        std::string why_not;
        if (has_texture_extension(output) || has_texture_extension(input) || begins_as_texture_file(input)) {
            convert(conversion, options);
        } else if (!os::is_regular_file(input, why_not)) {
            refuse(conversion, ExitCode::cannot_read_or_write,
                   diagnostic::make(image::Code::cannot_open, {input}, why_not));
        } else {
            refuse(conversion, ExitCode::refused,
                   diagnostic::make(image::Code::no_texture, {input},
                                    "neither this file nor " + output + " is a texture"));
        }
    } catch (const std::exception& failure) {
        refuse(conversion, ExitCode::cannot_read_or_write,
               diagnostic::make(image::Code::gave_up, {input}, failure.what()));
    }
    return conversion;
}

ExitCode image_exit_code(const diagnostic::Diagnostic& error) {
    const bool prevented = error.code == image::Code::cannot_open || error.code == image::Code::not_written ||
                           error.code == image::Code::gave_up;
    return prevented ? ExitCode::cannot_read_or_write : ExitCode::refused;
}

std::string no_such_alpha_text(std::size_t number, std::size_t alphas) {
    return "there is no alpha channel " + std::to_string(number) + ": the texture has " +
           (alphas == 0 ? "none" : std::to_string(alphas));
}

bool has_texture_extension(const std::string& path) {
    return text::equal_ignoring_case(os::text_of(os::path_of(path).extension()), ".txl");
}

}  // namespace cli
