#include "text/svg.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "text/printable.h"
#include "text/utf8.h"

namespace text {
namespace {

// A byte order mark the other way round, and the code point beside it: UTF-8 can hold them, XML cannot.
constexpr char32_t kNotInXml = 0xfffe;
constexpr char32_t kAlsoNotInXml = 0xffff;

std::string with_entities(std::string_view printable_text) {
    std::string safe;
    for (std::string_view rest = printable_text; !rest.empty();) {
        // printable() leaves well-formed characters only.
        const Utf8Character character = first_character(rest);
        const std::size_t size = std::max<std::size_t>(character.size_bytes, 1);
        switch (character.code_point) {
            case U'&':
                safe += "&amp;";
                break;
            case U'<':
                safe += "&lt;";
                break;
            case U'>':
                safe += "&gt;";
                break;
            case U'"':
                safe += "&quot;";
                break;
            case kNotInXml:
            case kAlsoNotInXml:
                append_utf8(safe, 0xfffd);
                break;
            default:
                safe += rest.substr(0, size);
        }
        rest.remove_prefix(size);
    }
    return safe;
}

// The first characters, and whether there are more.
std::string_view beginning(std::string_view printable_text, std::size_t most_characters) {
    std::string_view rest = printable_text;
    for (std::size_t i = 0; i < most_characters && !rest.empty(); ++i) {
        rest.remove_prefix(std::max<std::size_t>(first_character(rest).size_bytes, 1));
    }
    return printable_text.substr(0, printable_text.size() - rest.size());
}

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::string svg_text(std::string_view text) {
    return with_entities(printable(text));
}

std::string svg_name(std::string_view name, std::size_t most_characters) {
    constexpr char32_t kEllipsis = 0x2026;
    constexpr char32_t kFirstStrongIsolate = 0x2068;
    constexpr char32_t kPopIsolate = 0x2069;
    const std::string whole = printable(name);
    const std::string_view shown = beginning(whole, most_characters);
    std::string safe = with_entities(shown);
    if (shown.size() < whole.size()) {
        append_utf8(safe, kEllipsis);
    }
    if (is_ascii(shown)) {
        return safe;
    }
    std::string isolated;
    append_utf8(isolated, kFirstStrongIsolate);
    isolated += safe;
    append_utf8(isolated, kPopIsolate);
    return isolated;
}

std::string svg_number(double number) {
    constexpr double kFarthest = 1e6;
    constexpr double kHundredths = 100;
    const double bounded = std::isnan(number) ? 0 : std::clamp(number, -kFarthest, kFarthest);
    // Rounded first: there is no -0.00.
    const double rounded = std::round(bounded * kHundredths) / kHundredths + 0.0;
    std::array<char, 16> written{};
    const auto end =
        std::to_chars(written.data(), written.data() + written.size(), rounded, std::chars_format::fixed, 2);
    std::string digits(written.data(), end.ptr);
    // "12.50" is "12.5" and "12.00" is "12".
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') {
        digits.pop_back();
    }
    return digits;
}

}  // namespace text
