// The bridge's reduction of frames beside OpenImageIO's resize with the box filter, an independent program
// that compositors know.

#include "host/bridge/frame_reduction.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

#include "host/entry_points.h"

// The bridge calls the plug-in's entry, and this program has no plug-in.
A_Err Main_VORTANXR_AE(SPBasicSuite* /*basic*/, A_long /*majorVersion*/, A_long /*minorVersion*/,
                       const A_char* /*filePath*/, const A_char* /*resourcePath*/, AEGP_PluginID /*pluginId*/,
                       AEGP_GlobalRefcon* /*refcon*/) {
    return kHostErrorGeneric;
}

namespace {

using bridge::FrameSize;

constexpr int kChannels = 4;

std::size_t bytes_of(FrameSize size) {
    return static_cast<std::size_t>(size.width_px) * static_cast<std::size_t>(size.height_px) * kChannels;
}

std::vector<unsigned char> reduced(const std::vector<unsigned char>& picture, FrameSize from, FrameSize to) {
    std::vector<PF_Pixel> pixels(picture.size() / kChannels);
    std::memcpy(pixels.data(), picture.data(), picture.size());
    std::vector<unsigned char> frame(bytes_of(to));
    PF_LayerDef world{};
    world.data = reinterpret_cast<PF_Pixel*>(frame.data());
    world.width = to.width_px;
    world.height = to.height_px;
    world.row_bytes = to.width_px * kChannels;
    bridge::reduce_picture({pixels.data(), static_cast<std::size_t>(from.width_px), from},
                           {0, 0, to.width_px, to.height_px}, world);
    return frame;
}

std::vector<unsigned char> resized(const std::vector<unsigned char>& picture, FrameSize from, FrameSize to) {
    const OIIO::ImageSpec spec(from.width_px, from.height_px, kChannels, OIIO::TypeDesc::UINT8);
    const OIIO::ImageBuf source(spec, const_cast<unsigned char*>(picture.data()));
    const OIIO::ROI roi(0, to.width_px, 0, to.height_px, 0, 1, 0, kChannels);
    const OIIO::ImageBuf target = OIIO::ImageBufAlgo::resize(source, "box", 0.0F, roi);
    EXPECT_FALSE(target.has_error()) << target.geterror();
    std::vector<unsigned char> frame(bytes_of(to));
    EXPECT_TRUE(target.get_pixels(roi, OIIO::TypeDesc::UINT8, frame.data()));
    return frame;
}

int largest_difference(const std::vector<unsigned char>& one, const std::vector<unsigned char>& other) {
    int largest = 0;
    for (std::size_t i = 0; i < one.size(); ++i) {
        largest = std::max(largest, std::abs(int{one[i]} - int{other[i]}));
    }
    return largest;
}

struct Case {
    const char* name;
    FrameSize from;
    FrameSize to;
};

// OpenImageIO's box takes whole pixels, those whose centre lies under it. Where every pixel of the frame
// covers whole pixels, the two must agree on anything.
const Case kWhole[] = {
    {"half", {128, 96}, {64, 48}},          {"a third", {129, 96}, {43, 32}},
    {"a quarter", {128, 96}, {32, 24}},     {"half across, a third down", {64, 99}, {32, 33}},
    {"one pixel of all", {31, 17}, {1, 1}}, {"equal", {40, 30}, {40, 30}},
};

TEST(FrameReductionBesideOpenImageIO, AgreesWithin1Of255OnNoise) {
    for (const Case& c : kWhole) {
        std::mt19937 random(3);
        std::vector<unsigned char> picture(bytes_of(c.from));
        std::generate(picture.begin(), picture.end(),
                      [&random] { return static_cast<unsigned char>(random()); });
        EXPECT_LE(largest_difference(reduced(picture, c.from, c.to), resized(picture, c.from, c.to)), 1)
            << c.name;
    }
}

// Where pixels are covered in part, the two weigh the border differently, by less than a pixel. On a picture
// that changes by no more than one step from pixel to pixel this is less than one step.
const Case kInPart[] = {
    {"half of odd sides, rounded up", {121, 97}, {61, 49}},
    {"half of odd sides, rounded down", {121, 97}, {60, 48}},
    {"a third, rounded up", {121, 97}, {41, 33}},
    {"seven eighths", {120, 96}, {105, 84}},
    {"a frame of other proportions", {121, 97}, {50, 90}},
};

TEST(FrameReductionBesideOpenImageIO, AgreesWithin1Of255OnSmoothPictures) {
    for (const Case& c : kInPart) {
        std::vector<unsigned char> picture;
        for (A_long y = 0; y < c.from.height_px; ++y) {
            for (A_long x = 0; x < c.from.width_px; ++x) {
                for (const A_long value : {x, y, 255 - x, (x + y) / 2}) {
                    picture.push_back(static_cast<unsigned char>(value));
                }
            }
        }
        EXPECT_LE(largest_difference(reduced(picture, c.from, c.to), resized(picture, c.from, c.to)), 1)
            << c.name;
    }
}

TEST(FrameReductionBesideOpenImageIO, TheComparisonSeesAnotherPicture) {
    std::vector<unsigned char> picture(bytes_of({8, 8}), 100);
    const std::vector<unsigned char> resized_picture = resized(picture, {8, 8}, {4, 4});
    picture[0] += 20;
    EXPECT_EQ(largest_difference(reduced(picture, {8, 8}, {4, 4}), resized_picture), 5);
}

}  // namespace
