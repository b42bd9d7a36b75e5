#include "host/byte_encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "host/utf16.h"

namespace {

constexpr unsigned char kFirstOfTable = 0x80;

// The upper 128 bytes of each encoding.

constexpr std::array<char16_t, 128> windows_1252() {
    // From 0xA0 on, the bytes are the code points.
    constexpr std::array<char16_t, 32> kOthers = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
    };
    std::array<char16_t, 128> table = {};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = i < kOthers.size() ? kOthers[i] : static_cast<char16_t>(kFirstOfTable + i);
    }
    return table;
}

constexpr std::array<char16_t, 128> kWindows1252 = windows_1252();

constexpr std::array<char16_t, 128> kMacRoman = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

constexpr ByteEncoding kEncodings[] = {ByteEncoding::windows_1252, ByteEncoding::mac_roman};

bool is_utf8(std::string_view text) {
    return !utf16_from_utf8(text).fault;
}

std::string utf8_from_bytes(std::string_view bytes, ByteEncoding encoding) {
    // Both tables hold characters only, no halves of surrogate pairs: the conversion always succeeds.
    return utf8_from_utf16(utf16_from_bytes(bytes, encoding)).text;
}

std::string path_in(std::string_view path, ByteEncoding encoding) {
    std::string decoded;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find_first_of("/\\", at), path.size());
        decoded += utf8_from_name(path.substr(at, end - at), encoding);
        decoded += path.substr(end, 1);
        at = end + 1;
    }
    return decoded;
}

}  // namespace

const char* label(ByteEncoding encoding) {
    return encoding == ByteEncoding::windows_1252 ? "windows-1252" : "mac-roman";
}

std::optional<ByteEncoding> parse_byte_encoding(std::string_view text) {
    for (const ByteEncoding encoding : kEncodings) {
        if (text == label(encoding)) {
            return encoding;
        }
    }
    return std::nullopt;
}

std::u16string utf16_from_bytes(std::string_view bytes, ByteEncoding encoding) {
    const auto& table = encoding == ByteEncoding::windows_1252 ? kWindows1252 : kMacRoman;
    std::u16string units;
    units.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        units += byte < kFirstOfTable ? static_cast<char16_t>(byte)
                                      : table[static_cast<std::size_t>(byte - kFirstOfTable)];
    }
    return units;
}

std::u16string utf16_from_name(std::string_view name, ByteEncoding encoding) {
    ConvertedText<std::u16string> converted = utf16_from_utf8(name);
    return converted.fault ? utf16_from_bytes(name, encoding) : std::move(converted.text);
}

std::string utf8_from_name(std::string_view name, ByteEncoding encoding) {
    return is_utf8(name) ? std::string(name) : utf8_from_bytes(name, encoding);
}

std::vector<std::string> paths_in_other_encodings(std::string_view path) {
    std::vector<std::string> paths;
    if (!is_utf8(path)) {
        for (const ByteEncoding encoding : kEncodings) {
            paths.push_back(path_in(path, encoding));
        }
    }
    return paths;
}
