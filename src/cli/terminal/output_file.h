#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "system/replacement_file.h"

namespace cli {

/// A text file that a verb writes for the user. It takes its place when it is complete: until `close` has
/// succeeded, what was there stays, and it stays when anything fails. Devices and pipes, and what /dev/stdout
/// and the like lead to, are written as they are. What cannot be written throws std::runtime_error with the
/// path and the reason.
class OutputFile {
  public:
    /// Finds out whether the file can be written. Never waits for somebody to read from a pipe: that nobody
    /// does is an error.
    explicit OutputFile(std::string path);

    /// Remembers what went wrong for `close`.
    void write(std::string_view text);
    /// Everything is written and in its place; throws when it could not be.
    void close();

  private:
    struct CloseStream {
        void operator()(std::FILE* stream) const { std::fclose(stream); }
    };

    void keep_error();
    [[noreturn]] void give_up() const;

    std::string path_;
    std::optional<os::ReplacementFile> replacement_;  // null for what is written as it is
    std::unique_ptr<std::FILE, CloseStream> stream_;
    std::error_code failure_;  // the first
};

}  // namespace cli
