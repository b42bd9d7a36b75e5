#pragma once

// The property list ("PiPL") by which a host knows a plug-in without loading it. script/pipl writes ours.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "binary_file/byte_view.h"

namespace binary_file {

/// Windows stores numbers and four-character codes with their lowest byte first, after a word of its own.
enum class PropertyForm { windows, macos };

struct Property {
    std::string vendor;  ///< four characters in reading order: "8BIM"
    std::string key;     ///< "kind", "8664"
    ByteView data;
    std::uint64_t offset_bytes = 0;  ///< of the property, in the file

    /// Of data of exactly four bytes: a code in reading order, and the same as a number.
    [[nodiscard]] std::optional<std::string> code() const;
    [[nodiscard]] std::optional<std::uint32_t> number() const;
    /// A text behind its length in one byte; nothing when the length is beyond the data.
    [[nodiscard]] std::optional<std::string_view> counted_text() const;
    /// A text up to a NUL byte; nothing without one.
    [[nodiscard]] std::optional<std::string_view> terminated_text() const;
};

struct PropertyList {
    std::vector<Property> properties;
    std::optional<Damage> damage;  ///< the properties before it stand

    /// The first one with that key, or null.
    [[nodiscard]] const Property* find(std::string_view key) const;
};

/// Does not throw for any bytes, but for memory.
PropertyList read_property_list(const ByteView& data, PropertyForm form);

}  // namespace binary_file
