#pragma once

#include <cstddef>

#include "cli/terminal/terminal.h"

namespace cli {

/// "[########............] 4/10" on the error stream, redrawn in place. Draws nothing when it is not wanted.
class ProgressBar {
  public:
    ProgressBar(Terminal& terminal, std::size_t total, bool wanted);
    /// Wipes the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(std::size_t done);
    /// Wipes the line, before something else is written.
    void clear();

  private:
    Terminal& terminal_;
    std::size_t total_;
    bool wanted_;
    bool shown_ = false;
};

}  // namespace cli
