#pragma once

#include <string>
#include <vector>

#include "cli/terminal/terminal.h"

namespace cli {

struct Cell {
    std::string text;  ///< safe to print
    Ink ink = Ink::plain;
    bool right = false;  ///< aligned to the right: numbers
};

/// Aligns columns, with two spaces between them and no trailing spaces. The first row contains the headings;
/// a column that is empty below its heading is left out.
class TextTable {
  public:
    void add(std::vector<Cell> row) { rows_.push_back(std::move(row)); }
    /// One line for each row, without line breaks.
    [[nodiscard]] std::vector<std::string> lines(const Paint& paint) const;

  private:
    std::vector<std::vector<Cell>> rows_;
};

}  // namespace cli
