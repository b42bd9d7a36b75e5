#pragma once

// The bundle in a current host, and the frames that it must draw there.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "end_to_end/texture_scene.h"
#include "support/area_average.h"
#include "support/loaded_bundle.h"
#include "support/temporary_folder.h"

inline constexpr std::uint8_t kFill = 0x3C;

inline embedded::HostOptions current(A_long minor) {
    embedded::HostOptions options;
    options.version = {13, minor};
    return options;
}

/// A host that draws in its own in-specs, and one that draws on another thread from copies.
inline constexpr A_long kDrawsItself = 4;
inline constexpr A_long kDrawsCopies = 5;

struct CurrentBundle : LoadedBundle {
    explicit CurrentBundle(A_long minor) : LoadedBundle(current(minor), embedded::HostGeneration::today) {
        EXPECT_EQ(loaded().error, "");
    }
    /// Everything that the host found, after the bundle is unloaded.
    std::string findings() {
        host().unload();
        return host().conformance().to_text();
    }
};

/// Writes a texture and returns its path.
inline std::string written(const TemporaryFolder& folder, const std::string& name, const Texture& texture) {
    const std::string path = folder.path(name);
    if (const auto error = write_texture(path, texture)) {
        throw std::runtime_error(error->reason);
    }
    return path;
}

/// Alpha, red, green and blue.
inline std::vector<int> channels(const PF_Pixel& pixel) {
    return {pixel.alpha, pixel.red, pixel.green, pixel.blue};
}

/// A frame of this size, filled with kFill.
inline embedded::FrameShape frame_of(A_long width_px, A_long height_px) {
    embedded::FrameShape shape;
    shape.width_px = width_px;
    shape.height_px = height_px;
    shape.fill = kFill;
    return shape;
}

/// The pixels of a frame of this shape that shows the whole texture; kFill outside its required region.
inline std::vector<std::vector<int>> expected_pixels(const Texture& texture,
                                                     const embedded::FrameShape& shape) {
    const A_LRect region = shape.required_region.value_or(A_LRect{0, 0, shape.width_px, shape.height_px});
    std::vector<std::vector<int>> all;
    for (A_long y = 0; y < shape.height_px; ++y) {
        for (A_long x = 0; x < shape.width_px; ++x) {
            std::vector<int>& pixel = all.emplace_back(4, kFill);
            if (x < region.left || x >= region.right || y < region.top || y >= region.bottom) {
                continue;
            }
            for (std::size_t channel = 0; channel < 4; ++channel) {
                pixel[channel] = area_average(x, y, shape.width_px, shape.height_px, texture.width_px,
                                              texture.height_px, [&](A_long column, A_long row) {
                                                  return channels(frame_pixel(texture, column, row))[channel];
                                              });
            }
        }
    }
    return all;
}

inline void expect_pixels(const embedded::DrawResult& drawn, const std::vector<std::vector<int>>& expected) {
    EXPECT_EQ(drawn.error, "");
    EXPECT_EQ(drawn.callback.code, 0);
    ASSERT_EQ(drawn.pixels.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(channels(drawn.pixels[i]), expected[i]) << "pixel " << i;
    }
}

inline void expect_untouched(const embedded::DrawResult& drawn) {
    EXPECT_FALSE(drawn.pixels.empty());
    for (const PF_Pixel& pixel : drawn.pixels) {
        EXPECT_EQ(channels(pixel), std::vector<int>(4, kFill));
    }
}
