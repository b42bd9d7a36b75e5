#pragma once

#include "host/host_interface.h"

class AEGP_SuiteHandler;
struct tagProjectSettings;

/// Adds the cameras, lights and nulls of the scene, newest first, after the compositions have been built.
/// They become layers of the root composition, or, when pixels are not square, of a composition
/// "Camera+Light" that is stretched back to the root's pixels. Returns 0 or the host's error code of that
/// composition's first failing call. An object that cannot be added ends the adding and is Deliberately no
/// error: the scene stays as far as it came.
A_Err add_scene_objects(AEGP_SuiteHandler& suites, tagProjectSettings& settings);
