#pragma once

#include "composition/model/scene_object.h"

/// A null: keyframes and nothing else.
class CNull : public CSceneObject {
  public:
    int Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps, A_long from,
            A_long to, int setTimes, int local) override;
    int Load(ASCIIParser& p) override;
};
