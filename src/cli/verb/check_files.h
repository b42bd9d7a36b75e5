#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/footage/footage_finder.h"
#include "cli/report/diagnostic_text.h"

namespace cli {

/// What came out for one file.
struct FileCheck {
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;  ///< the error first, if there is one; then the warnings
};

/// What a kind of file adds to the command that checks files.
struct FileKind {
    const char* plural;                      ///< "composition files"
    /// Reads the file that the user named. The finder is null unless the user said where footage is.
    FileCheck (*check)(const std::string&, FootageFinder* finder);
    std::string (*text)(const Diagnostic&, const Paint&);
    bool has_footage = false;                                ///< the verb takes --search and --map
    std::vector<diagnostic::CodeInfo> (*codes)() = nullptr;  ///< for --list-codes; null without that option
};

/// The command behind `vxr check` and `vxr texture check`: reads every file, prints what is wrong with it and
/// a line with the verdict, and exits with the most serious outcome.
[[nodiscard]] std::unique_ptr<Command> make_check_command(const FileKind& kind);

}  // namespace cli
