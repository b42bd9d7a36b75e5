#include "texture/both_loads.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "texture/txl/bitmap_invariants.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_invariants.h"

namespace {

void expect_same_pixels(const BaseBitmap& bitmap, const Texture& texture) {
    constexpr std::int64_t kSamples = 1000;
    const std::int64_t pixel_count = std::int64_t{texture.width_px} * texture.height_px;
    const auto channels = static_cast<std::size_t>(texture.channels());
    const std::int64_t step = std::max<std::int64_t>(1, pixel_count / kSamples);
    for (std::int64_t i = 0; i < pixel_count; i += step) {
        const auto x = static_cast<std::int32_t>(i % texture.width_px);
        const auto y = static_cast<std::int32_t>(i / texture.width_px);
        std::array<std::uint16_t, 3> rgb{};
        ASSERT_EQ(bitmap.GetPixel(x, y, &rgb[0], &rgb[1], &rgb[2]), 0);
        const std::uint8_t* pixel = texture.pixels.data() + static_cast<std::size_t>(i) * channels;
        for (std::size_t c = 0; c < 3; ++c) {
            ASSERT_EQ(rgb[c], pixel[c % channels] * 256) << "at " << x << ", " << y << ", channel " << c;
        }
        if (!texture.alphas.empty()) {
            std::uint16_t alpha = 0;
            ASSERT_EQ(bitmap.GetAlphaPixel(1, x, y, &alpha), 0);
            ASSERT_EQ(alpha, texture.alphas[0].values[static_cast<std::size_t>(i)])
                << "at " << x << ", " << y;
        }
    }
}

void expect_same_picture(const BaseBitmap& bitmap, const Texture& texture) {
    ASSERT_EQ(bitmap.width(), texture.width_px);
    ASSERT_EQ(bitmap.height(), texture.height_px);
    ASSERT_EQ(bitmap.GetChannelCount(), texture.alphas.empty() ? 0 : 1);
    expect_same_pixels(bitmap, texture);
}

}  // namespace

BothLoads::BothLoads(const std::string& path) {
    ExampleTXLImage image(&bitmap);
    TXLImageFilter filter;
    loaded = filter.LoadImage(path.c_str(), &image);
    error = filter.GetError();
    EXPECT_EQ(validate_bitmap(bitmap), std::nullopt);
    reading = read_texture(path);
    EXPECT_NE(reading.texture.has_value(), reading.error.has_value());
    if (reading.texture.has_value()) {
        EXPECT_TRUE(loaded);
        EXPECT_EQ(validate_texture(*reading.texture), std::nullopt);
        expect_same_picture(bitmap, *reading.texture);
        return;
    }
    EXPECT_FALSE(reading.error->reason.empty());
    EXPECT_EQ(reading.error->at.file, path);
    // Only these two failures load as a picture and yield no texture.
    const bool no_texture = reading.error->code == TextureFault::no_picture ||
                            (reading.error->code == TextureFault::unsupported && error == 0);
    EXPECT_EQ(loaded, no_texture);
    if (!loaded) {
        EXPECT_EQ(container_code(texture_fault(reading.error->code).value()), error) << reading.error->reason;
    }
}
