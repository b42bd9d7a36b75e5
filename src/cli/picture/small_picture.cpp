#include "cli/picture/small_picture.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "cli/texture/texture_conversion.h"
#include "cli/texture/texture_diagnostics.h"
#include "image/codes.h"
#include "limit/limits.h"
#include "texture/value/texture_file.h"

namespace cli {
namespace {

/// The reader allows less here than `vxr limits` says, and its reason has the number.
void drop_general_limit(TextureReading& reading) {
    if (reading.error && reading.error->limit == &limits::kDecodedBytes) {
        reading.error->limit = nullptr;
    }
}

bool shows_nothing(const render::Picture& picture) {
    for (std::size_t i = 3; i < picture.bytes.size(); i += 4) {
        if (picture.bytes[i] != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

void add_look_options(Options& options, TextureLook& look) {
    options
        .option("--alpha", look.alpha,
                "the alpha channel to show, by its number, or none; without this the first, unless that is 0 "
                "everywhere")
        .value_name("N|none")
        .check([](const std::string& text) {
            const std::optional<AlphaChoice> choice = parse_alpha_choice(text);
            return choice && choice->kind != AlphaChoice::Kind::all
                       ? std::string()
                       : '"' + text + "\" is neither none nor a number from 1";
        })
        .group("Alpha");
    add_alpha_label_option(options, look.label);
}

SmallPicture read_small_picture(const std::string& path, const TextureLook& look, std::int32_t most_width_px,
                                std::int32_t most_height_px) {
    TextureReadOptions options;
    options.limits.decoded_bytes = static_cast<std::uint64_t>(limits::kShownTexture_bytes);
    TextureReading reading = read_texture(path, options);
    drop_general_limit(reading);
    SmallPicture small{texture_exit_code(reading), texture_diagnostics(reading, path), std::nullopt, {}};
    if (!reading.texture) {
        return small;
    }
    const Texture& texture = *reading.texture;
    const AlphaChoice choice = parse_alpha_choice(look.alpha).value_or(AlphaChoice{});
    const std::size_t number = choice.kind == AlphaChoice::Kind::one ? choice.number : 1;
    if (choice.kind == AlphaChoice::Kind::one && number > texture.alphas.size()) {
        small.code = ExitCode::refused;
        small.diagnostics.insert(small.diagnostics.begin(),
                                 diagnostic::make(image::Code::no_such_alpha, {path},
                                                  no_such_alpha_text(number, texture.alphas.size())));
        return small;
    }
    const bool wanted = choice.kind != AlphaChoice::Kind::none && number <= texture.alphas.size();
    const image::AlphaPixels pixels = alpha_pixels(*parse_alpha_label(look.label), texture);
    const render::FittedSize size =
        render::fitted_size(texture.width_px, texture.height_px, most_width_px, most_height_px);
    small.size = texture_size_text(texture);
    small.picture = render::reduced(texture, wanted ? &texture.alphas[number - 1].values : nullptr, pixels,
                                    size.width_px, size.height_px);
    if (wanted && look.alpha.empty() && shows_nothing(*small.picture)) {
        small.picture = render::reduced(texture, nullptr, pixels, size.width_px, size.height_px);
    }
    return small;
}

image::Writing write_png(const render::Picture& straight, const std::string& path) {
    image::WriteOptions options;
    options.format = "png";
    options.alpha.pixels = image::AlphaPixels::straight;
    return image::write(
        path, straight.has_alpha ? render::texture_with_alpha_of(straight) : render::texture_of(straight),
        options);
}

}  // namespace cli
