#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the search for a scene's footage finds. docs/relink.md explains the rules to artists.

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

    [[nodiscard]] bool is_found() const { return outcome == Outcome::found; }
};

/// "found", "ambiguous", "missing"
[[nodiscard]] const char* label(Finding::Outcome outcome);

}  // namespace cli
