#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "binary_file/image.h"

namespace binary_file {

/// Finds the data at an address relative to the image.
using AtAddress = std::function<ByteView(std::uint64_t address)>;

/// The resources of one type, given by name (in capitals; Windows compares them so), in the tree of types,
/// numbers and languages that `tree` begins with. Throws Damage.
std::vector<Resource> pe_resources(const ByteView& tree, std::string_view type, const AtAddress& at_address);

}  // namespace binary_file
