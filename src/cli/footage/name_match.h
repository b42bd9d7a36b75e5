#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Whether a name in a scene and a name on a disk are the same name, written differently.

namespace cli {

/// How two names are equal.
enum class NameMatch {
    exact,         ///< the same bytes
    unicode_form,  ///< composed in one, decomposed in the other (NFC, NFD)
    mac_roman,     ///< one of them in the bytes of classic Mac OS
    windows_1252,  ///< one of them in the bytes of Windows
    cut_name,      ///< one of them was cut at 31 characters
    letter_case,   ///< capital letters in one, small ones in the other
};

/// How far two names may differ. Each level allows what the levels before it allow.
enum class MatchLevel {
    exact,
    text,  ///< the same characters, in another form or encoding
    cut,
    letter_case,
};

inline constexpr std::size_t kCutNameCharacters = 31;

/// A name in the readings that it may have: of UTF-8 one, of other bytes one for each encoding.
class ReadName {
  public:
    struct Reading {
        std::string text;  ///< composed, in UTF-8
        NameMatch how;     ///< unicode_form for UTF-8, else the encoding
    };

    explicit ReadName(std::string_view bytes);

    [[nodiscard]] const std::string& bytes() const { return bytes_; }
    [[nodiscard]] const std::vector<Reading>& readings() const { return readings_; }

  private:
    std::string bytes_;
    std::vector<Reading> readings_;
};

/// The closest way in which the names are equal, within `level`; nothing if they are not.
[[nodiscard]] std::optional<NameMatch> match_names(const ReadName& one, const ReadName& other,
                                                   MatchLevel level);

/// The level that a match belongs to.
[[nodiscard]] MatchLevel level_of(NameMatch match);

/// The beginnings and endings that a name of more than 31 characters may have kept when a server cut it:
/// "Background plate of s#1A2B.tif" begins with "Background plate of s" and ends with ".tif".
struct CutName {
    std::string beginning;
    std::string ending;  ///< the extension with its full stop, or empty
};

/// What a name says about the longer one it was cut from: nothing if it was not cut. In UTF-8.
[[nodiscard]] std::vector<CutName> cut_names(std::string_view name);

/// Whether `cut` may be what was left of `whole`; both in UTF-8.
[[nodiscard]] bool is_cut_from(std::string_view cut, std::string_view whole);

}  // namespace cli
