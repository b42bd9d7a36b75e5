#pragma once

#include "embedded/testing.h"
#include "host/current_interface.h"

inline constexpr A_Ratio kSquare{1, 1};
inline constexpr A_Ratio kRate{2500, 100};
inline constexpr A_Time kFourSeconds{100, 25};

/// A host of either generation as a bundle sees it, with an open undo group and a composition. A classic host
/// leaves the suites of current ones null.
struct CompositionSide {
    explicit CompositionSide(const embedded::HostOptions& options = {}) : host(options) {
        utility = host.acquire<AEGP_UtilitySuite7>("AEGP Utility Suite", 7);
        items = host.acquire<AEGP_ItemSuite13>("AEGP Item Suite", 13);
        comps = host.acquire<AEGP_CompSuite15>("AEGP Comp Suite", 15);
        narrow_comps = host.acquire<AEGP_CompSuite9>("AEGP Comp Suite", 9);
        layers = host.acquire<AEGP_LayerSuite11>("AEGP Layer Suite", 11);
        lights = host.acquire<AEGP_LightSuite2>("AEGP Light Suite", 2);
        utility->AEGP_StartUndoGroup("test");
        narrow_comps->AEGP_CreateComp(root(), "comp", 640, 480, &kSquare, &kFourSeconds, &kRate, &comp);
        narrow_comps->AEGP_GetItemFromComp(comp, &item);
    }
    AEGP_ItemH root() {
        const auto root_in = [](const auto* suite) {
            AEGP_ProjectH project = nullptr;
            AEGP_ItemH folder = nullptr;
            suite->AEGP_GetProjectByIndex(0, &project);
            suite->AEGP_GetProjectRootFolder(project, &folder);
            return folder;
        };
        const auto* const current = host.acquire<AEGP_ProjSuite8>("AEGP Proj Suite", 8);
        return current != nullptr ? root_in(current)
                                  : root_in(host.acquire<AEGP_ProjSuite5>("AEGP Proj Suite", 5));
    }
    AEGP_LayerH camera() {
        AEGP_LayerH layer = nullptr;
        narrow_comps->AEGP_CreateCameraInComp("camera", {1, 2}, comp, &layer);
        return layer;
    }
    AEGP_LayerH light(AEGP_LightType type) {
        AEGP_LayerH layer = nullptr;
        narrow_comps->AEGP_CreateLightInComp("light", {1, 2}, comp, &layer);
        lights->AEGP_SetLightType(layer, type);
        return layer;
    }
    /// The newest layer.
    const embedded::Layer& last() { return host.project().layers.back(); }

    embedded::TestHost host;
    const AEGP_UtilitySuite7* utility = nullptr;
    const AEGP_ItemSuite13* items = nullptr;
    const AEGP_CompSuite15* comps = nullptr;
    const AEGP_CompSuite9* narrow_comps = nullptr;
    const AEGP_LayerSuite11* layers = nullptr;
    const AEGP_LightSuite2* lights = nullptr;
    AEGP_CompH comp = nullptr;
    AEGP_ItemH item = nullptr;
};
