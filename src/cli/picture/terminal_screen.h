#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/options.h"
#include "cli/picture/terminal_encoding.h"
#include "cli/terminal/terminal.h"
#include "render/picture.h"

namespace cli {

/// Adds --protocol, whose text goes to `protocol`.
void add_protocol_option(Options& options, std::string& protocol, const std::string& group);

/// How pictures are drawn.
enum class PictureProtocol { kitty, sixel, blocks };

/// What a terminal answered to the question what it can draw.
struct TerminalAnswer {
    bool kitty = false;
    bool sixel = false;
    std::int32_t cell_width_px = 0;  ///< of a character; 0 if it did not say
    std::int32_t cell_height_px = 0;
};

/// What a terminal is asked: whether it knows kitty's protocol, how large a character is, and its attributes.
/// Every terminal answers the last, so nobody waits for those that do not know the others.
[[nodiscard]] std::string terminal_question();
/// Whether the attributes are there, with which an answer ends.
[[nodiscard]] bool is_whole_answer(std::string_view answer);
/// Reads what was answered, keys that the user typed meanwhile among it.
[[nodiscard]] TerminalAnswer parse_terminal_answer(std::string_view answer);

/// A place for pictures: the terminal, or a file that is to hold what a terminal would get.
class TerminalScreen {
  public:
    /// Asks the terminal what it has to know, for at most a second, unless its name says that it draws
    /// nothing. Nothing if `protocol` is "auto" and the standard output is no terminal.
    [[nodiscard]] static std::optional<TerminalScreen> find(const std::string& protocol);

    /// The largest picture that leaves room for a line above and a line below.
    [[nodiscard]] std::int32_t most_width_px() const { return most_width_px_; }
    [[nodiscard]] std::int32_t most_height_px() const { return most_height_px_; }

    /// A frame with red, green, blue and one alpha, colour straight, as large as there is room but not larger
    /// than it is.
    [[nodiscard]] render::Picture fitted(const Texture& frame) const;

    /// What is transparent shows a chequerboard. False if the terminal is gone.
    [[nodiscard]] bool draw(const render::Picture& straight, Terminal& terminal) const;

  private:
    PictureProtocol protocol_ = PictureProtocol::blocks;
    TextColours colours_ = TextColours::few;
    std::int32_t most_width_px_ = 0;
    std::int32_t most_height_px_ = 0;
};

/// Why there is no screen, for users.
inline constexpr const char* kNoScreen =
    "the standard output is not a terminal; --protocol blocks, sixel or kitty says what to write";

}  // namespace cli
