// Streams and their keyframes.

#include <gtest/gtest.h>

#include <ctime>

#include "embedded/bundle_side.h"
#include "embedded/layer_model.h"

namespace {

using embedded::Stream;
using embedded::StreamShape;

struct KeyCase {
    const char* name;
    std::vector<std::pair<A_Time, double>> added;
    std::vector<std::pair<A_Time, double>> expected;
};

const KeyCase kKeyCases[] = {
    {"in order", {{{0, 25}, 1.0}, {{1, 25}, 2.0}}, {{{0, 25}, 1.0}, {{1, 25}, 2.0}}},
    {"out of order",
     {{{5, 25}, 5.0}, {{-5, 25}, -5.0}, {{0, 25}, 0.0}},
     {{{-5, 25}, -5.0}, {{0, 25}, 0.0}, {{5, 25}, 5.0}}},
    {"the same time twice: the later one stays", {{{1, 25}, 1.0}, {{1, 25}, 2.0}}, {{{1, 25}, 2.0}}},
    {"the same time on another scale", {{{1, 25}, 1.0}, {{2, 50}, 2.0}}, {{{2, 50}, 2.0}}},
    {"close but not the same", {{{333, 1000}, 1.0}, {{1, 3}, 2.0}}, {{{333, 1000}, 1.0}, {{1, 3}, 2.0}}},
    {"the extremes of both members",
     {{{INT32_MAX, 1}, 1.0}, {{INT32_MIN, 1}, 2.0}, {{INT32_MAX, UINT32_MAX}, 3.0}},
     {{{INT32_MIN, 1}, 2.0}, {{INT32_MAX, UINT32_MAX}, 3.0}, {{INT32_MAX, 1}, 1.0}}},
    {"none", {}, {}},
};

void add_keys(BundleSide& bundle, AEGP_StreamRefH stream, const std::vector<std::pair<A_Time, double>>& keys,
              A_Boolean add = 1, AEGP_LTimeMode mode = kTimeModeLayer) {
    const AEGP_AddKeyframesInfoH info = bundle.additions(stream);
    for (const auto& [time, value] : keys) {
        A_long index = -1;
        bundle.keyframe_suite->AEGP_AddKeyframes(info, mode, &time, &index);
        AEGP_StreamValue record{};
        record.stream = stream;
        record.value.one_d = value;
        bundle.keyframe_suite->AEGP_SetAddKeyframe(info, index, &record);
    }
    bundle.keyframe_suite->AEGP_EndAddKeyframes(add, info);
}

const Stream& zoom_of(const BundleSide& bundle) {
    return bundle.host.project().layers.front().streams.at(kLayerStreamZoom);
}

void expect_keys(const Stream& stream, const std::vector<std::pair<A_Time, double>>& expected) {
    ASSERT_EQ(stream.keyframes.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(stream.keyframes[i].time.value, expected[i].first.value) << i;
        EXPECT_EQ(stream.keyframes[i].time.scale, expected[i].first.scale) << i;
        EXPECT_EQ(stream.keyframes[i].value[0], expected[i].second) << i;
    }
}

TEST(Keyframes, AreSortedAndUniqueByTime) {
    for (const KeyCase& c : kKeyCases) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        add_keys(bundle, bundle.stream(bundle.camera(bundle.comp()), kLayerStreamZoom), c.added);
        expect_keys(zoom_of(bundle), c.expected);
    }
}

TEST(Keyframes, OfASecondAdditionMergeIntoTheFirst) {
    BundleSide bundle;
    const AEGP_StreamRefH stream = bundle.stream(bundle.camera(bundle.comp()), kLayerStreamZoom);
    add_keys(bundle, stream, {{{0, 25}, 1.0}, {{2, 25}, 2.0}, {{4, 25}, 3.0}});
    add_keys(bundle, stream, {{{3, 25}, 9.0}, {{2, 25}, 8.0}});
    expect_keys(zoom_of(bundle), {{{0, 25}, 1.0}, {{2, 25}, 8.0}, {{3, 25}, 9.0}, {{4, 25}, 3.0}});
}

TEST(Keyframes, AreDroppedWhenTheAdditionIsCancelled) {
    BundleSide bundle;
    const AEGP_StreamRefH stream = bundle.stream(bundle.camera(bundle.comp()), kLayerStreamZoom);
    add_keys(bundle, stream, {{{0, 25}, 1.0}}, 0);
    expect_keys(zoom_of(bundle), {});
}

TEST(Keyframes, WithoutAValueTakeTheValueOfTheStream) {
    BundleSide bundle;
    const AEGP_StreamRefH stream = bundle.stream(bundle.camera(bundle.comp()), kLayerStreamZoom);
    const AEGP_AddKeyframesInfoH info = bundle.additions(stream);
    A_long index = -1;
    bundle.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &bundle.four_seconds, &index);
    bundle.keyframe_suite->AEGP_EndAddKeyframes(1, info);
    expect_keys(zoom_of(bundle), {{{100, 25}, 640.0 * 50.0 / 36.0}});
}

TEST(Keyframes, InCompositionTimeAreMovedByTheLayersOffset) {
    BundleSide bundle;
    const AEGP_LayerH camera = bundle.camera(bundle.comp());
    const A_Time offset{1, 10};
    bundle.layer_suite->AEGP_SetLayerOffset(camera, &offset);
    add_keys(bundle, bundle.stream(camera, kLayerStreamZoom), {{{1, 4}, 1.0}}, 1, kTimeModeComp);
    expect_keys(zoom_of(bundle), {{{3, 20}, 1.0}});
}

TEST(Times, AreSubtractedExactlyOrNotAtAll) {
    const auto same = embedded::subtract_times({7, 25}, {10, 25});
    ASSERT_TRUE(same.has_value());
    EXPECT_EQ(same->value, -3);
    EXPECT_EQ(same->scale, 25U);
    EXPECT_FALSE(embedded::subtract_times({INT32_MAX, 1}, {INT32_MIN, 1}).has_value());
    EXPECT_FALSE(embedded::subtract_times({1, UINT32_MAX}, {1, UINT32_MAX - 1}).has_value());
}

TEST(Streams, HaveTheShapeOfTheirLayer) {
    BundleSide bundle;
    const AEGP_CompH comp = bundle.comp();
    const AEGP_LayerH camera = bundle.camera(comp);
    const AEGP_LayerH light = bundle.light(comp);
    AEGP_LayerH flat = nullptr;
    bundle.comp_suite->AEGP_CreateNullInComp("flat", comp, nullptr, &flat);
    AEGP_LayerH deep = nullptr;
    bundle.comp_suite->AEGP_CreateNullInComp("deep", comp, nullptr, &deep);
    bundle.layer_suite->AEGP_SetLayerFlag(deep, kLayerFlag3D, 1);
    struct {
        const char* name;
        AEGP_LayerH layer;
        std::vector<AEGP_LayerStream> exist;
        std::vector<AEGP_LayerStream> do_not;
    } const cases[] = {
        {"camera", camera, {0, 1, 3, 8, 9, 10, 11}, {2, 4, 16, 17, 18, 28, 5, -1}},
        {"light", light, {0, 1, 3, 8, 9, 10, 16, 17, 18, 28}, {2, 4, 11, 5, -1}},
        {"2D null", flat, {0, 1, 2, 3, 4}, {8, 9, 10, 11, 16, 17, 18, 28}},
        {"3D null", deep, {0, 1, 2, 3, 4, 8, 9, 10, 28}, {11, 16, 17, 18}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        for (const AEGP_LayerStream which : c.exist) {
            EXPECT_NE(bundle.stream(c.layer, which), nullptr) << which;
        }
        for (const AEGP_LayerStream which : c.do_not) {
            EXPECT_EQ(bundle.stream(c.layer, which), nullptr) << which;
        }
    }
    const auto& layers = bundle.host.project().layers;
    EXPECT_EQ(layers[0].streams.at(kLayerStreamPosition).shape, StreamShape::three_d);
    EXPECT_EQ(layers[1].streams.at(kLayerStreamColor).shape, StreamShape::color);
    EXPECT_EQ(layers[2].streams.at(kLayerStreamPosition).shape, StreamShape::two_d);
    EXPECT_EQ(layers[2].streams.at(kLayerStreamZRotation).shape, StreamShape::one_d);
    EXPECT_EQ(layers[3].streams.at(kLayerStreamPosition).shape, StreamShape::three_d);
}

TEST(Streams, ReadOnlyTheMembersOfTheirShape) {
    BundleSide bundle;
    AEGP_LayerH flat = nullptr;
    bundle.comp_suite->AEGP_CreateNullInComp("flat", bundle.comp(), nullptr, &flat);
    const AEGP_StreamRefH scale = bundle.stream(flat, kLayerStreamScale);
    AEGP_StreamValue value{};
    value.stream = scale;
    value.value.four_d = {{100.0, 106.67, 77.0, 78.0}};
    ASSERT_EQ(bundle.stream_suite->AEGP_SetStreamValue(bundle.host.plugin_id(), scale, &value),
              kHostErrorNone);
    const Stream& stream = bundle.host.project().layers[0].streams.at(kLayerStreamScale);
    EXPECT_TRUE(stream.value_set);
    EXPECT_EQ(stream.value, (embedded::StreamComponents{100.0, 106.67, 0.0, 0.0}));
}

/// Seconds of processor time for `objects` cameras with `keys` keys each, added latest first, the worst
/// order.
double seconds_for(int objects, int keys) {
    BundleSide bundle;
    const AEGP_CompH comp = bundle.comp();
    const std::clock_t start = std::clock();
    for (int object = 0; object < objects; ++object) {
        std::vector<std::pair<A_Time, double>> list;
        list.reserve(static_cast<std::size_t>(keys));
        for (int key = keys; key > 0; --key) {
            list.push_back({{key, 25}, 1.0});
        }
        const AEGP_StreamRefH stream = bundle.stream(bundle.camera(comp), kLayerStreamZoom);
        add_keys(bundle, stream, list);
        bundle.stream_suite->AEGP_DisposeStream(stream);
    }
    const std::clock_t spent = std::clock() - start;
    EXPECT_EQ(zoom_of(bundle).keyframes.size(), static_cast<std::size_t>(keys));
    return static_cast<double>(spent) / CLOCKS_PER_SEC;
}

TEST(Keyframes, TakeTimeProportionalToTheirNumber) {
    // With quadratic insertion the large scene would take 100 times as long as ten small ones; the factor of
    // 5 allows for a busy machine.
    const double small = seconds_for(10, 1000);
    const double large = seconds_for(1, 100000);
    EXPECT_LT(large, 5.0 * 10.0 * small + 1.0);
}

}  // namespace
