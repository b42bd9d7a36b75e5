#pragma once

#include "host/current_interface.h"
#include "host/host_interface.h"

// The two entry points of the bundle. It exports nothing else.

#if defined(_WIN32)
#define VXR_EXPORTED __declspec(dllexport)
#else
#define VXR_EXPORTED __attribute__((visibility("default")))
#endif

extern "C" {

/// A classic host calls this once after loading the bundle; src/entry defines it. It keeps `basic` and
/// `pluginId` for the callbacks and registers everything that the plug-in offers. It uses neither the two
/// paths nor the refcon. Returns 0, or the host's error code of the first registration that fails, after
/// reporting it; the host then unloads the plug-in. A suite that the host does not offer ends it with the
/// suite handler's exception.
VXR_EXPORTED A_Err Main_VORTANXR_AE(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                                    const A_char* filePath, const A_char* resourcePath,
                                    AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon);

/// Current hosts call this instead; src/host/bridge defines it. It calls Main_VORTANXR_AE with a bridge as
/// the host. No exception leaves it or a callback that was registered through it: a missing suite becomes 13
/// and one report that names the suite, a failed allocation 4, any other exception 1.
VXR_EXPORTED A_Err EntryPointFunc(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion,
                                  AEGP_PluginID pluginId, AEGP_GlobalRefcon* refcon);
}
