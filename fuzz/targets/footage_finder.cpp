// Looks for any path on a disk that consists of any names: the first byte chooses a sequence and what decides
// between files of equal rank, the first line is the path in the scene, and every other line a file below the
// folder that is searched or, after "scene/" or "mapped/", beside the scene or behind the map.

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "cli/footage/footage_finder.h"
#include "input.h"

const std::size_t kOptionBytes = 1;

namespace {

// More files than any rule needs, and few enough to be fast.
constexpr std::size_t kMostFiles = 60;
const std::string kRoot = "/no folder of this disk";

struct MadeDisk {
    std::map<std::string, std::map<std::string, os::FileKind>> folders;
    std::set<std::string> files;
    std::map<std::string, int> reads;

    void add(std::string_view line) {
        std::string path = kRoot;
        while (!line.empty()) {
            const std::size_t end = std::min(line.find('/'), line.size());
            const std::string name(line.substr(0, end));
            line.remove_prefix(std::min(end + 1, line.size()));
            if (name.empty() || name == "." || name == ".." || name.find('\0') != std::string::npos) {
                return;
            }
            const auto [entry, is_new] =
                folders[path].try_emplace(name, line.empty() ? os::FileKind::regular : os::FileKind::folder);
            path += '/' + name;
            if (entry->second == os::FileKind::regular) {
                files.insert(path);
                return;
            }
        }
    }

    cli::Disk disk() {
        return {[this](const std::string& folder) {
                    require(++reads[folder] == 1, "each folder is read once");
                    std::vector<os::FolderEntry> entries;
                    for (const auto& [name, kind] : folders[folder]) {
                        entries.push_back({name, kind, false});
                    }
                    return entries;
                },
                [this](const std::string& path) { return files.count(path) != 0; },
                [](const std::string& path) {
                    return cli::FileFacts{path.size(), {}};
                },
                [](const std::string& one, const std::string& other) { return one == other; }};
    }
};

void check(const cli::Finding& found, const MadeDisk& disk) {
    using Outcome = cli::Finding::Outcome;
    std::set<std::string> paths;
    for (const cli::FootageCandidate& candidate : found.candidates) {
        require(disk.files.count(candidate.path) != 0, "a candidate exists");
        require(paths.insert(candidate.path).second, "no candidate comes twice");
    }
    require(found.candidates.size() != 1, "a single candidate is the result, and no candidate is listed");
    require((found.outcome == Outcome::found) == !found.path.empty(), "what is found has a path");
    require(found.path.empty() || disk.files.count(found.path) != 0, "what is found exists");
    require(found.outcome != Outcome::ambiguous || found.candidates.size() > 1, "several files may be meant");
    require(found.outcome != Outcome::missing || found.candidates.empty(),
            "what is missing has no candidates");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned option = input.take();
    std::string_view text = input.rest_text();
    std::vector<std::string> lines;
    while (!text.empty() && lines.size() <= kMostFiles) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (lines.empty()) {
        return 0;
    }
    const std::string written = lines.front().substr(0, lines.front().find('\0'));
    MadeDisk disk;
    for (std::size_t i = 1; i < lines.size(); ++i) {
        disk.add(lines[i]);
    }
    cli::FinderOptions options;
    options.search = {kRoot};
    options.maps = {{"C:", kRoot + "/mapped"}, {"Disk", kRoot + "/mapped"}};
    options.prefer = static_cast<cli::Preference>(option % 4);
    const bool is_sequence = (option & 4U) != 0;
    cli::FootageFinder finder(options, disk.disk());
    const cli::WantedFootage wanted{kRoot + "/scene/shot.aec", written, is_sequence};
    const cli::Finding found = finder.find(wanted);
    check(found, disk);
    const cli::Finding again = finder.find(wanted);
    require(again.path == found.path && again.outcome == found.outcome,
            "the same question has the same answer");
    return 0;
}
