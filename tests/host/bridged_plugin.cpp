#include "host/bridged_plugin.h"

BridgedPlugin::Entry BridgedPlugin::entry;
BridgedPlugin::Arguments BridgedPlugin::arguments;

A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion, const A_char* filePath,
                       const A_char* resourcePath, AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon) {
    BridgedPlugin::arguments = {basic, majorVersion, minorVersion, filePath, resourcePath, pluginId, refcon};
    return BridgedPlugin::entry(basic);
}

A_Err enter(RecordingHost& host, const BridgedPlugin::Entry& entry) {
    BridgedPlugin::entry = entry;
    return EntryPointFunc(host.basic(), 13, 28, RecordingHost::kPluginId, nullptr);
}

SPBasicSuite* bridge_over(RecordingHost& host) {
    SPBasicSuite* bridge = nullptr;
    enter(host, [&bridge](SPBasicSuite* basic) {
        bridge = basic;
        return kHostErrorNone;
    });
    return bridge;
}
