// The numbers of a camera, a light and a null, exact to the last bit and the signs of zeros. scene_numbers.py
// prints the table. It computes the numbers from the text of the scene without the importer: single precision
// is rounded from exact decimals, sines and tangents are summed in exact fractions, and the operations follow
// the order of the formulas.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/loaded_bundle.h"
#include "support/temporary_folder.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Layers by their names.
constexpr const char* kCamera = "Camera";
constexpr const char* kLight = "Light";
constexpr const char* kNull = "Null";

constexpr int kNoKey = -1;  // the stream's static value

struct Number {
    const char* layer;
    AEGP_LayerStream stream;
    int frame;  // of the key, counted from FROM
    embedded::StreamComponents components;
};

// clang-format off
const Number kNumbers[] = {
    {kCamera, kLayerStreamPosition, 0, {0x1.8ae1480000000p+3, 0x1.c63d700000000p+5, 0x1.c70e140000000p+9}},
    {kCamera, kLayerStreamAnchorPoint, 0, {-0x1.41b53b349ee81p+8, 0x1.83cbd0c2b9f44p+7, 0x1.62a98f6db3800p+10}},
    {kCamera, kLayerStreamOrientation, 0, {0x0.0p+0, 0x0.0p+0, 0x1.f147ae0000000p+2}},
    {kCamera, kLayerStreamZoom, 0, {0x1.4c02790d76294p+10}},
    {kCamera, kLayerStreamPosition, 1, {0x0.0p+0, 0x0.0p+0, -0x0.0p+0}},
    {kCamera, kLayerStreamAnchorPoint, 1, {0x0.0p+0, 0x0.0p+0, 0x1.99999a0000000p-4}},
    {kCamera, kLayerStreamOrientation, 1, {0x0.0p+0, 0x0.0p+0, -0x0.0p+0}},
    {kCamera, kLayerStreamZoom, 1, {0x1.f480000000001p+8}},
    {kCamera, kLayerStreamPosition, 2, {0x1.0624de0000000p-10, -0x1.ff933c0000000p+127, -0x1.05563c0000000p-126}},
    {kCamera, kLayerStreamAnchorPoint, 2, {-0x1.bc1e8eda3b16ap-7, -0x1.ff933c0000000p+127, -0x1.3b1e54f21f6d0p-7}},
    {kCamera, kLayerStreamOrientation, 2, {0x0.0p+0, 0x0.0p+0, -0x1.0624de0000000p-10}},
    {kCamera, kLayerStreamZoom, 2, {0x1.c0116c31e8439p+16}},
    {kCamera, kLayerStreamPosition, 3, {0x0.0p+0, 0x0.0p+0, 0x0.0p+0}},
    {kCamera, kLayerStreamAnchorPoint, 3, {0x0.0p+0, 0x1.ffd253c94e6cdp-51, 0x1.d000000000000p+2}},
    {kCamera, kLayerStreamOrientation, 3, {0x0.0p+0, 0x0.0p+0, 0x1.6800000000000p+8}},
    {kCamera, kLayerStreamZoom, 3, {kInfinity}},
    {kLight, kLayerStreamPosition, 0, {-0x1.90199a0000000p+8, -0x1.2c199a0000000p+9, -0x1.f44ccc0000000p+8}},
    {kLight, kLayerStreamAnchorPoint, 0, {0x1.afdaaf60f7290p+4, 0x1.2d8f8f629c718p+6, 0x1.92b3750ecbf48p+6}},
    {kLight, kLayerStreamOrientation, 0, {0x0.0p+0, 0x0.0p+0, 0x1.3333340000000p-1}},
    {kLight, kLayerStreamColor, kNoKey, {0x1.0000000000000p+0, 0x1.99999a0000000p-4, 0x1.99999a0000000p-3, 0x1.3333340000000p-2}},
    {kLight, kLayerStreamIntensity, kNoKey, {0x1.1800000000000p+5}},
    {kLight, kLayerStreamCastsShadows, kNoKey, {0x1.0000000000000p+0}},
    {kNull, kLayerStreamPosition, 0, {0x1.6666660000000p-1, 0x0.0p+0, -0x0.0p+0}},
    {kNull, kLayerStreamXRotation, 0, {0x1.4333340000000p+3}},
    {kNull, kLayerStreamYRotation, 0, {-0x0.0p+0}},
    {kNull, kLayerStreamZRotation, 0, {-0x1.4333340000000p+4}},
    {kNull, kLayerStreamPosition, 1, {0x0.0p+0, 0x0.0p+0, 0x1.cccccc0000000p-1}},
    {kNull, kLayerStreamXRotation, 1, {-0x0.0p+0}},
    {kNull, kLayerStreamYRotation, 1, {0x0.0p+0}},
    {kNull, kLayerStreamZRotation, 1, {0x0.0p+0}},
};
// clang-format on

const embedded::Layer& layer_named(const embedded::Project& project, const std::string& name) {
    for (const embedded::Layer& layer : project.layers) {
        if (layer.name == name) {
            return layer;
        }
    }
    throw std::runtime_error("no layer " + name);
}

std::string bits(double value) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%a (%.17g)", value, value);
    return text.data();
}

TEST(Numbers, ReachTheHostToTheLastBit) {
    const TemporaryFolder folder;
    const std::string path = folder.path("numbers.aec");
    std::filesystem::copy_file(VXR_END_TO_END_DIR "/scenes/numbers.aec", path);
    LoadedBundle bundle;
    ASSERT_EQ(bundle.loaded().error, "");
    ASSERT_EQ(bundle.host().import_file(path).code, 0);
    const embedded::Project& project = bundle.host().project();
    ASSERT_EQ(project.layers.size(), 3U);

    std::map<std::pair<std::string, AEGP_LayerStream>, std::size_t> keys_checked;
    for (const Number& number : kNumbers) {
        SCOPED_TRACE(std::string(number.layer) + " stream " + std::to_string(number.stream) + " frame " +
                     std::to_string(number.frame));
        const auto& streams = layer_named(project, number.layer).streams;
        ASSERT_TRUE(streams.contains(number.stream));
        const embedded::Stream& stream = streams.at(number.stream);
        const embedded::StreamComponents* components = &stream.value;
        if (number.frame == kNoKey) {
            EXPECT_TRUE(stream.value_set);
            EXPECT_TRUE(stream.keyframes.empty());
        } else {
            const std::size_t index = keys_checked[{number.layer, number.stream}]++;
            ASSERT_LT(index, stream.keyframes.size());
            EXPECT_EQ(stream.keyframes[index].time.value, number.frame);
            EXPECT_EQ(stream.keyframes[index].time.scale, 30U);
            components = &stream.keyframes[index].value;
        }
        for (std::size_t i = 0; i < components->size(); ++i) {
            EXPECT_EQ(std::bit_cast<std::uint64_t>((*components)[i]),
                      std::bit_cast<std::uint64_t>(number.components[i]))
                << "component " << i << " is " << bits((*components)[i]) << ", expected "
                << bits(number.components[i]);
        }
    }
    // There are no keys beyond the table.
    for (const embedded::Layer& layer : project.layers) {
        for (const auto& [kind, stream] : layer.streams) {
            EXPECT_EQ(stream.keyframes.size(), (keys_checked[{layer.name, kind}]))
                << layer.name << " " << kind;
        }
    }
}

TEST(Numbers, ZoomBeforeTheFirstKeyEqualsThatOfTheFirstKey) {
    const TemporaryFolder folder;
    const std::string path = folder.path("numbers.aec");
    std::filesystem::copy_file(VXR_END_TO_END_DIR "/scenes/numbers.aec", path);
    LoadedBundle bundle;
    ASSERT_EQ(bundle.host().import_file(path).code, 0);
    const embedded::Stream& zoom = layer_named(bundle.host().project(), kCamera).streams.at(kLayerStreamZoom);
    EXPECT_TRUE(zoom.value_set);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(zoom.value[0]),
              std::bit_cast<std::uint64_t>(zoom.keyframes.at(0).value[0]));
}

}  // namespace
