#pragma once

#include <string>
#include <string_view>

// The forms in which Unicode writes one text. unicode_forms_<library>.cpp implements them: with utf8proc,
// with Windows, or for ASCII alone where a build has neither.

namespace text {

/// The text in composed form (NFC): "e" and an accent after it become one character. Text that is not UTF-8
/// stays as it is.
[[nodiscard]] std::string composed(std::string_view utf8);

/// The composed text without differences of letter case, for comparisons only. Text that is not UTF-8 stays
/// as it is but for its ASCII letters.
[[nodiscard]] std::string case_folded(std::string_view utf8);

}  // namespace text
