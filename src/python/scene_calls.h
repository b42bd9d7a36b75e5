#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "cli/scene/scene_reading.h"
#include "python/key_columns.h"

// What the module's functions about scenes do, without anything of Python. Values travel as a JSON document,
// whose members are the attributes of the module's classes, and beside it keys as columns.

namespace python {

/// Is told how much of the work is done, from 0 to 1. What it throws ends the work. May be empty.
using Watch = std::function<void(double fraction)>;

/// The same for reading a scene. `watch` outlives it.
[[nodiscard]] cli::ReadingWatch reading_watch(const Watch& watch);

struct SceneRequest {
    std::string path;
    cli::FindingChoices choices;
    bool check = true;         ///< also look at everything that `vxr check` looks at
    bool read_pixels = false;  ///< in that check, read whole pictures
    bool columns = true;       ///< also give the keys
};

struct SceneAnswer {
    std::string document;  ///< {"error","code","verdict","diagnostics"}, and "scene" without an error
    std::vector<KeyColumns> columns;  ///< one for each entry of "objects"
};

/// Reads and checks a composition file. Never reads the standard input.
[[nodiscard]] SceneAnswer read_scene(const SceneRequest& request, const Watch& watch);

/// Whether this is "FROM=TO", as the option --map takes it.
[[nodiscard]] bool is_path_map(const std::string& text);

}  // namespace python
