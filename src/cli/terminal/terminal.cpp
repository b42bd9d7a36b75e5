#include "cli/terminal/terminal.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

#include "text/character_width.h"
#include "text/utf8.h"

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

/// The length of the colour sequence that `text` begins with; 0 if it begins with none.
std::size_t sequence_length(std::string_view text) {
    return text.starts_with("\x1b[") ? std::min(text.find('m'), text.size() - 1) + 1 : 0;
}

std::string cut_line(std::string_view line, std::size_t columns) {
    constexpr std::string_view kCut = "...";
    std::string out;
    std::size_t used = 0;
    std::size_t kept_bytes = 0;  // of `out`, so that the dots still fit
    bool coloured = false;
    while (!line.empty()) {
        std::size_t bytes = sequence_length(line);
        if (bytes > 0) {
            coloured = true;
        } else {
            const text::Utf8Character character = text::first_character(line);
            bytes = std::max<std::size_t>(character.size_bytes, 1);
            used += text::width_of(character.code_point);
        }
        if (used > columns) {
            out.resize(kept_bytes);
            return out.append(kCut).append(coloured ? "\x1b[0m" : "");
        }
        out += line.substr(0, bytes);
        line.remove_prefix(bytes);
        kept_bytes = used + kCut.size() <= columns ? out.size() : kept_bytes;
    }
    return out;
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
    return {
        std::cout,      std::cerr,          Paint(colour && is_terminal(1)), Paint(colour && is_terminal(2)),
        is_terminal(2), terminal_columns(1)};
}

std::string fitted(const Terminal& terminal, std::string_view text) {
    if (!terminal.columns) {
        return std::string(text);
    }
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        out += cut_line(text.substr(0, end), *terminal.columns);
        out += end < text.size() ? "\n" : "";
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return out;
}

std::size_t help_columns(const Terminal& terminal) {
    constexpr std::size_t kUsual = 80;
    constexpr std::size_t kLeast = 40;
    return std::max(terminal.columns.value_or(kUsual), kLeast);
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

void Progress::bar(std::size_t done, std::string_view facts) {
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = total_ == 0 ? 0 : kWidth * done / total_;
    draw('[' + std::string(filled, '#') + std::string(kWidth - filled, '.') + "] " + std::to_string(done) +
         '/' + std::to_string(total_) + std::string(facts));
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
