#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "cli/footage/footage_finder.h"
#include "cli/job/relink_run.h"

// Which files a collection consists of, and what they are called in it: one folder with everything in it,
// because the importer looks for footage beside the scene and in no folder below.

namespace cli {

/// A picture of the collection.
struct CollectedFile {
    std::string name;    ///< in the collection
    std::string source;  ///< a full path
    std::uint64_t size_bytes = 0;
};

/// A scene of the collection.
struct CollectedScene {
    std::string name;                 ///< in the collection
    std::vector<PathChange> changes;  ///< to names of the collection
};

struct CollectPlan {
    std::vector<CollectedScene> scenes;  ///< as many as were given; those that were refused have no name
    std::vector<CollectedFile> files;    ///< in the order of their names
};

/// Plans the collection of the scenes with the footage that was found. Whole sequences, or with `trim` the
/// frames that are shown. Files of different folders that have one name get different ones ("plate-2.tif"),
/// and so do sequences that would become one. Names that some system does not have are replaced by ones that
/// every system has.
[[nodiscard]] CollectPlan plan_collection(const std::vector<RelinkedScene>& scenes, FootageFinder& finder,
                                          bool trim);

/// A name that every system has and that means the same path everywhere: in composed UTF-8, without
/// separators, quotes and control characters, not ending with a full stop or a blank.
[[nodiscard]] std::string portable_name(std::string_view name);

}  // namespace cli
