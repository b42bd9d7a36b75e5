// Frames of any size, region and row length, drawn by the built bundle in a current host and compared with
// the definition. The option bytes: width and height of the picture and of the frame, how the frame is drawn,
// the bytes behind each row, and the four sides of the required region. The rest are the bytes of the
// picture, which are repeated as often as needed.

#include <algorithm>
#include <array>
#include <optional>

#include "check.h"
#include "host_script.h"
#include "input.h"
#include "support/area_average.h"
#include "texture/value/texture_file.h"

const std::size_t kOptionBytes = 10;

namespace {

constexpr std::uint8_t kFill = 0xA7;

A_long take_side(Input& input) {
    return 1 + input.take() % 32;
}

Texture take_picture(Input& input) {
    Texture picture;
    picture.width_px = take_side(input);
    picture.height_px = take_side(input);
    picture.mode = Texture::kRgb;
    return picture;
}

embedded::FrameShape take_shape(Input& input) {
    embedded::FrameShape shape;
    shape.width_px = take_side(input);
    shape.height_px = take_side(input);
    shape.fill = kFill;
    return shape;
}

void fill(PixelBuffer& buffer, std::span<const std::uint8_t> bytes, std::size_t& next) {
    for (std::uint8_t& byte : buffer) {
        byte = bytes.empty() ? 0 : bytes[next++ % bytes.size()];
    }
}

std::array<std::uint8_t, 4> channels_of(const Texture& picture, A_long x, A_long y) {
    const auto at = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width_px) +
                    static_cast<std::size_t>(x);
    return {picture.alphas.empty() ? std::uint8_t{255} : picture.alphas[0].values[at], picture.pixels[3 * at],
            picture.pixels[3 * at + 1], picture.pixels[3 * at + 2]};
}

// The part of the frame that a region requires: all of it if the region has no pixels, nothing if it lies
// outside.
std::optional<A_LRect> part_of(const embedded::FrameShape& shape) {
    const A_LRect whole = {0, 0, shape.width_px, shape.height_px};
    const A_LRect region = shape.required_region.value_or(whole);
    if (region.left >= region.right || region.top >= region.bottom) {
        return whole;
    }
    const A_LRect part = {std::max(region.left, 0), std::max(region.top, 0),
                          std::min(region.right, shape.width_px), std::min(region.bottom, shape.height_px)};
    return part.left < part.right && part.top < part.bottom ? std::optional(part) : std::nullopt;
}

void check_pixels(const Texture& picture, const embedded::FrameShape& shape, const A_LRect& part,
                  const std::vector<PF_Pixel>& drawn) {
    std::size_t at = 0;
    for (A_long y = 0; y < shape.height_px; ++y) {
        for (A_long x = 0; x < shape.width_px; ++x) {
            const PF_Pixel& pixel = drawn.at(at++);
            const std::array<std::uint8_t, 4> seen = {pixel.alpha, pixel.red, pixel.green, pixel.blue};
            const bool inside = x >= part.left && x < part.right && y >= part.top && y < part.bottom;
            for (std::size_t channel = 0; channel < seen.size(); ++channel) {
                const std::uint8_t expected =
                    inside ? area_average(x, y, shape.width_px, shape.height_px, picture.width_px,
                                          picture.height_px,
                                          [&](A_long column, A_long row) {
                                              return channels_of(picture, column, row)[channel];
                                          })
                           : kFill;
                require(seen[channel] == expected, "each pixel is the mean of its area, or was not required");
            }
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Texture picture = take_picture(input);
    embedded::FrameShape shape = take_shape(input);
    const std::uint8_t way = input.take();
    const bool from_a_copy = (way & 1U) != 0;
    const bool upwards = (way & 2U) != 0;
    const bool in_part = (way & 4U) != 0;
    const bool with_alpha = (way & 8U) != 0;
    const A_long row_bytes = shape.width_px * 4 + input.take() % 16;
    shape.row_bytes = upwards ? -row_bytes : row_bytes;
    A_LRect region = {};
    for (A_long* side : {&region.left, &region.top, &region.right, &region.bottom}) {
        *side = A_long{input.take()} - 128;
    }
    if (in_part) {
        shape.required_region = region;
    }
    std::size_t next = 0;
    picture.pixels = PixelBuffer(picture.pixel_count() * 3);
    fill(picture.pixels, input.rest(), next);
    if (with_alpha) {
        picture.alphas.push_back({"Alpha", PixelBuffer(picture.pixel_count())});
        fill(picture.alphas[0].values, input.rest(), next);
    }
    const std::string path = scratch().path("picture.txl");
    require(!write_texture(path, picture).has_value(), "the picture is written");

    embedded::HostOptions options;
    options.version = {13, from_a_copy ? 5 : 0};
    HostWithBundle bundle(options);
    require(bundle.loaded(), "the bundle loads");
    const embedded::OpenResult opened = bundle.host().open_with_module(path);
    require(opened.error.empty(), "the picture is opened");
    const embedded::DrawResult drawn = bundle.host().draw(opened.in_spec, shape);
    require(drawn.error.empty(), "the frame is requested");
    const std::optional<A_LRect> part = part_of(shape);
    require(drawn.callback.code == (part ? kHostErrorNone : kHostErrorParameter),
            "a frame is drawn unless its region lies outside");
    check_pixels(picture, shape, part.value_or(A_LRect{}), drawn.pixels);
    require(bundle.host().conformance().clean(), "no rule of the host is broken");
    bundle.check(false);
    return 0;
}
