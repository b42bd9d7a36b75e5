#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "texture/value/texture.h"

// Which channel of an image is which channel of a texture, in both directions.

namespace imageio {

/// How the channels of an image are stored in a texture.
struct ChannelPlan {
    std::int32_t mode = Texture::kRgb;
    std::vector<int> colour;  // channels of the image: one for grey, R, G, B for RGB
    std::vector<int> alphas;  // all others; the image's own alpha first, the rest in their order

    [[nodiscard]] int channels() const { return static_cast<int>(colour.size() + alphas.size()); }
};

/// By name where the names say it: "R", "G", "B" wherever they stand, else "Y" for grey. Otherwise by
/// position: one or two channels are grey (and alpha), three or more RGB (and alphas). A channel that is the
/// image's alpha is never colour, unless it is the only one.
[[nodiscard]] ChannelPlan plan_channels(const OIIO::ImageSpec& spec);

/// "Y" or "R", "G", "B", then "A" for the first alpha and the layers' own names for the others. No two are
/// the same: a name that an earlier channel has gets ".2", ".3" and so on behind it.
[[nodiscard]] std::vector<std::string> channel_names(const Texture& texture);

/// Row `y` of `texture` as `channel_names` orders it, channels interleaved, into width * channels bytes.
void copy_row_out(const Texture& texture, std::int32_t y, std::uint8_t* row);

/// `count` pixels from (x, y) on, of `image_channels` interleaved bytes each, as `plan` sorts them. They must
/// lie in the texture, which must have the plan's mode and number of alphas.
void copy_row_in(Texture& texture, const ChannelPlan& plan, std::int32_t x, std::int32_t y,
                 std::int32_t count, const std::uint8_t* row, int image_channels);

/// A black texture of this size, with the plan's channels named as its image names them. Throws
/// std::bad_alloc.
[[nodiscard]] Texture make_texture(std::int32_t width_px, std::int32_t height_px, const ChannelPlan& plan,
                                   const OIIO::ImageSpec& spec);

}  // namespace imageio
