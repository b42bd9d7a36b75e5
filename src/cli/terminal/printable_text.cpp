#include "cli/terminal/printable_text.h"

#include <cstdint>

namespace cli {
namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t bytes = 0;  ///< 0: no UTF-8 begins here
};

struct Lead {
    std::size_t bytes;
    std::uint32_t least;  ///< what fewer bytes could say is overlong
    std::uint8_t mask;
    std::uint8_t value;
};

constexpr Lead kLeads[] = {
    {1, 0, 0x80, 0x00}, {2, 0x80, 0xE0, 0xC0}, {3, 0x800, 0xF0, 0xE0}, {4, 0x10000, 0xF8, 0xF0}};

Character character_at(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    for (const Lead& lead : kLeads) {
        if ((byte(0) & lead.mask) != lead.value || text.size() < lead.bytes) {
            continue;
        }
        auto code = static_cast<std::uint32_t>(byte(0) & static_cast<std::uint8_t>(~lead.mask));
        for (std::size_t i = 1; i < lead.bytes; ++i) {
            if ((byte(i) & 0xC0) != 0x80) {
                return {};
            }
            code = code << 6 | (byte(i) & 0x3FU);
        }
        const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
        return code < lead.least || code > 0x10FFFF || surrogate ? Character{} : Character{code, lead.bytes};
    }
    return {};
}

// Control characters drive the terminal; the others here reorder what is read or end a line.
bool is_unsafe(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x061C || code == 0x200E ||
           code == 0x200F || (code >= 0x2028 && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

void append_hex(std::string& out, std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        out += "\\x";
        out += kDigits[byte >> 4];
        out += kDigits[byte & 15];
    }
}

}  // namespace

std::string printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Character character = character_at(text);
        const std::string_view bytes = text.substr(0, character.bytes == 0 ? 1 : character.bytes);
        if (character.bytes == 0 || is_unsafe(character.code)) {
            append_hex(out, bytes);
        } else {
            out += bytes;
        }
        text.remove_prefix(bytes.size());
    }
    return out;
}

std::string quoted(std::string_view text) {
    return '"' + printable(text) + '"';
}

std::size_t columns_of(std::string_view printable_text) {
    std::size_t columns = 0;
    for (const char c : printable_text) {
        columns += (static_cast<std::uint8_t>(c) & 0xC0) == 0x80 ? 0 : 1;
    }
    return columns;
}

}  // namespace cli
