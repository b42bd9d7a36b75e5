#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "texture/value/texture.h"

// How the channels of images and of textures correspond, in both directions.

namespace imageio {

/// Where each channel of an image is stored in a texture.
struct ChannelPlan {
    std::int32_t mode = Texture::kRgb;
    std::vector<int> colour;  // indices of the image's channels: one for grey; R, G, B for RGB
    std::vector<int> alphas;  // all other channels: the image's own alpha first, the rest in order, "Alpha.2"
                              // before "Alpha.10"

    [[nodiscard]] int channels() const { return static_cast<int>(colour.size() + alphas.size()); }
};

/// Chooses colour by name if it can: "R", "G", "B" at any position, else "Y" for grey. Otherwise by position:
/// one or two channels are grey (and alpha), three or more are RGB (and alphas). The image's alpha channel is
/// never colour unless it is the only channel.
[[nodiscard]] ChannelPlan plan_channels(const OIIO::ImageSpec& spec);

/// What plan_channels guessed, in words: grey from "Y", alpha from "X", "Z". Empty when every channel is
/// called what it becomes: red, green, blue, grey or alpha. Channels that a format leaves without a name
/// ("channel4") are further alphas by custom.
[[nodiscard]] std::string guess_text(const OIIO::ImageSpec& spec, const ChannelPlan& plan);

/// "Y" or "R", "G", "B", then "A" for the first alpha and the layers' own names for the others. Names are
/// unique: a name that an earlier channel has gets the suffix ".2", ".3" and so on.
[[nodiscard]] std::vector<std::string> channel_names(const Texture& texture);

/// The names, in quotes and separated by commas; of more than eight the first eight and the number of the
/// others.
[[nodiscard]] std::string list_text(const std::vector<std::string>& names);

/// Copies row `y` of `texture` to `row`, width * channels bytes, with channels interleaved in the order of
/// `channel_names`.
void copy_row_out(const Texture& texture, std::int32_t y, std::uint8_t* row);

/// Stores `count` pixels of `image_channels` interleaved bytes each at (x, y) and to its right, as `plan`
/// says. The pixels must lie inside the texture, which must have the plan's mode and number of alphas.
void copy_row_in(Texture& texture, const ChannelPlan& plan, std::int32_t x, std::int32_t y,
                 std::int32_t count, const std::uint8_t* row, int image_channels);

/// A texture of this size with the channels of `plan`, all of them 0, whose alphas are named as in `spec`.
/// Throws std::bad_alloc.
[[nodiscard]] Texture make_texture(std::int32_t width_px, std::int32_t height_px, const ChannelPlan& plan,
                                   const OIIO::ImageSpec& spec);

}  // namespace imageio
