#pragma once

#include <vector>

#include "embedded/project.h"
#include "handover/handover.h"

namespace handover {

/// The properties of a layer that the importer has set, with their keys. `rate_fps` is the scene's. Keys
/// whose values are not finite, but for an infinite zoom, are left out.
[[nodiscard]] std::vector<Track> imported_tracks(const embedded::Layer& layer, double rate_fps);

/// A time of the host in frames.
[[nodiscard]] double frames_of(const A_Time& time, double rate_fps);

}  // namespace handover
