#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;

// Operations on layers of every kind: footage, compositions, cameras, lights and nulls. Each function returns
// 0 or the host's error code of the first call that failed.

/// Adds `item` to `comp` as a new layer, `*layer`.
A_Err add_item_as_layer(AEGP_SuiteHandler& suites, AEGP_ItemH item, AEGP_CompH comp, AEGP_LayerH* layer);

/// Sets the transfer mode of `layer`. `blend_mode` is a BlendMode; any other value keeps the host's mode.
A_Err set_layer_blend_mode(AEGP_SuiteHandler& suites, AEGP_LayerH layer, A_long blend_mode);

/// Places `layer` in time: offset by `from` frames when `local` is not 0, with the length of `from` to `to`.
A_Err set_layer_timing(AEGP_SuiteHandler& suites, AEGP_LayerH layer, A_long fps, A_long from, A_long to,
                       A_long local);
