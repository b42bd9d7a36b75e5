#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Opens files by name; open_regular_file_<platform>.cpp implements it. Names are UTF-8 on Windows, which
// opens them as wide characters at any length that it allows; elsewhere they are bytes.

namespace os {

/// Opens a regular file for reading bytes, links followed. Returns null for a path that is missing,
/// unreadable, or names a folder, a pipe, a socket or a device, and never waits for one of those: footage
/// paths come from a file and may name anything. The caller closes the stream.
///
/// While a PathGuesses lives on this thread, a path that does not open is looked for as its guesses say.
[[nodiscard]] std::FILE* open_regular_file(const char* path);

/// The same for this path alone, without guesses.
[[nodiscard]] std::FILE* open_exactly(const char* path);

/// Until its end, open_regular_file tries on this thread what `guess` says when it cannot open a path, in
/// that order. They nest.
class PathGuesses {
  public:
    /// Other paths that this one may mean. May throw std::bad_alloc; then no other path is tried.
    using Guess = std::vector<std::string> (*)(std::string_view path);

    explicit PathGuesses(Guess guess);
    ~PathGuesses();
    PathGuesses(const PathGuesses&) = delete;
    PathGuesses& operator=(const PathGuesses&) = delete;

  private:
    Guess outer_;
};

struct CloseInputFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// An open file that closes itself.
using InputFile = std::unique_ptr<std::FILE, CloseInputFile>;

/// open_regular_file with an owner. It never waits, even if the path changed since someone looked at it.
inline InputFile open_input_file(const std::string& path) {
    return InputFile(open_regular_file(path.c_str()));
}

/// A name under which the system reopens the file that was opened at `path`, whatever is at `path` by now;
/// `path` itself on systems without such names. Valid while `file` is open.
[[nodiscard]] std::string name_of_open_file(std::FILE* file, const char* path);

/// Opens `path` for writing bytes, which empties an existing file. Returns null on failure. The caller closes
/// the stream.
[[nodiscard]] std::FILE* open_file_to_write(const char* path);

}  // namespace os
