#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/footage_paths.h"
#include "cli/terminal/file_roles.h"

namespace cli {

/// A scene that is written again with the paths at which its footage is found.
struct RelinkedScene {
    std::string file;       ///< as the user named it
    std::string full_path;  ///< as the plug-in gets it
    std::string output;     ///< where it is written; empty if it is not
    bool written = false;
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;  ///< why the scene was refused
    std::vector<SoughtFootage> footage;
    std::int64_t shown_frames = 1;      ///< of a sequence in a composition: those after them are never seen
    std::vector<std::string> problems;  ///< what did not happen, one sentence each
};

/// Asks the user which of several files is meant: its index, or nothing.
using ChooseCandidate =
    std::function<std::optional<std::size_t>(const RelinkedScene& scene, const SoughtFootage& footage)>;

/// Why `files` cannot be scenes that are written again under their names: a folder, which follows a search
/// folder by mistake, or the standard input. Empty if they can.
[[nodiscard]] std::string scene_argument_problem(const std::vector<std::string>& files);

/// Reads the scene and looks for its footage. `choose` may be empty.
[[nodiscard]] RelinkedScene seek_scene(const std::string& file, FootageFinder& finder,
                                       const ChooseCandidate& choose);

/// Where scenes are written: below `folder` under their names; if two of them have one name, all of them keep
/// the folders below the last folder that they have in common.
void place_outputs(std::vector<RelinkedScene>& scenes, const std::string& folder);

/// Tells `roles` what the scene and its footage consist of, frame by frame.
void add_roles(const RelinkedScene& scene, FootageFinder& finder, FileRoles& roles);

/// Writes the scene to its output, with its folder. Does nothing for a refused scene.
void write_scene(RelinkedScene& scene);

/// Asks on `out` and reads the answer, a number, from `in`. Nothing for an empty line and at the end.
[[nodiscard]] std::optional<std::size_t> ask_for_candidate(std::istream& in, std::ostream& out,
                                                           const RelinkedScene& scene,
                                                           const SoughtFootage& footage);

/// The decisions that other scenes of the job can use too: paths that were neither found as written nor
/// beside their scene, if all scenes agree. Empty paths otherwise.
[[nodiscard]] std::map<std::string, std::string> decisions_of(const std::vector<RelinkedScene>& scenes);

/// How many paths were found by which rule, how many are ambiguous and missing: "12 paths: 10 found
/// (8 tail, 2 map), 1 ambiguous, 1 missing".
[[nodiscard]] std::string relink_summary(const std::vector<RelinkedScene>& scenes);

/// The document of `vxr relink --json`, which docs/command-line.md describes.
[[nodiscard]] nlohmann::ordered_json relink_document(const std::vector<RelinkedScene>& scenes, ExitCode code,
                                                     bool dry_run);

}  // namespace cli
