#include "text/utf8.h"

#include <cstdint>

namespace text {
namespace {

struct LeadByte {
    std::size_t size_bytes;
    char32_t least;  ///< smaller code points have a shorter form
    std::uint8_t mask;
    std::uint8_t value;
};

constexpr LeadByte kLeadBytes[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

constexpr bool leads(std::uint16_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

constexpr bool trails(std::uint16_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

Utf8Character first_character(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    for (const LeadByte& lead : kLeadBytes) {
        if ((byte(0) & lead.mask) != lead.value || text.size() < lead.size_bytes) {
            continue;
        }
        auto code_point = static_cast<char32_t>(byte(0) & static_cast<std::uint8_t>(~lead.mask));
        for (std::size_t i = 1; i < lead.size_bytes; ++i) {
            if ((byte(i) & 0xC0) != 0x80) {
                return {};
            }
            code_point = code_point << 6 | (byte(i) & 0x3FU);
        }
        const bool surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
        if (code_point < lead.least || code_point > 0x10FFFF || surrogate) {
            return {};
        }
        return {code_point, lead.size_bytes};
    }
    return {};
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character character = first_character(text);
        if (character.size_bytes == 0) {
            return false;
        }
        text.remove_prefix(character.size_bytes);
    }
    return true;
}

void append_utf8(std::string& text, char32_t character) {
    const auto continuation = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        text += continuation(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        text += continuation(6);
        text += continuation(0);
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        text += continuation(12);
        text += continuation(6);
        text += continuation(0);
    }
}

std::string utf8_of_units(std::span<const std::uint16_t> units) {
    constexpr char32_t kReplacement = 0xFFFD;
    std::string text;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const std::uint16_t unit = units[i];
        if (leads(unit) && i + 1 < units.size() && trails(units[i + 1])) {
            append_utf8(text, 0x10000 + ((char32_t{unit} & 0x3FF) << 10) + (char32_t{units[++i]} & 0x3FF));
        } else {
            append_utf8(text, leads(unit) || trails(unit) ? kReplacement : char32_t{unit});
        }
    }
    return text;
}

}  // namespace text
