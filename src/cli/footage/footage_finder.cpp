#include "cli/footage/footage_finder.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <tuple>
#include <utility>

#include "embedded/sequence.h"
#include "system/files.h"
#include "text/ascii.h"

namespace cli {

namespace {

using embedded::NumberedName;

// Longer than any path of any system; a scene may hold one of 2 GiB.
constexpr std::size_t kMostPathBytes = std::size_t{1} << 16U;
// Folders on the way that have the name, in one of its writings.
constexpr std::size_t kMostBranches = 64;

constexpr std::array kPlaces{FinderPlace::as_written, FinderPlace::beside_scene, FinderPlace::mapped,
                             FinderPlace::searched};

std::vector<ReadName> read_names(const std::vector<std::string_view>& names) {
    return {names.begin(), names.end()};
}

// The root and the names of a path, for comparison with a prefix. A volume counts as a name, because "Disk"
// and "Disk:" mean the same to a user.
struct Beginning {
    PathRoot root;
    std::vector<ReadName> names;
};

Beginning beginning_of(std::string_view path) {
    const StoredPath parts = split_path(path);
    Beginning beginning{parts.root, {}};
    if (!parts.root_name.empty()) {
        beginning.names.emplace_back(parts.root_name);
    }
    for (const std::string_view name : parts.names) {
        beginning.names.emplace_back(name);
    }
    if (beginning.root == PathRoot::volume) {
        beginning.root = PathRoot::none;
    }
    return beginning;
}

// Unix tells letters apart by their case, and the systems with drives, servers and volumes do not.
MatchLevel prefix_level(PathRoot root) {
    return root == PathRoot::slash ? MatchLevel::text : MatchLevel::letter_case;
}

bool matches_prefix(const ReadName& one, const ReadName& other, MatchLevel level) {
    const auto match = match_names(one, other, level);
    return match && *match != NameMatch::cut_name;
}

bool begins_with(const Beginning& path, const Beginning& prefix) {
    if (path.root != prefix.root || path.names.size() < prefix.names.size()) {
        return false;
    }
    return std::equal(
        prefix.names.begin(), prefix.names.end(), path.names.begin(),
        [&](const ReadName& a, const ReadName& b) { return matches_prefix(a, b, prefix_level(path.root)); });
}

NameMatch looser(NameMatch one, NameMatch other) {
    return level_of(one) < level_of(other) ? other : one;
}

bool is_padded(const std::string& digits) {
    return digits.size() > 1 && digits.front() == '0';
}

// Whether two numbers can be frames of one sequence.
bool fit(const std::string& one, const std::string& other) {
    return one.size() == other.size() || (!is_padded(one) && !is_padded(other));
}

// How a file continues the sequence of a name; nothing if it does not.
std::optional<NameMatch> match_frame(const NumberedName& wanted, const ReadName& file, MatchLevel level) {
    const auto split = embedded::split_number(file.bytes());
    if (!split || !fit(wanted.digits, split->digits)) {
        return std::nullopt;
    }
    if (wanted.prefix == split->prefix && wanted.suffix == split->suffix) {
        return NameMatch::exact;
    }
    if (level == MatchLevel::exact) {
        return std::nullopt;
    }
    const auto match = match_names(ReadName(wanted.prefix + split->digits + wanted.suffix), file, level);
    return match == NameMatch::cut_name ? std::nullopt : match;
}

FindingRule rule_of(FinderPlace place, NameMatch match) {
    switch (match) {
        case NameMatch::unicode_form:
            return FindingRule::unicode_form;
        case NameMatch::mac_roman:
            return FindingRule::mac_roman;
        case NameMatch::windows_1252:
            return FindingRule::windows_1252;
        case NameMatch::cut_name:
            return FindingRule::cut_name;
        case NameMatch::letter_case:
            return FindingRule::letter_case;
        case NameMatch::exact:
            break;
    }
    constexpr std::array kExact{FindingRule::as_written, FindingRule::beside_scene, FindingRule::map,
                                FindingRule::tail};
    return kExact[static_cast<std::size_t>(place)];
}

}  // namespace

// What is looked for, taken apart.
struct FootageFinder::Search {
    explicit Search(const WantedFootage& footage)
        : wanted(footage),
          path(split_path(footage.written)),
          names(read_names(path.names)),
          folder(os::text_of(os::path_of(footage.scene).parent_path())) {
        const std::string_view last = last_name(footage.written);
        beside.emplace_back(last);
        if (footage.is_sequence && !path.names.empty()) {
            numbered = embedded::split_number(path.names.back());
        }
    }

    // How a file in the right folder answers the name.
    [[nodiscard]] std::optional<NameMatch> match(const ReadName& name, const ReadName& file) const {
        return other_frame ? match_frame(*numbered, file, level) : match_names(name, file, level);
    }

    const WantedFootage& wanted;
    StoredPath path;
    std::vector<ReadName> names;
    std::string folder;            // of the scene
    std::vector<ReadName> beside;  // the name beside the scene
    std::optional<NumberedName> numbered;
    MatchLevel level = MatchLevel::exact;
    bool other_frame = false;
    std::size_t least_tail = 0;  // what a shorter tail leads to does not count
};

FootageFinder::FootageFinder(FinderOptions options, Disk disk)
    : disk_(std::move(disk)),
      options_(std::move(options)),
      listing_(disk_),
      sequences_([this](const std::string& folder) { return listing_.regular_files(folder); }),
      tree_(listing_, options_.search) {
    for (PathMap& map : options_.maps) {
        map.to = os::absolute_path(map.to);
    }
}

std::optional<std::string> FootageFinder::found_exactly(const Search& search, FindingRule& rule) const {
    const std::string& written = search.wanted.written;
    // A path without a root would open in the folder in which the program was started.
    if (search.path.root != PathRoot::none && disk_.opens(written)) {
        rule = FindingRule::as_written;
        return written;
    }
    const std::string beside = joined_path(search.folder, last_name(written));
    if (!last_name(written).empty() && disk_.opens(beside)) {
        rule = FindingRule::beside_scene;
        return beside;
    }
    const auto kept = options_.kept.find(written);
    if (kept != options_.kept.end() && disk_.opens(kept->second)) {
        rule = FindingRule::kept;
        return kept->second;
    }
    return std::nullopt;
}

// Files below `base` under `names`, whose folders may be written as differently as the level allows.
void FootageFinder::add_below(const Search& search, const std::string& base,
                              const std::vector<ReadName>& names, std::size_t order,
                              std::vector<FootageMatch>& found) {
    if (names.empty()) {
        found.push_back({base, {}, NameMatch::exact, order, FinderPlace::mapped});
        return;
    }
    std::vector<std::pair<std::string, NameMatch>> folders{{base, NameMatch::exact}};
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        std::vector<std::pair<std::string, NameMatch>> next;
        for (const auto& [folder, so_far] : folders) {
            for (const FolderListing::Entry& entry : listing_.entries(folder)) {
                if (entry.kind != os::FileKind::folder || next.size() == kMostBranches) {
                    continue;
                }
                if (const auto match = match_names(names[i], entry.name, search.level)) {
                    next.emplace_back(joined_path(folder, entry.name.bytes()), looser(so_far, *match));
                }
            }
        }
        folders = std::move(next);
    }
    for (const auto& [folder, so_far] : folders) {
        for (const FolderListing::Entry& entry : listing_.entries(folder)) {
            if (entry.kind != os::FileKind::regular) {
                continue;
            }
            if (const auto match = search.match(names.back(), entry.name)) {
                found.push_back(
                    {folder, entry.name.bytes(), looser(so_far, *match), order, FinderPlace::as_written});
            }
        }
    }
}

// Behind the longest prefix that leads to something.
void FootageFinder::add_mapped(const Search& search, std::vector<FootageMatch>& found) {
    const Beginning path = beginning_of(search.wanted.written);
    std::map<std::size_t, std::vector<std::size_t>, std::greater<>> by_length;
    for (std::size_t i = 0; i < options_.maps.size(); ++i) {
        const Beginning prefix = beginning_of(options_.maps[i].from);
        if (begins_with(path, prefix)) {
            by_length[prefix.names.size()].push_back(i);
        }
    }
    for (const auto& [length, maps] : by_length) {
        const std::vector<ReadName> rest(path.names.begin() + static_cast<std::ptrdiff_t>(length),
                                         path.names.end());
        for (const std::size_t map : maps) {
            add_below(search, options_.maps[map].to, rest, map, found);
        }
        if (!found.empty()) {
            return;
        }
    }
}

void FootageFinder::add_searched(const Search& search, std::vector<FootageMatch>& found) {
    if (options_.search.empty() || search.names.empty()) {
        return;
    }
    const ReadName& name = search.names.back();
    const std::vector<SearchTree::FileId> files =
        search.other_frame
            ? tree_.numbered(ReadName(search.numbered->prefix), ReadName(search.numbered->suffix))
            : tree_.named(name, search.level);
    // The folders of a name may be in another form or encoding even where the name itself is not.
    const MatchLevel folders = std::max(search.level, MatchLevel::text);
    for (const SearchTree::FileId file : files) {
        const auto match = search.match(name, tree_.name_of(file));
        const std::size_t tail = match ? tree_.tail_length(file, search.names, folders) : 0;
        if (match && tail >= search.least_tail) {
            found.push_back({tree_.folder_of(file), tree_.name_of(file).bytes(), *match, tree_.order_of(file),
                             FinderPlace::searched, tail,
                             tree_.tail_length(file, search.names, MatchLevel::exact)});
        }
    }
}

std::vector<FootageMatch> FootageFinder::matches(const Search& search, FinderPlace place) {
    std::vector<FootageMatch> found;
    const auto native = native_root(search.path);
    switch (place) {
        case FinderPlace::as_written:
            if (native && !search.names.empty()) {
                add_below(search, *native, search.names, 0, found);
            }
            break;
        case FinderPlace::beside_scene:
            if (!search.beside.front().bytes().empty()) {
                add_below(search, search.folder, search.beside, 0, found);
            }
            break;
        case FinderPlace::mapped:
            add_mapped(search, found);
            break;
        case FinderPlace::searched:
            add_searched(search, found);
            break;
    }
    for (FootageMatch& match : found) {
        match.place = place;
    }
    return found;
}

Finding FootageFinder::decide(const Search& search, std::vector<FootageMatch> matches) const {
    keep_best(matches);
    if (search.wanted.is_sequence) {
        join_sequences(search.numbered ? search.numbered->digits : std::string(), matches);
    }
    std::erase_if(matches, [&](const FootageMatch& match) { return !disk_.opens(match.path()); });
    Finding finding;
    for (const FootageMatch& match : matches) {
        const std::string path = match.path();
        const bool known = std::any_of(
            finding.candidates.begin(), finding.candidates.end(), [&](const FootageCandidate& one) {
                return one.path == path || (!search.wanted.is_sequence && disk_.same_file(one.path, path));
            });
        if (!known) {
            const FindingRule rule =
                search.other_frame ? FindingRule::other_frame : rule_of(match.place, match.match);
            finding.candidates.push_back({path, rule, match.order});
        }
    }
    if (finding.candidates.empty()) {
        return finding;
    }
    std::stable_sort(finding.candidates.begin(), finding.candidates.end(),
                     [](const FootageCandidate& a, const FootageCandidate& b) {
                         return std::tie(a.order, a.path) < std::tie(b.order, b.path);
                     });
    bool decided = finding.candidates.size() == 1;
    if (!decided && options_.prefer != Preference::none) {
        decided = sort_by_preference(options_.prefer, disk_, finding.candidates);
    }
    finding.outcome = decided ? Finding::Outcome::found : Finding::Outcome::ambiguous;
    finding.rule = finding.candidates.front().rule;
    finding.tail = matches.front().tail;
    if (decided) {
        finding.path = finding.candidates.front().path;
    }
    if (finding.candidates.size() == 1) {
        finding.candidates.clear();
    }
    return finding;
}

Finding FootageFinder::find_at(Search& search, MatchLevel level, bool other_frame) {
    search.level = level;
    search.other_frame = other_frame;
    // The path itself has been tried, as it is.
    const bool tried = level == MatchLevel::exact && !other_frame;
    for (const FinderPlace place : kPlaces) {
        if (tried && place < FinderPlace::mapped) {
            continue;
        }
        Finding finding = decide(search, matches(search, place));
        if (finding.outcome != Finding::Outcome::missing) {
            return finding;
        }
    }
    return {};
}

Finding FootageFinder::find_other_frame(Search& search) {
    for (const MatchLevel level : {MatchLevel::exact, MatchLevel::text, MatchLevel::letter_case}) {
        Finding finding = find_at(search, level, true);
        if (finding.outcome != Finding::Outcome::missing) {
            return finding;
        }
    }
    return {};
}

Finding FootageFinder::find(const WantedFootage& wanted) {
    if (wanted.written.empty() || wanted.written.size() > kMostPathBytes) {
        return {};
    }
    Search search(wanted);
    Finding finding;
    if (auto path = found_exactly(search, finding.rule)) {
        finding.outcome = Finding::Outcome::found;
        finding.path = std::move(*path);
        return finding;
    }
    for (const MatchLevel level :
         {MatchLevel::exact, MatchLevel::text, MatchLevel::cut, MatchLevel::letter_case}) {
        finding = find_at(search, level, false);
        if (finding.outcome != Finding::Outcome::missing) {
            break;
        }
    }
    if (!search.numbered || finding.is_found()) {
        return finding;
    }
    // Several shots have a frame of this name, and the right folder has the sequence without it: another of
    // its frames is no guess.
    search.least_tail = finding.tail + 1;
    const Finding other = find_other_frame(search);
    return other.is_found() || finding.outcome == Finding::Outcome::missing ? other : finding;
}

}  // namespace cli
