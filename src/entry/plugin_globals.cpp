#include "host/plugin_globals.h"

SPBasicSuite* g_pBasicSuite = nullptr;
AEGP_PluginID g_PluginID = 0;
bool version55 = false;
