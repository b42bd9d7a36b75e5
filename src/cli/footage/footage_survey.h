#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "cli/footage/footage_finder.h"
#include "embedded/sequence.h"

namespace cli {

/// Footage that is missing, and what looks like it nearby.
struct NearMiss {
    Finding finding;           ///< `missing` if nothing does
    bool in_tree = false;      ///< found below the scene's folder, not at one of the paths in the scene
    bool tree_is_cut = false;  ///< there are more folders and files below the scene than were looked at
};

/// What the checks of one run know about folders. Each folder is read once, however many scenes and sequences
/// are in it. Safe to use from several threads, unless there is a finder.
class FootageSurvey {
  public:
    /// `finder`, where the user said where footage is, outlives the survey; it may be null. `read_pixels`:
    /// checks may read whole pictures and every file of a sequence.
    explicit FootageSurvey(FootageFinder* finder = nullptr, bool read_pixels = false);
    FootageSurvey(const FootageSurvey&) = delete;
    FootageSurvey& operator=(const FootageSurvey&) = delete;

    [[nodiscard]] FootageFinder* finder() const { return finder_; }
    [[nodiscard]] bool reads_pixels() const { return read_pixels_; }

    /// The sequence that a host imports for the file at `path`; nothing if its name has no number.
    [[nodiscard]] std::optional<embedded::SequenceFrames> sequence(const std::string& path);

    /// The full paths of the sequence's files, in the order of their numbers.
    [[nodiscard]] std::vector<std::string> sequence_paths(const std::string& path);

    /// What may be meant by footage that is in neither of its places: its names written differently, another
    /// frame of its sequence, or a file below the scene's folder.
    [[nodiscard]] NearMiss near_miss(const WantedFootage& wanted);

    /// How many folders have been read.
    [[nodiscard]] std::size_t folders_read() const {
        const std::scoped_lock lock(mutex_);
        return folders_.size();
    }

  private:
    // The folder of a scene with what lies below it.
    struct Tree {
        std::unique_ptr<FootageFinder> finder;
        std::int64_t names_left = 0;
        bool is_cut = false;
    };

    const std::vector<os::FolderEntry>& entries_in(const std::string& folder);
    std::vector<os::FolderEntry> entries_of_tree(const std::string& root, const std::string& folder,
                                                 Tree& tree);
    Tree& tree_of(const std::string& root);
    [[nodiscard]] Disk disk();

    FootageFinder* finder_;
    bool read_pixels_;
    mutable std::mutex mutex_;
    std::unordered_map<std::string, std::vector<os::FolderEntry>> folders_;
    std::int64_t names_left_;  // of the run
    FootageFinder plain_;
    std::map<std::string, Tree> trees_;
};

}  // namespace cli
