#pragma once

// The property list ("PiPL") that tells a host about a plug-in before the host loads it. script/pipl writes
// ours.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "binary_file/byte_view.h"

namespace binary_file {

/// On Windows, numbers and four-character codes have their lowest byte first, and the list begins with an
/// extra word.
enum class PropertyForm { windows, macos };

struct Property {
    std::string vendor;  ///< four characters in reading order: "8BIM"
    std::string key;     ///< "kind", "8664"
    ByteView data;
    std::uint64_t offset_bytes = 0;  ///< of the property, in the file

    /// The data as a code in reading order, and as a number; nothing unless it is exactly four bytes long.
    [[nodiscard]] std::optional<std::string> code() const;
    [[nodiscard]] std::optional<std::uint32_t> number() const;
    /// The text after a length byte; nothing when the length exceeds the data.
    [[nodiscard]] std::optional<std::string_view> counted_text() const;
    /// The text before the first NUL byte; nothing when there is no NUL byte.
    [[nodiscard]] std::optional<std::string_view> terminated_text() const;
};

struct PropertyList {
    std::vector<Property> properties;
    std::optional<Damage> damage;  ///< the properties before it are kept

    /// The first one with that key, or null.
    [[nodiscard]] const Property* find(std::string_view key) const;
};

/// No content makes it throw; only a lack of memory does.
PropertyList read_property_list(const ByteView& data, PropertyForm form);

}  // namespace binary_file
