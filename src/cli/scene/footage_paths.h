#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/footage/footage_finder.h"
#include "cli/scene/scene_reading.h"
#include "composition/read/text_cursor.h"

// The footage paths of a scene: where they lead today, and the scene with other ones.

namespace cli {

/// A footage entry and what was found for it.
struct SoughtFootage {
    TextPosition at;      ///< of the path's opening quote
    std::string written;  ///< the path in the scene, any bytes
    bool is_sequence = false;
    bool top_level = false;
    Finding finding;
};

/// Looks for the footage of every entry whose path could be read, in the order of the file.
[[nodiscard]] std::vector<SoughtFootage> seek_footage(const SceneReading& reading, FootageFinder& finder);

/// Why the language of composition files has no way to write this path; empty if it has.
[[nodiscard]] std::string unwritable_path(std::string_view path);

/// A new path for an entry.
struct PathChange {
    TextPosition at;      ///< of the opening quote of the present one
    std::string written;  ///< the present one
    std::string path;     ///< one that can be written
};

/// The bytes of the scene at `full_path` with other paths; every other byte stays. `changes` are in the order
/// of the file. Nothing if the file cannot be read or is not what was read before; `problem` then says why.
[[nodiscard]] std::optional<std::string> scene_with_paths(const std::string& full_path,
                                                          const std::vector<PathChange>& changes,
                                                          std::string& problem);

}  // namespace cli
