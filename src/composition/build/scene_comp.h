#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;
struct tagProjectSettings;

/// Adds the cameras, lights and nulls of the scene, newest first, after the compositions have been built.
/// They become layers of the root composition or, when pixels are not square, of a composition "Camera+Light"
/// whose layer is scaled to the root's pixel aspect. Returns 0, or the host's error code of the first call
/// that fails while creating that composition. An object that cannot be added ends the loop and is
/// deliberately not an error: the objects added so far stay.
A_Err add_scene_objects(AEGP_SuiteHandler& suites, tagProjectSettings& settings);
