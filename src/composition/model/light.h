#pragma once

#include "composition/model/scene_object.h"

/// Words behind TYPE: the values of CLight::lightType.
enum LightKind : A_long {
    kLightOmni = 0,
    kLightSpot = 1,
    kLightParallel = 2,
    kLightParallelSpot = 3,
    kLightTube = 4,
    kLightArea = 5,
};
/// Words behind SHADOW: the values of CLight::shadowType.
enum ShadowKind : A_long { kShadowNone = 0, kShadowSoft = 1, kShadowHard = 2, kShadowArea = 3 };

/// A light: kind, shadow, colour, intensity and cone angle for its whole length, and keyframes.
class CLight : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;

    A_long lightType = kLightOmni;
    A_long shadowType = kShadowNone;
    float color[3] = {1.0F, 1.0F, 1.0F};  ///< red, green, blue; 0 to 1 by custom, not checked
    float intensity = 1.0F;
    float coneAngle = 30.0F;  ///< degrees

  private:
    int LoadEntry(ASCIIParser& p);
};
