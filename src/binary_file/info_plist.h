#pragma once

// The Info.plist of a macOS bundle: the texts in its outermost dictionary.

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "binary_file/byte_view.h"

namespace binary_file {

struct InfoPlist {
    bool binary = false;                       ///< the binary form, which is not read
    std::map<std::string, std::string> texts;  ///< key and text of the outermost dictionary
    std::optional<Damage> damage;              ///< what was read before it is kept

    [[nodiscard]] std::optional<std::string> text(const std::string& key) const;
};

/// Reads the XML form. No content makes it throw; only a lack of memory does.
InfoPlist read_info_plist(std::string_view bytes);

}  // namespace binary_file
