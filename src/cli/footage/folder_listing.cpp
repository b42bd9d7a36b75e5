#include "cli/footage/folder_listing.h"

#include <algorithm>
#include <system_error>

#include "system/open_regular_file.h"

namespace cli {
namespace {

FileFacts facts_of(const std::string& path) {
    std::error_code none;
    FileFacts facts;
    facts.size_bytes = os::file_state(path).size_bytes;
    facts.changed = std::filesystem::last_write_time(os::native_path(path), none);
    return facts;
}

bool are_one_file(const std::string& one, const std::string& other) {
    std::error_code none;
    return std::filesystem::equivalent(os::native_path(one), os::native_path(other), none);
}

}  // namespace

Disk real_disk() {
    return {os::entries_in,
            [](const std::string& path) { return os::InputFile(os::open_exactly(path.c_str())) != nullptr; },
            facts_of, are_one_file};
}

const std::vector<FolderListing::Entry>& FolderListing::entries(const std::string& folder) {
    const auto [place, is_new] = folders_.try_emplace(folder);
    std::vector<Entry>& entries = place->second;
    if (is_new) {
        for (const os::FolderEntry& entry : disk_.entries_in(folder)) {
            entries.push_back({ReadName(entry.name), entry.kind, entry.is_link});
        }
        std::sort(entries.begin(), entries.end(),
                  [](const Entry& a, const Entry& b) { return a.name.bytes() < b.name.bytes(); });
    }
    return entries;
}

std::vector<std::string> FolderListing::regular_files(const std::string& folder) {
    std::vector<std::string> names;
    for (const Entry& entry : entries(folder)) {
        if (entry.kind == os::FileKind::regular) {
            names.push_back(entry.name.bytes());
        }
    }
    return names;
}

}  // namespace cli
