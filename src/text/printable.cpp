#include "text/printable.h"

#include <algorithm>

#include "text/character_width.h"
#include "text/utf8.h"

namespace text {
namespace {

constexpr char kDigits[] = "0123456789abcdef";

// Control characters drive the terminal; the others reorder what is read, end a line, or are a byte order
// mark, which no one sees.
bool is_unsafe(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x061C || code == 0x200E ||
           code == 0x200F || code == 0xFEFF || (code >= 0x2028 && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

}  // namespace

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character character = first_character(text);
        const std::string_view bytes = text.substr(0, character.size_bytes == 0 ? 1 : character.size_bytes);
        if (character.size_bytes == 0 || is_unsafe(character.code_point)) {
            for (const char byte : bytes) {
                out += "\\x" + hexadecimal_bytes({&byte, 1});
            }
        } else {
            out += bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string shell_word(std::string_view text) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:,+@%=";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos && text.front() != '-') {
        return std::string(text);
    }
    // An option begins with a dash.
    std::string whole = text.starts_with('-') ? "./" + std::string(text) : std::string(text);
#if defined(_WIN32)
    return '"' + whole + '"';
#else
    const std::string shown = printable(whole);
    const bool in_escapes = shown != whole;
    std::string word = in_escapes ? "$'" : "'";
    while (!whole.empty()) {
        const std::size_t size = std::max<std::size_t>(first_character(whole).size_bytes, 1);
        const std::string one = whole.substr(0, size);
        if (one == "'") {
            word += in_escapes ? "\\'" : "'\\''";
        } else if (one == "\\" && in_escapes) {
            word += "\\\\";
        } else {
            word += printable(one);
        }
        whole.erase(0, size);
    }
    return word + "'";
#endif
}

std::string quoted(std::string_view text) {
    return '"' + printable(text) + '"';
}

std::size_t columns_of(std::string_view printable_text) {
    std::size_t columns = 0;
    while (!printable_text.empty()) {
        const Utf8Character character = first_character(printable_text);
        columns += character.size_bytes == 0 ? 1 : width_of(character.code_point);
        printable_text.remove_prefix(std::max<std::size_t>(character.size_bytes, 1));
    }
    return columns;
}

std::string hexadecimal(std::uint64_t value) {
    std::string digits;
    do {
        digits += kDigits[value & 15U];
        value >>= 4U;
    } while (value > 0);
    std::reverse(digits.begin(), digits.end());
    return "0x" + digits;
}

std::string hexadecimal_bytes(std::string_view bytes) {
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        digits += kDigits[byte >> 4U];
        digits += kDigits[byte & 15U];
    }
    return digits;
}

std::optional<std::string> bytes_of_hexadecimal(std::string_view digits) {
    constexpr std::string_view kKnown(kDigits);
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        const std::size_t high = kKnown.find(digits[i]);
        const std::size_t low = kKnown.find(digits[i + 1]);
        if (high == std::string_view::npos || low == std::string_view::npos) {
            return std::nullopt;
        }
        bytes += static_cast<char>(high << 4U | low);
    }
    return digits.size() % 2 == 0 ? std::optional(bytes) : std::nullopt;
}

}  // namespace text
