#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// Talking with the terminal itself: how large it is, what it answers, and long output that a signal must not
// cut in the middle of an escape sequence. One implementation for each platform:
// terminal_dialogue_<platform>.cpp.

namespace cli {

/// The size of a terminal, in characters and in pixels; 0 for what it does not say.
struct TerminalSize {
    std::int32_t columns = 0;
    std::int32_t rows = 0;
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
};

/// Of the terminal behind the standard output.
[[nodiscard]] TerminalSize terminal_size();

/// Sends `question` to the standard output and returns what the terminal answers on the standard input, until
/// `complete` is true of it or `timeout_ms` have passed. Empty at once if either is not a terminal, the
/// program is in the background, or on Windows. The terminal echoes nothing meanwhile, and is as before
/// afterwards: a signal that arrives is delivered then.
[[nodiscard]] std::string ask_terminal(std::string_view question,
                                       const std::function<bool(std::string_view)>& complete, int timeout_ms);

/// Writes `bytes` to the terminal behind the standard output. A signal that arrives meanwhile ends it with
/// `ending`, which leaves an unfinished escape sequence, and is delivered then. False if the terminal is
/// gone.
bool write_to_terminal(std::string_view bytes, std::string_view ending);

}  // namespace cli
