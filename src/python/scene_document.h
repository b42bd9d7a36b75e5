#pragma once

#include <nlohmann/json_fwd.hpp>
#include <vector>

#include "cli/scene/footage_paths.h"
#include "cli/scene/scene_reading.h"

namespace python {

/// A scene that was read, without its keys:
/// {"path","width","height","first_frame","last_frame","frame_range","fps",
/// "pixel_aspect","local","fields","compositions","footage","objects"}, all in the order of the file.
/// Compositions refer to what is in them, and to what they are in, by places in these lists, because they
/// nest too deep for a tree.
[[nodiscard]] nlohmann::ordered_json scene_json(const cli::SceneReading& reading,
                                                const std::vector<cli::SoughtFootage>& sought);

}  // namespace python
