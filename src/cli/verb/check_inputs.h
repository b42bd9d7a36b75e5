#pragma once

#include <string>
#include <vector>

namespace cli {

class Options;

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

struct FoundInputs {
    std::vector<std::string> files;
    std::vector<std::string> empty_folders;  ///< in which there was nothing to check
};

/// The files in the order in which they were named. Of a folder, those whose names end with `extension`, in
/// any case, in the order of their names; hidden ones, such as the "._shot.aec" that macOS leaves on
/// other disks, are passed over, and links to folders are not followed. Throws std::runtime_error if the list
/// cannot be read.
[[nodiscard]] FoundInputs find_inputs(const CheckInputs& inputs, const char* extension);

}  // namespace cli
