#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/job/collect_plan.h"
#include "cli/job/manifest.h"

namespace cli {

/// How pictures get into a folder.
enum class Transfer {
    copy,
    hard_link,  ///< a second name of the same file; a copy on another disk
    reflink,    ///< a copy that shares its blocks until one is changed; a plain copy where that is impossible
};

struct CollectRun {
    ExitCode code = ExitCode::fine;
    std::vector<ManifestEntry> entries;  ///< scenes and pictures; without the manifest itself
    std::vector<std::string> problems;   ///< what did not happen, one sentence each
};

/// Why this much does not fit; empty if it does.
[[nodiscard]] std::string space_problem(std::uint64_t needed_bytes, std::uint64_t free_bytes);

/// Puts everything into the folder, and makes it if it is missing. A file that is there already with the same
/// bytes stays; if one has other bytes, nothing is written.
[[nodiscard]] CollectRun collect_into_folder(const std::vector<RelinkedScene>& scenes,
                                             const CollectPlan& plan, const std::string& folder,
                                             Transfer transfer, Terminal& terminal);

/// Puts everything into a new ZIP archive, which takes its place when it is complete.
[[nodiscard]] CollectRun collect_into_zip(const std::vector<RelinkedScene>& scenes, const CollectPlan& plan,
                                          const std::string& path);

/// What would be collected.
[[nodiscard]] CollectRun planned_collection(const std::vector<RelinkedScene>& scenes,
                                            const CollectPlan& plan);

/// The document of `vxr collect --json`, which docs/command-line.md describes.
[[nodiscard]] nlohmann::ordered_json collect_document(const std::vector<RelinkedScene>& scenes,
                                                      const CollectPlan& plan, const CollectRun& run,
                                                      const std::string& output, bool dry_run);

}  // namespace cli
