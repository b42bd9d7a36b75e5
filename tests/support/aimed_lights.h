#pragma once

#include "host/host_interface.h"

/// Whether a light of this type shines in one direction, towards its point of interest.
struct AimedLight {
    AEGP_LightType type;
    bool aimed;
};

inline constexpr AimedLight kAimedLights[] = {
    {kLightTypeParallel, true}, {kLightTypeSpot, true}, {kLightTypePoint, false}, {kLightTypeAmbient, false}};
