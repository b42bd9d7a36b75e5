#include "binary_file/byte_view.h"

#include <algorithm>

namespace binary_file {

std::string_view ByteView::bytes(std::uint64_t at, std::uint64_t count) const {
    if (at > size() || count > size() - at) {
        throw Damage(at > UINT64_MAX - start_bytes_ ? UINT64_MAX : start_bytes_ + at,
                     std::to_string(count) + " bytes are expected here, and " +
                         std::to_string(at > size() ? 0 : size() - at) + " are left");
    }
    return bytes_.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(count));
}

std::string_view ByteView::text(std::uint64_t at) const {
    const std::string_view rest = bytes(at, at > size() ? 1 : std::min(size() - at, kLongestText));
    const std::size_t end = rest.find('\0');
    if (end == std::string_view::npos) {
        throw Damage(start_bytes_ + at, "a name has no end");
    }
    return rest.substr(0, end);
}

ByteView ByteView::part(std::uint64_t at, std::uint64_t count) const {
    return ByteView(bytes(at, count), order_, start_bytes_ + at);
}

ByteView ByteView::from(std::uint64_t at) const {
    return part(at, at > size() ? 1 : size() - at);
}

std::uint64_t ByteView::number(std::uint64_t at, unsigned width) const {
    std::uint64_t value = 0;
    const std::string_view stored = bytes(at, width);
    for (unsigned i = 0; i < width; ++i) {
        const char byte = stored[order_ == ByteOrder::big ? i : width - 1 - i];
        value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
}

std::uint8_t ByteView::u8(std::uint64_t at) const {
    return static_cast<std::uint8_t>(number(at, 1));
}
std::uint16_t ByteView::u16(std::uint64_t at) const {
    return static_cast<std::uint16_t>(number(at, 2));
}
std::uint32_t ByteView::u32(std::uint64_t at) const {
    return static_cast<std::uint32_t>(number(at, 4));
}
std::uint64_t ByteView::u64(std::uint64_t at) const {
    return number(at, 8);
}

}  // namespace binary_file
