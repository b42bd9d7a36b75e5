#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// A verb that a batch may run: one process for each file.
struct BatchVerb {
    const char* name;           ///< "texture convert"
    const char* extension;      ///< of the files that a folder stands for: ".txl"
    const char* output_option;  ///< with which it is told where to write: "-o"; null if it writes no file
    bool needs_output;          ///< does not run without that option
};

/// Null for a verb that takes no files, or asks a person.
[[nodiscard]] const BatchVerb* find_batch_verb(std::string_view name);
[[nodiscard]] std::vector<std::string> batch_verb_names();

/// Why a word may not be among the options of a batch: all its items would write to one file, or it says
/// which files are read, how many at a time, or that nothing is done. Empty for any other word.
[[nodiscard]] std::string refused_batch_option(std::string_view word);

}  // namespace cli
