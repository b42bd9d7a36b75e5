#pragma once

#include "host/entry_points.h"

extern "C" {

/// Called when the host quits; does nothing.
A_Err DeathHook(AEGP_GlobalRefcon globalRefcon, AEGP_DeathRefcon refcon);
}
