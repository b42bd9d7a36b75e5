#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/footage/folder_listing.h"
#include "cli/footage/footage_finding.h"
#include "cli/footage/name_match.h"
#include "cli/footage/stored_path.h"

// The files that may be meant by a path of a scene, and which of them goes before which.

namespace cli {

/// Where the finder looks, in this order.
enum class FinderPlace { as_written, beside_scene, mapped, searched };

/// A file that may be meant.
struct FootageMatch {
    std::string folder;  ///< or the whole path, if there is no name
    std::string name;
    NameMatch match;
    std::size_t order;  ///< the position of its map or search folder
    FinderPlace place;
    std::size_t tail = 0;        ///< how many names of the path's end lead there, of a searched file
    std::size_t exact_tail = 0;  ///< the same, compared byte by byte

    [[nodiscard]] std::string path() const { return name.empty() ? folder : joined_path(folder, name); }
};

/// Keeps those of the highest rank: the closest match, then the longest tail.
void keep_best(std::vector<FootageMatch>& matches);

/// Leaves one file of each sequence, which is one footage: the file with the number `wanted_digits` if there
/// is one, else the first.
void join_sequences(const std::string& wanted_digits, std::vector<FootageMatch>& matches);

/// Sorts at least two candidates by what the user prefers. Returns whether that decides: equal ones stay
/// undecided.
[[nodiscard]] bool sort_by_preference(Preference prefer, const Disk& disk,
                                      std::vector<FootageCandidate>& candidates);

}  // namespace cli
