#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "system/replacement_file.h"

namespace cli {

/// A text file that a verb writes for the user. It replaces an existing file only when `close` succeeds;
/// after any failure the old file is still there. Devices, pipes and the targets of /dev/stdout and the like
/// are written directly. Throws std::runtime_error with the path and the reason when the file cannot be
/// written.
class OutputFile {
  public:
    /// Fails at once if the file cannot be written. Never waits for a reader of a pipe: a pipe without one is
    /// an error.
    explicit OutputFile(std::string path);

    /// Keeps the first failure for `close`.
    void write(std::string_view text);
    /// Completes the file and puts it in place. Throws if anything has failed since the constructor.
    void close();

  private:
    struct CloseStream {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void keep_error();
    [[noreturn]] void give_up() const;

    std::string path_;
    std::optional<os::ReplacementFile> replacement_;  // nothing when the file is written directly
    std::unique_ptr<std::FILE, CloseStream> stream_;
    std::error_code failure_;  // the first one
};

}  // namespace cli
