#pragma once

#include "host/host_interface.h"

// What the plug-in keeps of its host from the entry point on. Written once, at start-up, by src/entry, which
// defines them; read by every callback.

/// The host's basic suite; every AEGP_SuiteHandler is built over it.
extern SPBasicSuite* g_pBasicSuite;

/// The identifier that the host gave this plug-in; passed wherever the host wants to know who asks.
extern AEGP_PluginID g_PluginID;

/// True from interface version 9.32 on. Older hosts get no cameras, lights and nulls and no alpha label.
extern bool version55;
