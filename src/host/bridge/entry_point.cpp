#include "host/bridge/basic_suite.h"
#include "host/bridge/guarded_call.h"
#include "host/entry_points.h"

A_Err EntryPointFunc(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion, AEGP_PluginID pluginId,
                     AEGP_GlobalRefcon* refcon) {
    // Without it there is nothing to reach, and nobody to tell.
    if (basic == nullptr)
        return kHostErrorMissingSuite;
    SPBasicSuite* bridge_suite = bridge::basic_suite_over(basic, pluginId);
    return bridge::guarded([=] {
        return Main_VORTANXR_AE(bridge_suite, majorVersion, minorVersion, nullptr, nullptr, pluginId, refcon);
    });
}
