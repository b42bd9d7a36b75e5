#include "cli/terminal/terminal.h"

#include <cstdlib>
#include <iostream>
#include <string>

namespace cli {
namespace {

const char* sequence_of(Ink ink) {
    switch (ink) {
        case Ink::plain:
            return "";
        case Ink::bold:
            return "\x1b[1m";
        case Ink::dim:
            return "\x1b[2m";
        case Ink::red:
            return "\x1b[1;31m";
        case Ink::yellow:
            return "\x1b[1;33m";
        case Ink::green:
            return "\x1b[1;32m";
        case Ink::cyan:
            break;
    }
    return "\x1b[36m";
}

bool colour_wanted() {
    const char* const no_colour = std::getenv("NO_COLOR");
    const char* const term = std::getenv("TERM");
    return (no_colour == nullptr || *no_colour == '\0') && term != nullptr &&
           std::string_view(term) != "dumb";
}

}  // namespace

std::string Paint::operator()(Ink ink, std::string_view text) const {
    if (!colour_ || ink == Ink::plain || text.empty()) {
        return std::string(text);
    }
    return sequence_of(ink) + std::string(text) + "\x1b[0m";
}

Terminal standard_terminal() {
    const bool colour = colour_wanted();
    return {std::cout, std::cerr, Paint(colour && is_terminal(1)), Paint(colour && is_terminal(2)),
            is_terminal(2)};
}

Progress::Progress(Terminal& terminal, std::size_t total, bool wanted)
    : terminal_(terminal), total_(total), drawn_(wanted && terminal.live && total >= 2) {}

Progress::~Progress() {
    clear();
}

void Progress::step(std::string_view what) {
    // A line wider than the terminal could not be wiped.
    constexpr std::size_t kWidth = 60;
    ++done_;
    draw('[' + std::to_string(done_) + '/' + std::to_string(total_) + "] " +
         std::string(what.substr(0, kWidth)));
}

void Progress::bar(std::size_t done) {
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = total_ == 0 ? 0 : kWidth * done / total_;
    draw('[' + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] " + std::to_string(done) +
         '/' + std::to_string(total_));
}

void Progress::draw(const std::string& line) {
    if (drawn_) {
        clear();
        terminal_.err << line << std::flush;
        shown_ = true;
    }
}

void Progress::clear() {
    if (shown_) {
        terminal_.err << "\r\x1b[K" << std::flush;
        shown_ = false;
    }
}

}  // namespace cli
