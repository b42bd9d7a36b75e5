#include "embedded/text_encoding.h"

#include <cstdint>

namespace embedded {
namespace {

constexpr unsigned kFirstHigh = 0xD800U;
constexpr unsigned kFirstLow = 0xDC00U;
constexpr unsigned kLastLow = 0xDFFFU;
constexpr unsigned kFirstPaired = 0x10000U;  // the first code point that takes two units

/// The length in bytes of the well-formed sequence at the start of `text`, or 0. The well-formed sequences
/// are those of the Unicode standard, section 3.9, table 3-7.
std::size_t utf8_sequence_length(std::string_view text) {
    const auto byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto continues = [&byte](std::size_t i, unsigned low = 0x80U, unsigned high = 0xBFU) {
        return byte(i) >= low && byte(i) <= high;
    };
    const unsigned first = byte(0);
    if (first < 0x80U) {
        return 1;
    }
    if (first >= 0xC2U && first <= 0xDFU) {
        return continues(1) ? 2 : 0;
    }
    if (first >= 0xE0U && first <= 0xEFU) {
        const unsigned low = first == 0xE0U ? 0xA0U : 0x80U;   // no overlong forms
        const unsigned high = first == 0xEDU ? 0x9FU : 0xBFU;  // no surrogates
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (first >= 0xF0U && first <= 0xF4U) {
        const unsigned low = first == 0xF0U ? 0x90U : 0x80U;
        const unsigned high = first == 0xF4U ? 0x8FU : 0xBFU;  // nothing above U+10FFFF
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

/// The code point of a well-formed sequence of this length.
unsigned code_point_of(std::string_view text, std::size_t length) {
    constexpr unsigned kBitsOfFirst[] = {0, 0x7FU, 0x1FU, 0x0FU, 0x07U};  // by length
    unsigned code_point = static_cast<unsigned char>(text[0]) & kBitsOfFirst[length];
    for (std::size_t i = 1; i < length; ++i) {
        code_point = (code_point << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    return code_point;
}

/// The length in units of the well-formed sequence at the start of `text`, or 0.
std::size_t utf16_sequence_length(Utf16View text) {
    const unsigned first = text[0];
    if (first < kFirstHigh || first > kLastLow) {
        return 1;
    }
    return first < kFirstLow && text.size() > 1 && text[1] >= kFirstLow && text[1] <= kLastLow ? 2 : 0;
}

unsigned code_point_of(Utf16View text, std::size_t length) {
    if (length == 1) {
        return text[0];
    }
    return kFirstPaired + ((text[0] - kFirstHigh) << 10U) + (text[1] - kFirstLow);
}

void append(Utf16String& text, unsigned code_point) {
    if (code_point < kFirstPaired) {
        text += static_cast<A_UTF16Char>(code_point);
        return;
    }
    const unsigned offset = code_point - kFirstPaired;
    text += static_cast<A_UTF16Char>(kFirstHigh + (offset >> 10U));
    text += static_cast<A_UTF16Char>(kFirstLow + (offset & 0x3FFU));
}

void append(std::string& text, unsigned code_point) {
    const auto byte = [&text](unsigned value) { text += static_cast<char>(value); };
    const auto following = [&](unsigned shift) { byte(0x80U | ((code_point >> shift) & 0x3FU)); };
    if (code_point < 0x80U) {
        byte(code_point);
    } else if (code_point < 0x800U) {
        byte(0xC0U | (code_point >> 6U));
        following(0);
    } else if (code_point < kFirstPaired) {
        byte(0xE0U | (code_point >> 12U));
        following(6);
        following(0);
    } else {
        byte(0xF0U | (code_point >> 18U));
        following(12);
        following(6);
        following(0);
    }
}

template <class Text, class Length>
std::optional<std::size_t> fault_in(Text text, const Length& sequence_length) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequence_length(text.substr(at));
        if (length == 0) {
            return at;
        }
        at += length;
    }
    return std::nullopt;
}

template <class To, class Text, class Length>
std::optional<To> converted(Text text, const Length& sequence_length) {
    To made;
    while (!text.empty()) {
        const std::size_t length = sequence_length(text);
        if (length == 0) {
            return std::nullopt;
        }
        append(made, code_point_of(text, length));
        text.remove_prefix(length);
    }
    return made;
}

}  // namespace

std::optional<std::size_t> first_fault(std::string_view utf8) {
    return fault_in(utf8, utf8_sequence_length);
}

std::optional<std::size_t> first_fault(Utf16View utf16) {
    return fault_in(utf16, utf16_sequence_length);
}

std::optional<Utf16String> to_utf16(std::string_view utf8) {
    return converted<Utf16String>(utf8, utf8_sequence_length);
}

std::optional<std::string> to_utf8(Utf16View utf16) {
    return converted<std::string>(utf16, utf16_sequence_length);
}

}  // namespace embedded
