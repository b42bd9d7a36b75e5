#pragma once

#include <array>
#include <cstddef>

namespace handover {

/// The slopes of the straight lines from one key that pass all keys after it so far, each number within a
/// tolerance. Keys have up to three numbers, which are joined together.
class LineSlopes {
  public:
    LineSlopes() { restart(); }

    /// Begins at another key: every slope is allowed.
    void restart();

    /// Whether the line `from` the first key `to` one that is `time` later has an allowed slope in each of
    /// its `size` numbers. `time` is above 0; numbers that are not finite are never reached.
    [[nodiscard]] bool reaches(const double* from, const double* to, std::size_t size, double time) const;

    /// Allows only what also passes the key `through`, `time` after the first, within `tolerance`; 0 means
    /// within half the distance from a number to the next one in single precision, which the scene's numbers
    /// have: a value that is missed by less is the same number there.
    void pass(const double* from, const double* through, std::size_t size, double time, double tolerance);

  private:
    std::array<double, 3> least_{};
    std::array<double, 3> most_{};
};

}  // namespace handover
