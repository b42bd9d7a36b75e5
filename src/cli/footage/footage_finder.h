#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/footage/folder_listing.h"
#include "cli/footage/footage_finding.h"
#include "cli/footage/footage_match.h"
#include "cli/footage/name_match.h"
#include "cli/footage/search_tree.h"
#include "cli/footage/sequence_files.h"
#include "cli/footage/stored_path.h"

// Where the footage of a scene is today.

namespace cli {

/// Footage as a scene names it.
struct WantedFootage {
    std::string scene;    ///< the full path of the scene
    std::string written;  ///< the path in it, any bytes
    bool is_sequence = false;
};

struct FinderOptions {
    std::vector<std::string> search;  ///< folders, searched with everything below them
    std::vector<PathMap> maps;
    Preference prefer = Preference::none;
    std::map<std::string, std::string> kept;  ///< decided before: paths by the paths as written
};

/// Finds the footage of any number of scenes. Reads each folder once, and the search folders only when
/// something is found nowhere else. For one thread.
class FootageFinder {
  public:
    explicit FootageFinder(FinderOptions options, Disk disk = real_disk());
    FootageFinder(const FootageFinder&) = delete;
    FootageFinder& operator=(const FootageFinder&) = delete;

    [[nodiscard]] Finding find(const WantedFootage& wanted);

    /// From now on `written` means `path`, unless it leads to a file as it is.
    void keep(const std::string& written, const std::string& path) { options_.kept[written] = path; }

    [[nodiscard]] const FinderOptions& options() const { return options_; }
    /// The sequences in the folders that were read so far, and in others.
    embedded::SequenceIndex& sequences() { return sequences_; }

  private:
    struct Search;

    std::optional<std::string> found_exactly(const Search& search, FindingRule& rule) const;
    Finding decide(const Search& search, std::vector<FootageMatch> matches) const;
    std::vector<FootageMatch> matches(const Search& search, FinderPlace place);
    void add_mapped(const Search& search, std::vector<FootageMatch>& found);
    void add_searched(const Search& search, std::vector<FootageMatch>& found);
    void add_below(const Search& search, const std::string& base, const std::vector<ReadName>& names,
                   std::size_t order, std::vector<FootageMatch>& found);
    Finding find_at(Search& search, MatchLevel level, bool other_frame);
    Finding find_other_frame(Search& search);

    Disk disk_;
    FinderOptions options_;
    FolderListing listing_;
    embedded::SequenceIndex sequences_;
    SearchTree tree_;
};

}  // namespace cli
