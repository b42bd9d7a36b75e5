#include "host/utf16.h"

namespace {

constexpr char32_t kFirstHighSurrogate = 0xD800;
constexpr char32_t kFirstLowSurrogate = 0xDC00;
constexpr char32_t kLastSurrogate = 0xDFFF;
constexpr char32_t kFirstBeyondBasicPlane = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;

/// One code point and its length in units of the source; 0 units if it is invalid.
struct Decoded {
    char32_t code_point = 0;
    std::size_t units = 0;
};

bool is_surrogate(char32_t code_point) {
    return code_point >= kFirstHighSurrogate && code_point <= kLastSurrogate;
}

// What the first byte says: the number of bytes, its share of the bits, and the smallest code point that
// needs so many bytes. Anything smaller is overlong.
struct LeadByte {
    std::size_t bytes;
    char32_t bits;
    char32_t smallest;
};

LeadByte lead_byte(unsigned char byte) {
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if (byte >= 0xC0 && byte < 0xE0) {
        return {2, byte & 0x1FU, 0x80};
    }
    if (byte >= 0xE0 && byte < 0xF0) {
        return {3, byte & 0x0FU, 0x800};
    }
    if (byte >= 0xF0 && byte < 0xF8) {
        return {4, byte & 0x07U, kFirstBeyondBasicPlane};
    }
    return {0, 0, 0};
}

Decoded decode_utf8(std::string_view text) {
    const LeadByte lead = lead_byte(static_cast<unsigned char>(text.front()));
    if (lead.bytes == 0 || lead.bytes > text.size()) {
        return {};
    }
    char32_t code_point = lead.bits;
    for (const char continuation : text.substr(1, lead.bytes - 1)) {
        const auto byte = static_cast<unsigned char>(continuation);
        if ((byte & 0xC0U) != 0x80U) {
            return {};
        }
        code_point = (code_point << 6) | (byte & 0x3FU);
    }
    if (code_point < lead.smallest || code_point > kLastCodePoint || is_surrogate(code_point)) {
        return {};
    }
    return {code_point, lead.bytes};
}

Decoded decode_utf16(std::u16string_view text) {
    const char32_t first = text.front();
    if (!is_surrogate(first)) {
        return {first, 1};
    }
    if (first >= kFirstLowSurrogate || text.size() < 2) {
        return {};
    }
    const char32_t second = text[1];
    if (second < kFirstLowSurrogate || second > kLastSurrogate) {
        return {};
    }
    return {kFirstBeyondBasicPlane + ((first - kFirstHighSurrogate) << 10) + (second - kFirstLowSurrogate),
            2};
}

void append(char32_t code_point, std::u16string* text) {
    if (code_point < kFirstBeyondBasicPlane) {
        *text += static_cast<char16_t>(code_point);
        return;
    }
    const char32_t offset = code_point - kFirstBeyondBasicPlane;
    *text += static_cast<char16_t>(kFirstHighSurrogate + (offset >> 10));
    *text += static_cast<char16_t>(kFirstLowSurrogate + (offset & 0x3FFU));
}

void append(char32_t code_point, std::string* text) {
    const auto continuation = [code_point](int shift) {
        return static_cast<char>(0x80U | ((code_point >> shift) & 0x3FU));
    };
    if (code_point < 0x80) {
        *text += static_cast<char>(code_point);
    } else if (code_point < 0x800) {
        *text += static_cast<char>(0xC0U | (code_point >> 6));
        *text += continuation(0);
    } else if (code_point < kFirstBeyondBasicPlane) {
        *text += static_cast<char>(0xE0U | (code_point >> 12));
        *text += continuation(6);
        *text += continuation(0);
    } else {
        *text += static_cast<char>(0xF0U | (code_point >> 18));
        *text += continuation(12);
        *text += continuation(6);
        *text += continuation(0);
    }
}

template <typename String, typename View>
ConvertedText<String> converted(View text, Decoded (*decode)(View)) {
    ConvertedText<String> result;
    result.text.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Decoded decoded = decode(text.substr(at));
        if (decoded.units == 0) {
            return {{}, at};
        }
        append(decoded.code_point, &result.text);
        at += decoded.units;
    }
    return result;
}

}  // namespace

ConvertedText<std::u16string> utf16_from_utf8(std::string_view text) {
    return converted<std::u16string>(text, decode_utf8);
}

ConvertedText<std::string> utf8_from_utf16(std::u16string_view text) {
    return converted<std::string>(text, decode_utf16);
}
