// What differs between hosts in a new layer: whether it turns towards its point of interest, how long a null
// is, and whether the host accepts the layer at all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "embedded/composition_side.h"
#include "support/aimed_lights.h"

namespace {

using embedded::HostGeneration;
using embedded::RuleViolation;
using testing::IsEmpty;

TEST(Aim, OnlyCamerasOfClassicHostsHaveItFromTheStart) {
    for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
        CompositionSide side({.generation = generation});
        const AEGP_LayerH camera = side.camera();
        EXPECT_EQ(side.last().looks_at_point_of_interest(), generation == HostGeneration::classic);
        EXPECT_EQ(side.layers->AEGP_SetLayerFlag(camera, kLayerFlagLookAtPointOfInterest, 1), 0);
        EXPECT_TRUE(side.last().looks_at_point_of_interest());
        EXPECT_TRUE(side.last().is_3d());
    }
}

TEST(Aim, OnlyLightsOfClassicHostsGetItWithTheirType) {
    for (const AimedLight& light : kAimedLights) {
        for (const HostGeneration generation : {HostGeneration::classic, HostGeneration::today}) {
            CompositionSide side({.generation = generation});
            side.light(light.type);
            EXPECT_EQ(side.last().looks_at_point_of_interest(),
                      light.aimed && generation == HostGeneration::classic)
                << light.type;
        }
    }
}

TEST(StillDuration, IsTheLengthOfNullsMadeWithoutOne) {
    embedded::HostOptions options;
    for (const bool set : {false, true}) {
        if (set) {
            options.still_duration = A_Time{7, 25};
        }
        CompositionSide side(options);
        AEGP_LayerH layer = nullptr;
        const A_Time given{3, 25};
        EXPECT_EQ(side.comps->AEGP_CreateNullInComp(u"n", side.comp, nullptr, &layer), 0);
        EXPECT_EQ(side.last().duration.value, set ? 7 : 100) << "without a preference, the composition's";
        EXPECT_EQ(side.comps->AEGP_CreateNullInComp(u"n", side.comp, &given, &layer), 0);
        EXPECT_EQ(side.last().duration.value, 3);
        side.camera();
        EXPECT_EQ(side.last().duration.value, 100) << "cameras are as long as the composition";
    }
}

TEST(RefusedLayers, AreNotAddedWhateverTheBundleDoes) {
    embedded::HostOptions options;
    options.layers_refused = {2};
    CompositionSide side(options);
    AEGP_CompH inner = nullptr;
    AEGP_ItemH inner_item = nullptr;
    side.comps->AEGP_CreateComp(nullptr, u"inner", 8, 8, &kSquare, &kFourSeconds, &kRate, &inner);
    side.comps->AEGP_GetItemFromComp(inner, &inner_item);
    AEGP_LayerH layer = nullptr;
    A_Boolean valid = 7;
    EXPECT_EQ(side.layers->AEGP_IsAddLayerValid(inner_item, side.comp, &valid), 0);
    EXPECT_EQ(valid, 1);
    EXPECT_EQ(side.layers->AEGP_IsAddLayerValid(inner_item, side.comp, &valid), 0);
    EXPECT_EQ(valid, 0);
    EXPECT_EQ(side.layers->AEGP_AddLayer(inner_item, side.comp, &layer), 3);
    EXPECT_THAT(side.host.project().layers, IsEmpty());
    EXPECT_EQ(side.host.conformance().count(RuleViolation::bad_argument), 1U);
}

}  // namespace
