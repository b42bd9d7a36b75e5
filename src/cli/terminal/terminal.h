#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace cli {

enum class Ink { plain, bold, dim, red, yellow, green, cyan };

/// Puts colour round a text, or leaves it alone.
class Paint {
  public:
    explicit Paint(bool colour = false) : colour_(colour) {}
    [[nodiscard]] std::string operator()(Ink ink, std::string_view text) const;

  private:
    bool colour_;
};

/// Where a verb writes to: its result to `out`, its talk to `err`. Both outlive the terminal.
struct Terminal {
    std::ostream& out;
    std::ostream& err;
    Paint out_paint;
    Paint err_paint;
    bool live = false;  ///< somebody watches `err`: progress may be shown there
};

/// The process's own streams. Colour only on a terminal, and there neither when NO_COLOR is set and not empty
/// nor when TERM is "dumb".
Terminal standard_terminal();

/// One line on the error stream that says how far long work has come, while somebody watches; silent
/// otherwise. Not for several threads at once.
class Progress {
  public:
    /// `total` steps; fewer than two are not worth a word.
    Progress(Terminal& terminal, std::size_t total);
    /// Wipes the line.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The next step begins; `what` is safe to print.
    void step(std::string_view what);
    /// Wipes the line, before something else is written.
    void clear();

  private:
    Terminal& terminal_;
    std::size_t total_;
    std::size_t done_ = 0;
    bool shown_ = false;
};

}  // namespace cli
