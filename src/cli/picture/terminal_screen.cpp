#include "cli/picture/terminal_screen.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <ostream>
#include <string_view>
#include <vector>

#include "cli/terminal/terminal_dialogue.h"

namespace cli {
namespace {

constexpr int kPatience_ms = 1000;
/// Larger pictures take long to send and show no more.
constexpr std::int32_t kLargestSide_px = 1600;
/// What is assumed of a terminal that does not say.
constexpr TerminalSize kUsualSize{80, 24, 0, 0};
constexpr std::int32_t kUsualCellWidth_px = 8;
constexpr std::int32_t kUsualCellHeight_px = 16;

std::string_view environment(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

bool is_plain_terminal() {
    const std::string_view term = environment("TERM");
    return term.empty() || term == "dumb" || term == "linux";
}

/// The numbers of a control sequence: `text` is what follows its beginning, up to the letter `end`. Nothing
/// if anything else comes first.
std::optional<std::vector<int>> sequence_numbers(std::string_view text, char end) {
    std::vector<int> numbers;
    while (true) {
        int number = 0;
        const auto [behind, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || number < 0) {
            return std::nullopt;
        }
        numbers.push_back(number);
        text.remove_prefix(static_cast<std::size_t>(behind - text.data()));
        if (text.empty() || (text.front() != ';' && text.front() != end)) {
            return std::nullopt;
        }
        const bool last = text.front() == end;
        text.remove_prefix(1);
        if (last) {
            return numbers;
        }
    }
}

/// The numbers of the first whole sequence that begins and ends so.
std::optional<std::vector<int>> find_sequence(std::string_view answer, std::string_view begin, char end) {
    for (std::size_t at = answer.find(begin); at != std::string_view::npos; at = answer.find(begin, at + 1)) {
        if (auto numbers = sequence_numbers(answer.substr(at + begin.size()), end)) {
            return numbers;
        }
    }
    return std::nullopt;
}

constexpr std::string_view kAttributes = "\x1b[?";

TextColours text_colours() {
    if (!environment("NO_COLOR").empty() || environment("TERM") == "dumb") {
        return TextColours::none;
    }
    const std::string_view known = environment("COLORTERM");
    return known == "truecolor" || known == "24bit" ? TextColours::all : TextColours::few;
}

}  // namespace

void add_protocol_option(Options& options, std::string& protocol, const std::string& group) {
    options
        .option(
            "--protocol", protocol,
            "how to draw in the terminal: by kitty's graphics protocol, by sixels, or by halves of blocks; "
            "auto asks the terminal")
        .value_name("auto|kitty|sixel|blocks")
        .choices({"auto", "kitty", "sixel", "blocks"})
        .show_default()
        .group(group);
}

std::string terminal_question() {
    return "\x1b_Gi=31,s=1,v=1,a=q,t=d,f=24;AAAA\x1b\\"
           "\x1b[16t"
           "\x1b[c";
}

bool is_whole_answer(std::string_view answer) {
    return find_sequence(answer, kAttributes, 'c').has_value();
}

TerminalAnswer parse_terminal_answer(std::string_view answer) {
    constexpr int kSixelAttribute = 4;
    constexpr int kCellSize = 6;
    constexpr int kLargestCell_px = 200;
    TerminalAnswer understood;
    understood.kitty = answer.find("\x1b_Gi=31;OK\x1b\\") != std::string_view::npos;
    if (const auto attributes = find_sequence(answer, kAttributes, 'c')) {
        understood.sixel =
            std::find(attributes->begin(), attributes->end(), kSixelAttribute) != attributes->end();
    }
    if (const auto cell = find_sequence(answer, "\x1b[", 't');
        cell && cell->size() == 3 && (*cell)[0] == kCellSize &&
        std::all_of(cell->begin(), cell->end(), [](int n) { return n > 0 && n <= kLargestCell_px; })) {
        understood.cell_height_px = (*cell)[1];
        understood.cell_width_px = (*cell)[2];
    }
    return understood;
}

std::optional<TerminalScreen> TerminalScreen::find(const std::string& protocol) {
    const bool is_automatic = protocol == "auto";
    const bool on_terminal = is_terminal(1);
    if (is_automatic && !on_terminal) {
        return std::nullopt;
    }
    TerminalSize size = on_terminal ? terminal_size() : kUsualSize;
    if (size.columns <= 0 || size.rows <= 0) {
        size = kUsualSize;
    }
    const bool pixels_unknown = protocol != "blocks" && (size.width_px <= 0 || size.height_px <= 0);
    TerminalAnswer answer;
    if (on_terminal && (is_automatic || pixels_unknown) && !is_plain_terminal()) {
        answer = parse_terminal_answer(ask_terminal(terminal_question(), is_whole_answer, kPatience_ms));
    }
    TerminalScreen screen;
    screen.colours_ = text_colours();
    if (protocol == "kitty" || (is_automatic && answer.kitty)) {
        screen.protocol_ = PictureProtocol::kitty;
    } else if (protocol == "sixel" || (is_automatic && answer.sixel)) {
        screen.protocol_ = PictureProtocol::sixel;
    }
    constexpr std::int32_t kOtherLines = 2;
    const std::int32_t rows = std::max(size.rows - kOtherLines, 1);
    // Half a block is as wide as high, and there are two in a row.
    std::int32_t cell_width_px = 1;
    std::int32_t cell_height_px = 2;
    if (screen.protocol_ != PictureProtocol::blocks) {
        const auto known = [](std::int32_t asked, std::int32_t told, std::int32_t usual) {
            return asked > 0 ? asked : told > 0 ? told : usual;
        };
        cell_width_px = known(answer.cell_width_px, size.width_px / size.columns, kUsualCellWidth_px);
        cell_height_px = known(answer.cell_height_px, size.height_px / size.rows, kUsualCellHeight_px);
    }
    screen.most_width_px_ = std::min(size.columns * cell_width_px, kLargestSide_px);
    screen.most_height_px_ = std::min(rows * cell_height_px, kLargestSide_px);
    return screen;
}

render::Picture TerminalScreen::fitted(const Texture& frame) const {
    const render::FittedSize size =
        render::fitted_size(frame.width_px, frame.height_px, most_width_px_, most_height_px_);
    return render::reduced(frame, frame.alphas.empty() ? nullptr : &frame.alphas.front().values,
                           image::AlphaPixels::straight, size.width_px, size.height_px);
}

bool TerminalScreen::draw(const render::Picture& straight, Terminal& terminal) const {
    constexpr std::int32_t kSquare_px = 12;
    const bool blocks = protocol_ == PictureProtocol::blocks;
    const render::Picture opaque = render::on_chequerboard(straight, blocks ? 2 : kSquare_px);
    const std::string text = protocol_ == PictureProtocol::kitty   ? kitty_picture(opaque)
                             : protocol_ == PictureProtocol::sixel ? sixel_picture(opaque)
                                                                   : block_picture(opaque, colours_);
    terminal.out << std::flush;
    if (is_terminal(1)) {
        return write_to_terminal(text, kEndOfSequence);
    }
    terminal.out << text << std::flush;
    return terminal.out.good();
}

}  // namespace cli
