#include "cli/footage/footage_survey.h"

#include <algorithm>
#include <utility>

#include "cli/footage/stored_path.h"
#include "limit/limits.h"
#include "system/file_identity.h"
#include "system/files.h"

namespace cli {
namespace {

std::string folder_with(const std::string& path) {
    const std::string folder = os::text_of(os::path_of(path).parent_path());
    return folder.empty() ? "." : folder;
}

std::string file_name_of(const std::string& path) {
    return os::text_of(os::path_of(path).filename());
}

// How many names lead from `root` to `folder`; nothing if it lies elsewhere.
std::optional<std::int64_t> levels_below(const std::string& root, const std::string& folder) {
    if (folder == root) {
        return 0;
    }
    const std::string begin = joined_path(root, "");
    if (!folder.starts_with(begin)) {
        return std::nullopt;
    }
    const auto rest = folder.begin() + static_cast<std::ptrdiff_t>(begin.size());
    return 1 + std::count_if(rest, folder.end(), [](char c) { return c == '/' || c == '\\'; });
}

}  // namespace

FootageSurvey::FootageSurvey(FootageFinder* finder, bool read_pixels)
    : finder_(finder),
      read_pixels_(read_pixels),
      names_left_(limits::kNearbyNamesOfRun),
      plain_({}, disk()) {}

Disk FootageSurvey::disk() {
    Disk disk = real_disk();
    disk.entries_in = [this](const std::string& folder) { return entries_in(folder); };
    return disk;
}

const std::vector<os::FolderEntry>& FootageSurvey::entries_in(const std::string& folder) {
    const auto [place, is_new] = folders_.try_emplace(folder);
    if (is_new) {
        place->second = os::entries_in(folder);
    }
    return place->second;
}

// What lies too deep, and what comes after too many names, is left out.
std::vector<os::FolderEntry> FootageSurvey::entries_of_tree(const std::string& root,
                                                            const std::string& folder, Tree& tree) {
    const auto level = levels_below(root, folder);
    if (!level) {
        return {};
    }
    if (*level > limits::kNearbyLevels || std::min(tree.names_left, names_left_) <= 0) {
        tree.is_cut = true;
        return {};
    }
    std::vector<os::FolderEntry> entries = entries_in(folder);
    const auto most = static_cast<std::size_t>(std::min(tree.names_left, names_left_));
    if (entries.size() > most) {
        tree.is_cut = true;
        entries.resize(most);
    }
    tree.names_left -= static_cast<std::int64_t>(entries.size());
    names_left_ -= static_cast<std::int64_t>(entries.size());
    return entries;
}

FootageSurvey::Tree& FootageSurvey::tree_of(const std::string& root) {
    const auto [place, is_new] = trees_.try_emplace(root);
    Tree& tree = place->second;
    if (is_new) {
        tree.names_left = limits::kNearbyNames;
        Disk disk = real_disk();
        // Entries of a map stay where they are.
        disk.entries_in = [this, root, &tree](const std::string& folder) {
            return entries_of_tree(root, folder, tree);
        };
        FinderOptions options;
        options.search = {root};
        tree.finder = std::make_unique<FootageFinder>(std::move(options), std::move(disk));
    }
    return tree;
}

std::optional<embedded::SequenceFrames> FootageSurvey::sequence(const std::string& path) {
    const auto name = embedded::split_number(file_name_of(path));
    if (!name) {
        return std::nullopt;
    }
    const std::scoped_lock lock(mutex_);
    return embedded::sequence_among(plain_.sequences().numbers_beside(folder_with(path), *name), *name, {});
}

std::vector<std::string> FootageSurvey::sequence_paths(const std::string& path) {
    const std::string folder = folder_with(path);
    const std::scoped_lock lock(mutex_);
    std::vector<std::string> paths;
    for (const SequenceFile& file :
         sequence_files(plain_.sequences(), joined_path(folder, file_name_of(path)))) {
        paths.push_back(joined_path(folder, file.name));
    }
    return paths;
}

NearMiss FootageSurvey::near_miss(const WantedFootage& wanted) {
    const std::scoped_lock lock(mutex_);
    NearMiss miss;
    miss.finding = plain_.find(wanted);
    if (miss.finding.outcome != Finding::Outcome::missing) {
        return miss;
    }
    Tree& tree = tree_of(os::canonical_path(folder_with(wanted.scene)));
    miss.finding = tree.finder->find(wanted);
    miss.in_tree = miss.finding.outcome != Finding::Outcome::missing;
    miss.tree_is_cut = tree.is_cut;
    return miss;
}

}  // namespace cli
