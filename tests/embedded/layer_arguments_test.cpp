// Bad arguments of the suites for compositions, layers, streams and keys.

#include <limits>

#include "embedded/argument_checks.h"

namespace {

using embedded::RuleViolation;

A_Err create_comp(BundleSide& b, A_long width, A_long height, A_Ratio aspect, A_Time duration, A_Ratio rate) {
    AEGP_CompH made = nullptr;
    return b.comp_suite->AEGP_CreateComp(b.root(), "c", width, height, &aspect, &duration, &rate, &made);
}

AEGP_StreamValue one_d(AEGP_StreamRefH stream, double value) {
    AEGP_StreamValue record{};
    record.stream = stream;
    record.value.one_d = value;
    return record;
}

AEGP_AddKeyframesInfoH key_additions(BundleSide& b) {
    const AEGP_AddKeyframesInfoH info = b.additions(b.stream(b.camera(b.comp()), kLayerStreamZoom));
    const A_Time zero{0, 25};
    A_long index = 0;
    b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &zero, &index);
    return info;
}

const BadArgument kCompositionCases[] = {
    {"composition of width 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 0, 1, {1, 1}, {1, 1}, {1, 1});
     }},
    {"composition of height 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 1, 0, {1, 1}, {1, 1}, {1, 1});
     }},
    {"composition with a pixel aspect of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 1, 1, {0, 1}, {1, 1}, {1, 1});
     }},
    {"composition with a pixel aspect denominator of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 1, 1, {1, 0}, {1, 1}, {1, 1});
     }},
    {"composition with a duration on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 1, 1, {1, 1}, {1, 0}, {1, 1});
     }},
    {"composition with a frame rate of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return create_comp(b, 1, 1, {1, 1}, {1, 1}, {0, 1});
     }},
    {"composition of a folder's item", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_CompH comp = nullptr;
         return b.comp_suite->AEGP_GetCompFromItem(b.root(), &comp);
     }},
    {"item of a null composition", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_ItemH item = nullptr;
         return b.comp_suite->AEGP_GetItemFromComp(nullptr, &item);
     }},
    {"camera at infinity", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         const double infinity = std::numeric_limits<double>::infinity();
         return b.comp_suite->AEGP_CreateCameraInComp("c", {infinity, 0.0}, b.comp(), &layer);
     }},
    {"camera without a name", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.comp_suite->AEGP_CreateCameraInComp(nullptr, {0.0, 0.0}, b.comp(), &layer);
     }},
    {"light without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.comp_suite->AEGP_CreateLightInComp("l", {0.0, 0.0}, b.comp(), nullptr);
     }},
    {"null with a duration on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.comp_suite->AEGP_CreateNullInComp("n", b.comp(), &b.no_scale, &layer);
     }},
};

TEST(ArgumentChecks, RefuseEveryBadComposition) {
    expect_refused(kCompositionCases);
}

const BadArgument kLayerCases[] = {
    {"no flag", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerFlag(b.camera(b.comp()), 0, 1); }},
    {"two flags at once", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerFlag(b.camera(b.comp()), 3, 1); }},
    {"in-point in an unknown time mode", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 2, &b.four_seconds,
                                                               &b.four_seconds);
     }},
    {"in-point on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 0, &b.no_scale,
                                                               &b.four_seconds);
     }},
    {"null layer duration", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.layer_suite->AEGP_SetLayerInPointAndDuration(b.camera(b.comp()), 0, &b.four_seconds,
                                                               nullptr);
     }},
    {"offset on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_SetLayerOffset(b.camera(b.comp()), &b.no_scale); }},
    {"transfer mode without an output pointer", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.layer_suite->AEGP_GetLayerTransferMode(b.camera(b.comp()), nullptr); }},
    {"transfer mode below 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_LayerTransferMode mode{-1, 0, 0};
         return b.layer_suite->AEGP_SetLayerTransferMode(b.camera(b.comp()), &mode);
     }},
    {"a folder as a layer", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         return b.layer_suite->AEGP_AddLayer(b.root(), b.comp(), &layer);
     }},
    {"a composition as a layer of itself", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_LayerH layer = nullptr;
         const AEGP_CompH comp = b.comp();
         return b.layer_suite->AEGP_AddLayer(b.item_of(comp), comp, &layer);
     }},
    {"light type of a camera", RuleViolation::bad_argument,
     [](BundleSide& b) { return b.light_suite->AEGP_SetLightType(b.camera(b.comp()), kLightTypeSpot); }},
    {"light type beyond ambient", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.light_suite->AEGP_SetLightType(b.light(b.comp()), kLightTypeAmbient + 1);
     }},
};

TEST(ArgumentChecks, RefuseEveryBadLayer) {
    expect_refused(kLayerCases);
}

const BadArgument kStreamCases[] = {
    {"zoom of a light", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamRefH stream = nullptr;
         return b.stream_suite->AEGP_GetNewLayerStream(b.host.plugin_id(), b.light(b.comp()),
                                                       kLayerStreamZoom, &stream);
     }},
    {"stream of another plug-in", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamRefH stream = nullptr;
         return b.stream_suite->AEGP_GetNewLayerStream(0, b.light(b.comp()), kLayerStreamPosition, &stream);
     }},
    {"stream disposed of twice", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         b.stream_suite->AEGP_DisposeStream(stream);
         return b.stream_suite->AEGP_DisposeStream(stream);
     }},
    {"null value", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(),
                                                    b.stream(b.camera(b.comp()), kLayerStreamZoom), nullptr);
     }},
    {"value without its stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(),
                                                    b.stream(b.camera(b.comp()), kLayerStreamZoom), &value);
     }},
    {"value for another stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_LayerH camera = b.camera(b.comp());
         AEGP_StreamValue value = one_d(b.stream(camera, kLayerStreamPosition), 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), b.stream(camera, kLayerStreamZoom),
                                                    &value);
     }},
    {"value of a stream that has keys", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_AddKeyframesInfoH info = b.additions(stream);
         A_long index = 0;
         b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &b.four_seconds, &index);
         b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
         AEGP_StreamValue value = one_d(stream, 1.0);
         return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), stream, &value);
     }},
    {"additions to a dead stream", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         b.stream_suite->AEGP_DisposeStream(stream);
         AEGP_AddKeyframesInfoH info = nullptr;
         return b.keyframe_suite->AEGP_StartAddKeyframes(stream, &info);
     }},
    {"key on a scale of 0", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_long index = 0;
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), kTimeModeLayer, &b.no_scale, &index);
     }},
    {"key in an unknown time mode", RuleViolation::bad_argument,
     [](BundleSide& b) {
         A_long index = 0;
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), 7, &b.four_seconds, &index);
     }},
    {"key without an output pointer for its index", RuleViolation::bad_argument,
     [](BundleSide& b) {
         return b.keyframe_suite->AEGP_AddKeyframes(key_additions(b), kTimeModeLayer, &b.four_seconds,
                                                    nullptr);
     }},
    {"value of a key that was not added", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_StreamValue value = one_d(stream, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(b.additions(stream), 0, &value);
     }},
    {"value of a key with a negative index", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(key_additions(b), -1, &value);
     }},
    {"value of a key without its stream", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamValue value = one_d(nullptr, 1.0);
         return b.keyframe_suite->AEGP_SetAddKeyframe(key_additions(b), 0, &value);
     }},
    {"additions ended twice", RuleViolation::dead_handle,
     [](BundleSide& b) {
         const AEGP_AddKeyframesInfoH info = key_additions(b);
         b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
         return b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
     }},
    {"additions ended after their stream was disposed of", RuleViolation::bad_argument,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         const AEGP_AddKeyframesInfoH info = b.additions(stream);
         A_long index = 0;
         b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &b.four_seconds, &index);
         b.stream_suite->AEGP_DisposeStream(stream);
         return b.keyframe_suite->AEGP_EndAddKeyframes(1, info);
     }},
};

TEST(ArgumentChecks, RefuseEveryBadStreamOrKey) {
    expect_refused(kStreamCases);
}

TEST(ArgumentChecks, LeaveTheProjectAloneWhenTheyRefuse) {
    BundleSide bundle;
    AEGP_CompH comp = nullptr;
    EXPECT_EQ(create_comp(bundle, 0, 10, {1, 1}, {1, 1}, {1, 1}), kHostErrorParameter);
    EXPECT_EQ(bundle.comp_suite->AEGP_CreateComp(bundle.root(), nullptr, 1, 1, &bundle.square,
                                                 &bundle.four_seconds, &bundle.rate, &comp),
              kHostErrorParameter);
    EXPECT_EQ(comp, nullptr);
    EXPECT_EQ(bundle.host.project().items.size(), 1U);
    EXPECT_TRUE(bundle.host.project().compositions.empty());
}

}  // namespace
