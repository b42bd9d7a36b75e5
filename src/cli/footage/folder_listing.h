#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/footage/name_match.h"
#include "system/files.h"

namespace cli {

/// What is asked of a file when several may be meant.
struct FileFacts {
    std::uint64_t size_bytes = 0;
    std::filesystem::file_time_type changed;
};

/// The disk as the search for footage sees it. Tests make their own.
struct Disk {
    std::function<std::vector<os::FolderEntry>(const std::string& folder)> entries_in;
    /// Whether a regular file opens for reading.
    std::function<bool(const std::string& path)> opens;
    std::function<FileFacts(const std::string& path)> facts;
    /// Whether both names lead to one file.
    std::function<bool(const std::string& one, const std::string& other)> same_file;
};

/// This system's.
[[nodiscard]] Disk real_disk();

/// Folders that have been looked at: each is read once, however often it is asked for.
class FolderListing {
  public:
    struct Entry {
        ReadName name;
        os::FileKind kind;
        bool is_link;
    };

    explicit FolderListing(const Disk& disk) : disk_(disk) {}

    /// In the order of their bytes; empty for a folder that cannot be read. Valid as long as the listing.
    const std::vector<Entry>& entries(const std::string& folder);
    /// The names of the regular files among them.
    [[nodiscard]] std::vector<std::string> regular_files(const std::string& folder);

  private:
    const Disk& disk_;
    std::unordered_map<std::string, std::vector<Entry>> folders_;
};

}  // namespace cli
