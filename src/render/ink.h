#pragma once

// Lines, rings and letters with smooth edges, for marks over a picture.

#include <cstdint>
#include <functional>
#include <string_view>

namespace render {

/// From 0 to 1, as the picture's values are stored.
struct InkColour {
    float red = 1;
    float green = 1;
    float blue = 1;
};

/// A place in a picture, in pixels from its top left corner; the middle of the first pixel is (0.5, 0.5).
struct InkSpot {
    double x = 0;
    double y = 0;
};

/// Mixes a colour into a pixel, so that it covers the part `coverage`, from 0 to 1.
using PutInk = std::function<void(std::int32_t x, std::int32_t y, const InkColour& colour, float coverage)>;

/// Draws into a picture of a size, by way of a function that is called for pixels of the picture only. Spots
/// may lie anywhere, and what is not finite is not drawn. A line costs as much as the part of it in the
/// picture is long.
class Ink {
  public:
    Ink(std::int32_t width_px, std::int32_t height_px, PutInk put);

    /// A straight line with round ends. Alpha is how much of the picture it covers at most.
    void line(InkSpot from, InkSpot to, double width, const InkColour& colour, float alpha);
    /// A circle's line.
    void ring(const InkSpot& middle, double radius, double width, const InkColour& colour, float alpha);
    /// UTF-8 in letters of `scale` times five by seven dots, from the top left corner of the first.
    /// Characters that are not ASCII look like question marks.
    void text(const InkSpot& begin, std::string_view words, std::int32_t scale, const InkColour& colour,
              float alpha);

    /// How high such a text is.
    [[nodiscard]] static double text_height(std::int32_t scale);

  private:
    void put(std::int64_t x, std::int64_t y, const InkColour& colour, double coverage) const;
    void letter(const InkSpot& begin, char one, std::int32_t scale, const InkColour& colour,
                float alpha) const;

    std::int32_t width_px_;
    std::int32_t height_px_;
    PutInk put_;
};

}  // namespace render
