#include "composition/model/null_object.h"
#include "host/messages.h"
#include "host/suite_handler.h"

int CNull::Add(AEGP_SuiteHandler* suites, AEGP_CompH comp, A_long width, A_long height, A_long fps,
               A_long from, A_long to, int setTimes, int local) {
    layerH = nullptr;
    const A_Err err = suites->CompSuite9()->AEGP_CreateNullInComp(name != nullptr ? name : g_pCh_Unknown_null,
                                                                  comp, nullptr, &layerH);
    if (err != kHostErrorNone || layerH == nullptr)
        return 0;
    // Deliberately not looked at: a flat null still carries what it can.
    suites->LayerSuite11()->AEGP_SetLayerFlag(layerH, kLayerFlag3D, 1);
    return CSceneObject::Add(suites, comp, width, height, fps, from, to, setTimes, local) != 0 ? 1 : 0;
}
