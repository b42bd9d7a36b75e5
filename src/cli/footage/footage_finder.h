#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/footage/folder_listing.h"
#include "cli/footage/name_match.h"
#include "cli/footage/search_tree.h"
#include "cli/footage/sequence_files.h"
#include "cli/footage/stored_path.h"

// Where the footage of a scene is today. docs/relink.md explains the rules to artists.

namespace cli {

/// How footage was found, in the order in which the rules are tried. Where a name matches in several ways,
/// the rule of the looser one counts.
enum class FindingRule {
    as_written,    ///< at the path in the scene
    beside_scene,  ///< under its last name in the scene's folder
    kept,          ///< at the path that a job file or an answer of the user keeps for it
    map,           ///< behind a prefix that the user maps
    tail,          ///< below a search folder, under the longest tail of the path
    // The names of the places above, written differently:
    unicode_form,
    mac_roman,
    windows_1252,
    cut_name,
    letter_case,
    other_frame,  ///< of a sequence: another file of it
};

/// "as-written", "unicode-form", ...
[[nodiscard]] const char* label(FindingRule rule);

/// Which one of several files of equal rank is taken.
enum class Preference { none, newest, largest, first };

/// "newest", "largest" or "first"; nothing for any other text.
[[nodiscard]] std::optional<Preference> parse_preference(std::string_view text);
/// The inverse; empty for none.
[[nodiscard]] const char* label(Preference preference);

/// Footage as a scene names it.
struct WantedFootage {
    std::string scene;    ///< the full path of the scene
    std::string written;  ///< the path in it, any bytes
    bool is_sequence = false;
};

struct FootageCandidate {
    std::string path;
    FindingRule rule = FindingRule::as_written;
    std::size_t order = 0;  ///< the position of its map or search folder
};

struct Finding {
    enum class Outcome {
        found,
        ambiguous,  ///< the candidates are of equal rank, and nothing decides between them
        missing,
    };
    Outcome outcome = Outcome::missing;
    FindingRule rule = FindingRule::as_written;  ///< of the path, or of the first candidate
    std::string path;                            ///< a full path of this system, when found
    std::vector<FootageCandidate> candidates;    ///< when ambiguous, or decided by a preference: all
    std::size_t tail = 0;  ///< how many names of the path's end lead there from a search folder
};

/// "found", "ambiguous", "missing"
[[nodiscard]] const char* label(Finding::Outcome outcome);

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
    SequenceIndex& sequences() { return sequences_; }

  private:
    struct Match;
    struct Search;

    std::optional<std::string> found_exactly(const Search& search, FindingRule& rule) const;
    Finding decide(const Search& search, std::vector<Match> matches, bool other_frame) const;
    std::vector<Match> matches(const Search& search, int place);
    void add_mapped(const Search& search, std::vector<Match>& found);
    void add_searched(const Search& search, std::vector<Match>& found);
    void add_below(const Search& search, const std::string& base, const std::vector<ReadName>& names,
                   std::size_t order, std::vector<Match>& found);
    Finding find_at(Search& search, MatchLevel level, bool other_frame);
    Finding find_other_frame(Search& search);

    Disk disk_;
    FinderOptions options_;
    FolderListing listing_;
    SequenceIndex sequences_;
    SearchTree tree_;
};

}  // namespace cli
