#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "system/signal_cleanup.h"

namespace os {

/// A file that is written under a temporary name and then replaces its target in one step, so that a
/// half-written file is never visible: the old file stays until everything is written, and stays if anything
/// fails.
///
/// The temporary file is in the same folder, under a hidden name with the same extension, which is allowed
/// wherever the target's name is. It has the permissions of the file that it replaces from the beginning, and
/// its owner where the system allows that. The destructor deletes it unless it was put in place, and so do
/// the signals of end_on_signals(); only a killed process leaves it behind.
class ReplacementFile {
  public:
    /// Creates the empty temporary file. Follows a link at `path`, even to a file that does not exist yet.
    /// Null when the folder is missing or read-only, links form a cycle, or `path` is something other than a
    /// writable regular file; `error` then says why.
    static std::optional<ReplacementFile> create(const std::string& path, std::string& error);

    ReplacementFile(ReplacementFile&& other) noexcept;
    ReplacementFile& operator=(ReplacementFile&& other) noexcept;
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    ~ReplacementFile();

    /// Where to write. Close the file before it is put in place.
    [[nodiscard]] const std::string& temporary_path() const { return temporary_path_; }

    /// Writes `bytes` as the whole contents of the temporary file. False when that fails; `error` then says
    /// why.
    bool fill(std::string_view bytes, std::string& error);

    /// Whether the disk has the bytes before the file is in place. Without that, a machine that loses power
    /// may leave an empty or cut file behind: only for files of which that is noticed and does no harm.
    enum class Flush { yes, no };

    /// Flushes the file to disk and moves it over the target, with the target's permissions. False when that
    /// fails; `error` then says why, and the old file is still there.
    bool put_in_place(std::string& error, Flush flush = Flush::yes);

  private:
    ReplacementFile() = default;
    void discard();

    std::string path_;            // as given
    std::string target_;          // with links followed
    std::string temporary_path_;  // empty once it is in place
    RemovedOnSignal cleanup_;     // of the temporary file
    std::string notice_;          // what could not be kept of the file that is replaced
};

/// The name of a temporary file for a file named `name`: hidden, with `suffix` in it and the extension of
/// `name`. A long name is shortened, so that the result is allowed wherever `name` is, however the system
/// counts: in bytes, UTF-16 units or characters.
[[nodiscard]] std::string temporary_name(std::string_view name, std::string_view suffix);

}  // namespace os
