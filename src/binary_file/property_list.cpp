#include "binary_file/property_list.h"

#include <algorithm>

namespace binary_file {
namespace {

std::string in_reading_order(std::string_view stored, ByteOrder order) {
    std::string code(stored);
    if (order == ByteOrder::little) {
        std::reverse(code.begin(), code.end());
    }
    return code;
}

}  // namespace

std::optional<std::string> Property::code() const {
    return data.size() == 4 ? std::optional(in_reading_order(data.all(), data.order())) : std::nullopt;
}

std::optional<std::uint32_t> Property::number() const {
    return data.size() == 4 ? std::optional(data.u32(0)) : std::nullopt;
}

std::optional<std::string_view> Property::counted_text() const {
    if (data.size() == 0 || data.u8(0) > data.size() - 1) {
        return std::nullopt;
    }
    return data.bytes(1, data.u8(0));
}

std::optional<std::string_view> Property::terminated_text() const {
    const std::size_t end = data.all().find('\0');
    return end == std::string_view::npos ? std::nullopt : std::optional(data.all().substr(0, end));
}

const Property* PropertyList::find(std::string_view key) const {
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [key](const Property& property) { return property.key == key; });
    return found == properties.end() ? nullptr : &*found;
}

PropertyList read_property_list(const ByteView& data, PropertyForm form) {
    PropertyList list;
    const bool windows = form == PropertyForm::windows;
    const ByteView view(data.all(), windows ? ByteOrder::little : ByteOrder::big, data.start_bytes());
    try {
        std::uint64_t at = 0;
        if (windows) {
            if (view.u16(0) != 1) {
                throw Damage(view.start_bytes(), "the property list begins with " +
                                                     std::to_string(view.u16(0)) +
                                                     " where Windows hosts expect 1");
            }
            at = 2;
        }
        if (view.u32(at) != 0) {
            throw Damage(view.start_bytes() + at,
                         "the property list has version " + std::to_string(view.u32(at)) + ", not 0");
        }
        const std::uint32_t count = view.u32(at + 4);
        at += 8;
        for (std::uint32_t i = 0; i < count; ++i) {
            const ByteView head = view.part(at, 16);
            const std::uint32_t length = head.u32(12);
            if (length % 4 != 0) {
                throw Damage(head.start_bytes(), "a property of " + std::to_string(length) +
                                                     " bytes, which is not a multiple of 4");
            }
            list.properties.push_back({in_reading_order(head.bytes(0, 4), view.order()),
                                       in_reading_order(head.bytes(4, 4), view.order()),
                                       view.part(at + 16, length), head.start_bytes()});
            at += 16 + std::uint64_t{length};
        }
    } catch (const Damage& damage) {
        list.damage = damage;
    }
    return list;
}

}  // namespace binary_file
