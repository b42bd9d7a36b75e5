#include "cli/footage/footage_match.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include "embedded/sequence.h"

namespace cli {

using embedded::NumberedName;

void join_sequences(const std::string& wanted_digits, std::vector<FootageMatch>& matches) {
    using Key = std::tuple<std::string, std::string, std::string>;
    std::map<Key, std::vector<std::string>> digits_of;
    std::vector<std::optional<NumberedName>> splits;
    for (const FootageMatch& match : matches) {
        splits.push_back(embedded::split_number(match.name));
        if (const auto& split = splits.back()) {
            digits_of[{match.folder, split->prefix, split->suffix}].push_back(split->digits);
        }
    }
    const auto rank = [&](std::size_t i) {
        const std::string& digits = splits[i]->digits;
        return std::tuple(digits != wanted_digits, digits.size(), digits);
    };
    std::map<std::pair<Key, std::size_t>, std::size_t> first;
    std::vector<FootageMatch> joined;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        if (!splits[i]) {
            joined.push_back(matches[i]);
            continue;
        }
        const Key key{matches[i].folder, splits[i]->prefix, splits[i]->suffix};
        const std::size_t padding = embedded::padding_of(splits[i]->digits, digits_of[key]);
        const auto [place, is_new] = first.try_emplace({key, padding}, i);
        if (!is_new && rank(i) < rank(place->second)) {
            place->second = i;
        }
    }
    for (const auto& [key, i] : first) {
        joined.push_back(matches[i]);
    }
    matches = std::move(joined);
}

void keep_best(std::vector<FootageMatch>& matches) {
    const auto rank = [](const FootageMatch& match) {
        return std::tuple(level_of(match.match), -static_cast<std::int64_t>(match.tail),
                          -static_cast<std::int64_t>(match.exact_tail));
    };
    if (matches.empty()) {
        return;
    }
    const auto best =
        std::min_element(matches.begin(), matches.end(),
                         [&](const FootageMatch& a, const FootageMatch& b) { return rank(a) < rank(b); });
    const auto highest = rank(*best);
    std::erase_if(matches, [&](const FootageMatch& match) { return rank(match) != highest; });
}

bool sort_by_preference(Preference prefer, const Disk& disk, std::vector<FootageCandidate>& candidates) {
    std::vector<std::pair<FileFacts, FootageCandidate>> known;
    known.reserve(candidates.size());
    for (FootageCandidate& one : candidates) {
        known.emplace_back(disk.facts(one.path), std::move(one));
    }
    const auto before = [prefer](const auto& a, const auto& b) {
        switch (prefer) {
            case Preference::newest:
                return a.first.changed > b.first.changed;
            case Preference::largest:
                return a.first.size_bytes > b.first.size_bytes;
            default:
                return a.second.order < b.second.order;
        }
    };
    std::stable_sort(known.begin(), known.end(), before);
    const bool decided = before(known[0], known[1]);
    candidates.clear();
    for (auto& one : known) {
        candidates.push_back(std::move(one.second));
    }
    return decided;
}

}  // namespace cli
