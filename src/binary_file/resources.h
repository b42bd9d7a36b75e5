#pragma once

// Where plug-ins keep their property list: the resources of a portable executable, and the resource file of a
// macOS bundle.

#include <functional>
#include <string_view>
#include <vector>

#include "binary_file/binary_file.h"

namespace binary_file {

/// Finds the data at an address relative to the image.
using AtAddress = std::function<ByteView(std::uint64_t address)>;

/// The resources of one type in the tree of types, numbers and languages that `tree` begins with. `type` is a
/// name in capitals; upper and lower case are the same in the file, as they are to Windows. Throws Damage.
[[nodiscard]] std::vector<Resource> pe_resources(const ByteView& tree, std::string_view type,
                                                 const AtAddress& at_address);

/// The resources of one type (four characters) in a resource file, which is a resource fork of macOS: a
/// header, the data, and the map that leads to it. Throws Damage.
[[nodiscard]] std::vector<Resource> resource_fork(std::string_view bytes, std::string_view type);

}  // namespace binary_file
