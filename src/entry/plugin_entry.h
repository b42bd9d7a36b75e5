#pragma once

#include "host/host_interface.h"

#if defined(_WIN32)
#define VXR_EXPORTED __declspec(dllexport)
#else
#define VXR_EXPORTED __attribute__((visibility("default")))
#endif

extern "C" {

/// What the host calls once after loading the bundle; the only symbol that the bundle exports. Keeps `basic`
/// and `pluginId` for the callbacks and registers everything that the plug-in offers. The two paths and the
/// refcon are not used. Returns 0, or the host's error code of the first registration that failed, which is
/// also shown; the host then unloads the plug-in. A suite that the host does not offer leaves as the
/// handler's exception.
VXR_EXPORTED A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                                    const A_char* filePath, const A_char* resourcePath,
                                    AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon);

/// Called when the host quits; does nothing.
A_Err DeathHook(AEGP_GlobalRefcon globalRefcon, AEGP_DeathRefcon refcon);
}
