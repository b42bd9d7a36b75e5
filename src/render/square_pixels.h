#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace render {

/// Rows of a composition whose pixels are `aspect` times as wide as high, shown on a screen whose pixels are
/// square: the row gets wider or narrower, the height stays. Wider ones are interpolated between neighbours,
/// narrower ones averaged, both of multiplied colour and coverage.
class SquarePixels {
  public:
    /// `aspect` is above 0.
    SquarePixels(std::int64_t width_px, double aspect);

    /// How wide a row becomes; at least 1. `aspect` 1 changes nothing.
    [[nodiscard]] static std::int64_t width(std::int64_t width_px, double aspect);

    [[nodiscard]] bool same() const { return spans_.empty(); }
    [[nodiscard]] std::int64_t width() const { return width_px_; }

    /// `row` has the width that was given, `stretched` room for width() pixels.
    void stretch(const float* row, float* stretched) const;

  private:
    /// The pixels that make up one, and their shares in `weights_`.
    struct Span {
        std::size_t first = 0;
        std::size_t count = 0;
        std::size_t weights = 0;
    };
    std::int64_t width_px_;
    std::vector<Span> spans_;
    std::vector<float> weights_;
};

}  // namespace render
