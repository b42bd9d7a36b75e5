#pragma once

#include <string>
#include <vector>

#include "cli/exit_codes.h"

namespace cli {

class FileRoles;
class Options;
struct Terminal;

/// Which files a verb that checks files is to read, as the user says it.
struct CheckInputs {
    std::vector<std::string> files;  ///< and folders
    std::string list;                ///< a file with further names, "-" for the standard input; or empty
    bool null = false;               ///< names in the list end with a NUL instead of a line end
    bool recursive = false;          ///< also folders below folders

    [[nodiscard]] bool given() const { return !files.empty() || !list.empty(); }
};

/// Adds --recursive, --files-from and --null.
void add_input_options(Options& options, CheckInputs& inputs);

/// Throws UsageError if nothing is named, if --null has no list, or if the standard input is named twice.
/// `argument` is what the verb calls its files: "SCENE".
void refuse_wrong_inputs(const CheckInputs& inputs, const char* argument);

/// Adds the list of files, if one is read.
void add_list(const CheckInputs& inputs, FileRoles& roles);

/// The names in the list at `path`, one on each line or each before a NUL. Throws std::runtime_error if it
/// cannot be read.
[[nodiscard]] std::vector<std::string> names_in_list(const std::string& path, bool null);

struct FoundInputs {
    std::vector<std::string> files;
    std::vector<std::string> empty_folders;  ///< in which there was nothing to check
};

/// The files in the order in which they were named. Of a folder, those whose names end with `extension`, in
/// any case, in the order of their names; hidden ones, such as the "._shot.aec" that macOS leaves on
/// other disks, are passed over, and links to folders are not followed. Throws std::runtime_error if the list
/// cannot be read, and UsageError if the standard input is named twice.
[[nodiscard]] FoundInputs find_inputs(const CheckInputs& inputs, const char* extension);

/// Complains about each folder in which there was nothing, and returns the exit code for that.
ExitCode tell_empty_folders(const FoundInputs& found, const CheckInputs& inputs, const char* extension,
                            Terminal& terminal);

}  // namespace cli
