#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/command.h"
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
    FileCheck (*check)(const std::string&);  ///< reads the file that the user named
    std::string (*text)(const Diagnostic&, const Paint&);
    std::vector<diagnostic::CodeInfo> (*codes)() = nullptr;  ///< for --list-codes; null without that option
};

/// The command behind `vxr check` and `vxr texture check`: reads every file, prints what is wrong with it and
/// a line with the verdict, and exits with the most serious outcome.
[[nodiscard]] std::unique_ptr<Command> make_check_command(const FileKind& kind);

}  // namespace cli
