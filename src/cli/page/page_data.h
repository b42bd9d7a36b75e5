#pragma once

#include <string>

#include "cli/page/page_scene.h"

namespace cli {

/// What the scripts of the page know of a scene: JSON, one element of "scenes" in docs/schema/report.json, as
/// it stands in a script element, which nothing in it can end. Keys of cameras, lights and nulls beyond what
/// a page can hold are left out evenly, and their number is stated.
[[nodiscard]] std::string page_data(const PageScene& scene);

}  // namespace cli
