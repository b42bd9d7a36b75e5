#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// Whether the standard stream `descriptor` (1 or 2) is a terminal. One implementation for each platform:
/// terminal_<platform>.cpp.
bool is_terminal(int descriptor);

/// The width of the terminal behind the standard stream `descriptor`, in characters; nothing when it is not a
/// terminal or does not say. One implementation for each platform.
std::optional<std::size_t> terminal_columns(int descriptor);

/// Called first in main(): sets up the standard streams to carry bytes unchanged, and UTF-8 on Windows.
/// Returns the arguments without the program's name, in UTF-8 on Windows. One implementation for each
/// platform.
std::vector<std::string> begin_program(int argc, char** argv);

enum class Ink { plain, bold, dim, red, yellow, green, cyan };

/// Colours a text, or returns it unchanged where there is no colour.
class Paint {
  public:
    explicit Paint(bool colour = false) : colour_(colour) {}
    [[nodiscard]] std::string operator()(Ink ink, std::string_view text) const;

  private:
    bool colour_;
};

/// Where a verb writes: its result to `out`, everything about it to `err`. Both streams outlive the terminal.
struct Terminal {
    std::ostream& out;
    std::ostream& err;
    Paint out_paint;
    Paint err_paint;
    bool live = false;                        ///< `err` is a terminal, so progress may be shown there
    std::optional<std::size_t> columns = {};  ///< the width of `out`, if it is a terminal
};

/// Cuts each line of `text` to the width of the terminal, if there is one, and marks the cut by three dots.
/// Colours stay.
[[nodiscard]] std::string fitted(const Terminal& terminal, std::string_view text);

/// The width for running text: that of the terminal, but at least 40 columns; 80 elsewhere.
[[nodiscard]] std::size_t help_columns(const Terminal& terminal);

/// The process's own streams. Colour only on a terminal, and not when NO_COLOR is set and not empty, TERM is
/// unset or TERM is "dumb".
Terminal standard_terminal();

/// One line on the error stream that shows how far the work has got and is redrawn in place. Draws nothing
/// when the error stream is not a terminal, when the line is not wanted, and for fewer than two steps. For
/// one thread.
class Progress {
  public:
    Progress(Terminal& terminal, std::size_t total, bool wanted = true);
    /// Wipes the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Begins the next step: "[2/10] shot.aec". `what` is safe to print.
    void step(std::string_view what);
    /// Draws a bar for steps that end in any order, and `facts` behind it: "[########............] 4/10, 2
    /// left".
    void bar(std::size_t done, std::string_view facts = {});
    /// Wipes the line; called before anything else is written.
    void clear();

  private:
    void draw(const std::string& line);

    Terminal& terminal_;
    std::size_t total_;
    bool drawn_;
    std::size_t done_ = 0;
    bool shown_ = false;
};

}  // namespace cli
