#include "texture/value/texture_invariants.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_set>

#include "text/utf8.h"
#include "texture/value/texture_file.h"

namespace {

/// Reads the bytes, so that AddressSanitizer finds a buffer that is shorter than its size. The sum is unused;
/// volatile keeps compilers from removing the reads.
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

}  // namespace

std::optional<std::string> validate_texture(const Texture& texture) {
    if (std::optional<std::string> found = validate_for_writing(texture)) {
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
        if (!text::is_utf8(alpha.name)) {
            return wrong("its name is not UTF-8");
        }
        if (!names.insert(alpha.name).second) {
            return wrong("another has its name");
        }
    }
    return std::nullopt;
}
