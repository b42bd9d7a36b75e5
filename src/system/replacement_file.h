#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace os {

/// A file that is written beside the one it will replace and takes its place in one step, so that nobody ever
/// sees half of it: what was there stays until everything is written, and stays when anything fails.
///
/// The temporary file has a hidden name of its own with the same extension, and goes with this object when it
/// was not put in place. Only a process that is killed leaves it behind.
class ReplacementFile {
  public:
    /// Makes the empty temporary file. A link at `path` is followed, also to where nothing is yet. Null when
    /// there is no such folder, it cannot be written to, links lead round in a circle, or what is at `path`
    /// is not a regular file that may be written; `error` then says why.
    static std::optional<ReplacementFile> create(const std::string& path, std::string& error);

    ReplacementFile(ReplacementFile&& other) noexcept;
    ReplacementFile& operator=(ReplacementFile&& other) noexcept;
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;
    ~ReplacementFile();

    /// Where to write. Nothing may have the file open when it is put in place.
    [[nodiscard]] const std::string& temporary_path() const { return temporary_path_; }

    /// Makes `bytes` the whole of the temporary file. False when not all of it could be written; `error` then
    /// says why.
    bool fill(std::string_view bytes, std::string& error);

    /// Waits until the disk has the file and puts it in place, with the permissions of the one that it
    /// replaces. False when that failed; `error` then says why, and what was there is still there.
    bool put_in_place(std::string& error);

  private:
    ReplacementFile(std::string path, std::string target, std::string temporary_path)
        : path_(std::move(path)), target_(std::move(target)), temporary_path_(std::move(temporary_path)) {}
    void discard();

    std::string path_;            // as it was given
    std::string target_;          // behind its links
    std::string temporary_path_;  // empty once it is in place
};

}  // namespace os
