#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace text {

/// The candidate that someone who typed `word` is likeliest to have meant: the one that the fewest changes of
/// a letter (replaced, left out, added, or swapped with its neighbour) lead to, or the only one that begins
/// with `word`. Empty when none is close: up to a third of the letters may differ.
[[nodiscard]] std::string most_similar(std::string_view word, const std::vector<std::string>& candidates);

/// The same as the end of a message about a word that nothing is called: "; did you mean "loss"?". Empty when
/// none is close.
[[nodiscard]] std::string did_you_mean(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace text
