#include "cli/terminal/progress_bar.h"

#include <ostream>
#include <string>

namespace cli {

ProgressBar::ProgressBar(Terminal& terminal, std::size_t total, bool wanted)
    : terminal_(terminal), total_(total), wanted_(wanted && total > 0) {}

ProgressBar::~ProgressBar() {
    clear();
}

void ProgressBar::show(std::size_t done) {
    if (!wanted_) {
        return;
    }
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = kWidth * done / total_;
    clear();
    terminal_.err << '[' << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] " << done
                  << '/' << total_ << std::flush;
    shown_ = true;
}

void ProgressBar::clear() {
    if (shown_) {
        terminal_.err << "\r\x1b[K" << std::flush;
        shown_ = false;
    }
}

}  // namespace cli
