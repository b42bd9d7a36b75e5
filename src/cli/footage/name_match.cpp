#include "cli/footage/name_match.h"

#include <algorithm>

#include "host/byte_encoding.h"
#include "text/unicode_forms.h"
#include "text/utf8.h"

namespace cli {
namespace {

// Of well-formed UTF-8.
std::size_t characters_in(std::string_view utf8) {
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

bool is_hexadecimal(std::string_view digits) {
    return !digits.empty() && digits.find_first_not_of("0123456789ABCDEFabcdef") == std::string_view::npos;
}

// The extension with its full stop; empty without one.
std::string_view extension_of(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : name.substr(dot);
}

// The match of names whose readings are these two and equal.
NameMatch kind_of(const ReadName::Reading& one, const ReadName::Reading& other) {
    return one.how == NameMatch::unicode_form ? other.how : one.how;
}

template <class Equal>
std::optional<NameMatch> first_equal(const ReadName& one, const ReadName& other, const Equal& equal) {
    for (const ReadName::Reading& mine : one.readings()) {
        for (const ReadName::Reading& theirs : other.readings()) {
            if (equal(mine.text, theirs.text)) {
                return kind_of(mine, theirs);
            }
        }
    }
    return std::nullopt;
}

}  // namespace

ReadName::ReadName(std::string_view bytes) : bytes_(bytes) {
    if (text::is_utf8(bytes)) {
        readings_.push_back({text::composed(bytes), NameMatch::unicode_form});
        return;
    }
    readings_.push_back(
        {text::composed(utf8_from_name(bytes, ByteEncoding::mac_roman)), NameMatch::mac_roman});
    readings_.push_back(
        {text::composed(utf8_from_name(bytes, ByteEncoding::windows_1252)), NameMatch::windows_1252});
}

std::optional<NameMatch> match_names(const ReadName& one, const ReadName& other, MatchLevel level) {
    if (one.bytes() == other.bytes()) {
        return NameMatch::exact;
    }
    if (level < MatchLevel::text) {
        return std::nullopt;
    }
    if (const auto match = first_equal(one, other, [](const auto& a, const auto& b) { return a == b; })) {
        return match;
    }
    if (level < MatchLevel::cut) {
        return std::nullopt;
    }
    const auto cut = [](const std::string& a, const std::string& b) {
        return is_cut_from(a, b) || is_cut_from(b, a);
    };
    if (first_equal(one, other, cut)) {
        return NameMatch::cut_name;
    }
    if (level < MatchLevel::letter_case) {
        return std::nullopt;
    }
    const auto folded = [](const std::string& a, const std::string& b) {
        return text::case_folded(a) == text::case_folded(b);
    };
    return first_equal(one, other, folded) ? std::optional(NameMatch::letter_case) : std::nullopt;
}

MatchLevel level_of(NameMatch match) {
    switch (match) {
        case NameMatch::exact:
            return MatchLevel::exact;
        case NameMatch::unicode_form:
        case NameMatch::mac_roman:
        case NameMatch::windows_1252:
            return MatchLevel::text;
        case NameMatch::cut_name:
            return MatchLevel::cut;
        case NameMatch::letter_case:
            break;
    }
    return MatchLevel::letter_case;
}

std::vector<CutName> cut_names(std::string_view name) {
    constexpr std::size_t kMostDigits = 8;  // the number of a file has 32 bits
    std::vector<CutName> cuts;
    const std::size_t characters = characters_in(name);
    if (characters > kCutNameCharacters) {
        return cuts;
    }
    const std::string_view extension = extension_of(name);
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    // A "#" and the number of the file, in front of the extension.
    const std::size_t mark = stem.rfind('#');
    if (mark != std::string_view::npos && mark > 0 && stem.size() - mark - 1 <= kMostDigits &&
        is_hexadecimal(stem.substr(mark + 1))) {
        cuts.push_back({std::string(stem.substr(0, mark)), std::string(extension)});
    }
    if (characters == kCutNameCharacters) {
        // Cut before the extension, or after the 31st character.
        if (!extension.empty()) {
            cuts.push_back({std::string(stem), std::string(extension)});
        }
        cuts.push_back({std::string(name), {}});
    }
    return cuts;
}

bool is_cut_from(std::string_view cut, std::string_view whole) {
    if (characters_in(whole) <= kCutNameCharacters) {
        return false;
    }
    const std::vector<CutName> cuts = cut_names(cut);
    return std::any_of(cuts.begin(), cuts.end(), [&](const CutName& one) {
        return whole.size() > one.beginning.size() + one.ending.size() && whole.starts_with(one.beginning) &&
               whole.ends_with(one.ending);
    });
}

}  // namespace cli
