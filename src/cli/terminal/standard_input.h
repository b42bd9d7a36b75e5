#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "system/replacement_file.h"

namespace cli {

/// Whether `path` means the standard input: "-" or "/dev/stdin".
[[nodiscard]] bool is_standard_input(const std::string& path);

/// Whether several of `paths` mean the standard input, which can be read only once.
[[nodiscard]] bool names_standard_input_twice(const std::vector<std::string>& paths);

/// Everything that the standard input holds; nothing if it cannot be read, or has more than `most_bytes`.
[[nodiscard]] std::optional<std::string> standard_input_text(std::uint64_t most_bytes);

/// The standard input as a file, because the plug-in reads files only. The file is a hidden one in the
/// current folder, so that what is looked for beside it is found there; in the folder for temporary files if
/// the current one cannot be written. The destructor deletes it.
class StandardInputFile {
  public:
    /// Reads to the end, or until the file has more than `most_bytes`. Nothing on failure; `error` then says
    /// why.
    static std::optional<StandardInputFile> read(std::uint64_t most_bytes, std::string& error);

    [[nodiscard]] const std::string& path() const { return file_.temporary_path(); }

  private:
    explicit StandardInputFile(os::ReplacementFile file) : file_(std::move(file)) {}

    os::ReplacementFile file_;  // never put in place
};

}  // namespace cli
