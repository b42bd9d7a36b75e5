#pragma once

// The numbers of a glTF file and the accessors that name them.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "handover/handover.h"

namespace handover {

/// One accessor: `count` values of `components` floats from `offset_bytes` on.
struct GltfAccessor {
    std::size_t offset_bytes = 0;
    std::size_t count = 0;
    std::size_t components = 1;
    std::array<float, 4> least{};
    std::array<float, 4> most{};
    bool needs_range = false;  ///< the format wants `least` and `most` of times and positions
};

/// Columns of floats, little-endian one after the other. Equal columns of times are kept once.
class GltfData {
  public:
    /// Adds `numbers`, which has `components` for each value, and returns the index of its accessor. Throws
    /// CannotWrite when the file would be longer than the format can say.
    std::size_t add(std::span<const float> numbers, std::size_t components, bool needs_range);

    [[nodiscard]] const std::vector<GltfAccessor>& accessors() const { return accessors_; }
    [[nodiscard]] std::string_view bytes() const { return bytes_; }

  private:
    std::vector<GltfAccessor> accessors_;
    std::string bytes_;
};

}  // namespace handover
