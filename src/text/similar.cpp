#include "text/similar.h"

#include <algorithm>
#include <cstddef>

namespace text {
namespace {

/// The number of changes between two words.
std::size_t changes_between(std::string_view one, std::string_view other) {
    const std::size_t columns = other.size() + 1;
    std::vector<std::size_t> changes((one.size() + 1) * columns);
    const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& { return changes[i * columns + j]; };
    for (std::size_t i = 0; i <= one.size(); ++i) {
        for (std::size_t j = 0; j <= other.size(); ++j) {
            if (i == 0 || j == 0) {
                at(i, j) = i + j;
                continue;
            }
            const std::size_t replaced = at(i - 1, j - 1) + (one[i - 1] == other[j - 1] ? 0 : 1);
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, replaced});
            if (i > 1 && j > 1 && one[i - 1] == other[j - 2] && one[i - 2] == other[j - 1]) {
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
            }
        }
    }
    return changes.back();
}

}  // namespace

std::string most_similar(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t kLongest = 64;  // no candidate is as long, and the table of changes stays small
    if (word.size() > kLongest) {
        return {};
    }
    std::string best;
    std::size_t fewest = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t changes = changes_between(word, candidate);
        if (changes < fewest) {
            fewest = changes;
            best = candidate;
        }
    }
    if (!best.empty()) {
        return best;
    }
    const auto begins = [word](const std::string& candidate) { return candidate.starts_with(word); };
    const bool only_one = !word.empty() && std::count_if(candidates.begin(), candidates.end(), begins) == 1;
    return only_one ? *std::find_if(candidates.begin(), candidates.end(), begins) : std::string();
}

std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates) {
    const std::string similar = most_similar(word, candidates);
    return similar.empty() ? std::string() : "; did you mean \"" + similar + "\"?";
}

}  // namespace text
