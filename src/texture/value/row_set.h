#pragma once

#include <cstdint>
#include <vector>

/// Rows of a picture, in ranges. Takes memory for each range, not for each row, and rows that are added one
/// below the other are one range.
class RowSet {
  public:
    /// Rows from `begin` to before `end`.
    struct Range {
        std::int32_t begin, end;

        friend bool operator==(const Range&, const Range&) = default;
    };

    /// Adds one row from 0 to 2^31 - 2; a row that is there already changes nothing.
    void add(std::int32_t row);

    /// The rows in order, in ranges that neither overlap nor touch.
    [[nodiscard]] std::vector<Range> ranges() const;

    /// The number of rows.
    [[nodiscard]] std::int64_t count() const;

  private:
    std::vector<Range> ranges_;  // as they were added
};
