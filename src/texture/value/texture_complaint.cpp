#include "texture/value/texture_complaint.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "texture/value/texture_file.h"

namespace {

/// Reads the bytes, so that a buffer that is shorter than it says meets AddressSanitizer. The sum is looked
/// at by nobody; volatile keeps the reading.
void walk(const PixelBuffer& buffer) {
    constexpr std::size_t kMostBytesRead = std::size_t{1} << 26;
    const std::size_t step = 1 + buffer.size() / kMostBytesRead;
    std::uint8_t sum = 0;
    for (std::size_t i = 0; i < buffer.size(); i += step) {
        sum = static_cast<std::uint8_t>(sum + buffer[i]);
    }
    if (!buffer.empty()) {
        sum = static_cast<std::uint8_t>(sum + buffer[buffer.size() - 1]);
    }
    [[maybe_unused]] const volatile std::uint8_t kept = sum;
}

/// How many bytes the UTF-8 character at the beginning of `text` has; 0 when it is none: cut off, longer
/// than needed, half of a UTF-16 pair, or beyond the last character there is.
std::size_t character_bytes(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    const std::size_t bytes = first < 0xC0 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF8 ? 4 : 0;
    if (bytes == 0 || bytes > text.size()) {
        return 0;
    }
    std::uint32_t character = first & (0x7FU >> bytes);
    for (std::size_t i = 1; i < bytes; ++i) {
        if ((byte(i) & 0xC0) != 0x80) {
            return 0;
        }
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool half = character >= 0xD800 && character <= 0xDFFF;
    return character < kLeast[bytes] || half || character > 0x10FFFF ? 0 : bytes;
}

bool is_utf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t bytes = character_bytes(text);
        if (bytes == 0) {
            return false;
        }
        text.remove_prefix(bytes);
    }
    return true;
}

}  // namespace

std::optional<std::string> texture_complaint(const Texture& texture) {
    if (std::optional<std::string> found = check_texture(texture)) {
        return found;
    }
    walk(texture.pixels);
    std::unordered_set<std::string_view> names;
    std::size_t number = 0;
    for (const AlphaChannel& alpha : texture.alphas) {
        ++number;
        const auto wrong = [number](const char* what) {
            return "alpha channel " + std::to_string(number) + ": " + what;
        };
        walk(alpha.values);
        if (alpha.name.empty()) {
            return wrong("it has no name");
        }
        if (!is_utf8(alpha.name)) {
            return wrong("its name is no UTF-8");
        }
        if (!names.insert(alpha.name).second) {
            return wrong("another has its name");
        }
    }
    return std::nullopt;
}
