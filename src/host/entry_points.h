#pragma once

#include "host/host_interface.h"
#include "host/today_interface.h"

// The two doors of the bundle; nothing else is exported.

#if defined(_WIN32)
#define VXR_EXPORTED __declspec(dllexport)
#else
#define VXR_EXPORTED __attribute__((visibility("default")))
#endif

extern "C" {

/// What a classic host calls once after loading the bundle; src/entry defines it. Keeps `basic` and
/// `pluginId` for the callbacks and registers everything that the plug-in offers. The two paths and the
/// refcon are not used. Returns 0, or the host's error code of the first registration that failed, which is
/// also shown; the host then unloads the plug-in. A suite that the host does not offer leaves as the
/// handler's exception.
VXR_EXPORTED A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                                    const A_char* filePath, const A_char* resourcePath,
                                    AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon);

/// What today's hosts call in its place; src/host/bridge defines it. Calls Main_VORTANXR_AE with a bridge as
/// its host. No exception leaves it, nor any callback that was registered through it: a missing suite becomes
/// 13 and one report that names the suite, memory that could not be had 4, any other exception 1.
VXR_EXPORTED A_Err EntryPointFunc(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                                  AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon);
}
