#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/footage/footage_survey.h"
#include "cli/report/check_policy.h"
#include "cli/report/diagnostic_text.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// What came out for one file.
struct FileCheck {
    ExitCode code = ExitCode::fine;
    /// If the code is not `fine`, its error first; then everything else.
    std::vector<Diagnostic> diagnostics;
};

/// Takes out what the policy ignores, and decides about a file that has been read: one that lacks footage is
/// incomplete, one with what the policy refuses is refused. Returns how many diagnostics were taken out.
std::size_t apply_policy(FileCheck& check, const CheckPolicy& policy);

/// What a kind of file adds to the command that checks files.
struct FileKind {
    const char* plural;         ///< "composition files"
    const char* extension;      ///< of what is looked for in folders: ".aec"
    const char* project_table;  ///< of project files: "check"
    /// Reads the file that the user named. The survey is that of the run; unless it has a finder, this is
    /// called on several threads at a time. The code is `fine` unless the file itself is refused or
    /// unreadable.
    FileCheck (*check)(const std::string&, FootageSurvey& survey);
    std::string (*text)(const Diagnostic&, const Paint&);
    std::vector<diagnostic::CodeInfo> (*codes)();
    bool has_footage = false;  ///< the verb takes --search and --map
};

/// The kind behind `vxr check`.
[[nodiscard]] const FileKind& composition_files();

/// What a check says about a scene that has been read.
[[nodiscard]] FileCheck check_scene(const SceneReading& reading, FootageSurvey& survey);

/// The command behind `vxr check` and `vxr texture check`: reads every file, says what is wrong with it,
/// counts it, and exits with the most serious outcome.
[[nodiscard]] std::unique_ptr<Command> make_check_command(const FileKind& kind);

}  // namespace cli
