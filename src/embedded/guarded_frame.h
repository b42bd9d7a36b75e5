#pragma once

// A frame that detects writes outside its pixels.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "embedded/host.h"
#include "host/host_interface.h"

namespace embedded {

class GuardedFrame {
  public:
    /// Why such a frame cannot be made; empty when it can. At most 1 GiB.
    static std::string problem_with(const FrameShape& shape);

    /// `shape` has no problem. Every byte before the first row, between rows and after the last is a guard
    /// byte whose value depends on its place.
    explicit GuardedFrame(const FrameShape& shape);

    /// What the module draws into; lives as long as this object.
    PF_LayerDef& world() { return world_; }

    /// Which guard bytes were changed, as a sentence; nothing when none was.
    [[nodiscard]] std::optional<std::string> damage() const;

    /// The pixels, rows top to bottom, without padding.
    [[nodiscard]] std::vector<PF_Pixel> pixels() const;

  private:
    static constexpr std::int64_t kMargin_bytes = 4096;  ///< before the first and after the last row
    [[nodiscard]] std::int64_t row_offset(A_long row) const;
    [[nodiscard]] static std::uint8_t guard_byte(std::size_t offset) {
        return static_cast<std::uint8_t>(0xA5U ^ (offset * 31U));
    }

    std::vector<std::uint8_t> bytes_;
    std::int64_t first_row_ = 0;  ///< offset of row 0 in bytes_
    PF_LayerDef world_{};
};

}  // namespace embedded
