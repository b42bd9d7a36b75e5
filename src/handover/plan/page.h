#pragma once

// A page of a picture in SVG: what is drawn on it, cut to where it belongs, and texts that do not lie on each
// other. Pixels from the page's top left corner, y down.

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace plan {

struct Spot {
    double x = 0;
    double y = 0;
};

struct Area {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    [[nodiscard]] double width() const { return right - left; }
    [[nodiscard]] double height() const { return bottom - top; }
    [[nodiscard]] bool has(const Spot& spot) const;
};

[[nodiscard]] bool is_finite(const Spot& spot);

/// The parts of a line that lie within `area`. Spots that are not finite break the line. Of spots closer than
/// a third of a pixel one stays, and of more than `most_spots` evenly spaced ones.
[[nodiscard]] std::vector<std::vector<Spot>> clipped_line(std::span<const Spot> line, const Area& area,
                                                          std::size_t most_spots);

/// The part of the outline around all of `spots` that lies within `area`, in order; empty if it lies outside.
[[nodiscard]] std::vector<Spot> clipped_outline(std::span<const Spot> spots, const Area& area);

/// Where the way from `inside` to `outside` leaves the area.
[[nodiscard]] Spot edge_towards(const Spot& inside, const Spot& outside, const Area& area);

/// Writes elements. Attributes are given as they are written: `fill="none"`; `markup` is escaped already.
class Page {
  public:
    void open(std::string_view attributes);  ///< a group
    void close();
    void line(std::span<const Spot> spots, std::string_view attributes);
    void outline(std::span<const Spot> spots, std::string_view attributes, std::string_view title = {});
    void circle(const Spot& middle, double radius, std::string_view attributes, std::string_view title = {});
    void rectangle(const Area& area, std::string_view attributes);
    void text(const Spot& begin, std::string_view markup, std::string_view attributes = {});

    [[nodiscard]] const std::string& svg() const { return svg_; }

  private:
    void path(std::span<const Spot> spots);
    void end(std::string_view element, std::string_view title);

    std::string svg_;
};

/// The pixels that `text`, in characters and not in markup, takes up.
[[nodiscard]] double text_width(std::string_view text, double font_size);

/// Finds places for labels beside what they name.
class Labels {
  public:
    explicit Labels(const Area& bounds) : bounds_(bounds) {}

    void keep_free(const Area& area) { taken_.push_back(area); }

    /// Where a label of this size begins on its base line, `clearance` from `named`. Nothing if there is no
    /// room for it; else the room is taken.
    [[nodiscard]] std::optional<Spot> place(const Spot& named, double clearance, double width, double height);

  private:
    [[nodiscard]] bool is_free(const Area& area) const;

    Area bounds_;
    std::vector<Area> taken_;
};

}  // namespace plan
