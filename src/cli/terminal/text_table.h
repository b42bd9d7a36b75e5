#pragma once

#include <string>
#include <vector>

#include "cli/terminal/terminal.h"

namespace cli {

struct Cell {
    std::string text;  ///< safe to print
    Ink ink = Ink::plain;
    bool right = false;  ///< numbers
};

/// Rows with their columns in line, two blanks between them, nothing behind the last one. The first row is
/// the headings; a column that has nothing else is left out.
class TextTable {
  public:
    void add(std::vector<Cell> row) { rows_.push_back(std::move(row)); }
    /// One line a row, without line breaks.
    [[nodiscard]] std::vector<std::string> lines(const Paint& paint) const;

  private:
    std::vector<std::vector<Cell>> rows_;
};

}  // namespace cli
