#pragma once

#include "composition/model/scene_object.h"

/// A camera: keyframes with a field of view and a target distance each.
class CCamera : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;

    float zoom = 30.0F;  ///< no word of the file sets it; the layer's zoom comes from the keys

  private:
    int LoadKey(ASCIIParser& p);
};
