#pragma once

// A Macintosh bundle's Info.plist, as far as its outermost dictionary has texts.

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "binary_file/byte_view.h"

namespace binary_file {

struct InfoPlist {
    bool binary = false;                       ///< the binary form, which is not read
    std::map<std::string, std::string> texts;  ///< key and text of the outermost dictionary
    std::optional<Damage> damage;              ///< what is read up to there stands

    [[nodiscard]] std::optional<std::string> text(const std::string& key) const;
};

/// Reads the XML form. Does not throw for any bytes, but for memory.
InfoPlist read_info_plist(std::string_view bytes);

}  // namespace binary_file
