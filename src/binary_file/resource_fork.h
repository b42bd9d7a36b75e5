#pragma once

#include <string_view>
#include <vector>

#include "binary_file/image.h"

namespace binary_file {

/// The resources of one type (four characters) in a Macintosh resource file: its places, the data, the map
/// that leads to them. Throws Damage.
std::vector<Resource> resource_fork(std::string_view bytes, std::string_view type);

}  // namespace binary_file
