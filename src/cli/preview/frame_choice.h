#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// Which frames of a composition a user asks for.
struct FrameChoice {
    std::optional<std::int64_t> frame;  ///< one
    std::optional<std::int64_t> first;  ///< a range, both ends included; with `last`
    std::optional<std::int64_t> last;
    std::optional<std::int64_t> every;  ///< of the range, or of all frames, every so many

    [[nodiscard]] bool several() const { return first || every; }
};

/// A number from 0; nothing for any other text.
[[nodiscard]] std::optional<std::int64_t> parse_frame(std::string_view text);

/// "17-24" into `choice`, the ends in this order. False for any other text.
[[nodiscard]] bool parse_frame_range(std::string_view text, FrameChoice& choice);

/// The frames of a composition that has `count`, ascending. Without a choice all of them. Empty if one of
/// them is not there; `problem` then says which there are.
[[nodiscard]] std::vector<std::int64_t> chosen_frames(const FrameChoice& choice, std::int64_t count,
                                                      std::string& problem);

/// Whether the last part of the path has number signs, which stand for the number of a frame.
[[nodiscard]] bool has_number_signs(const std::string& path);

/// The path with its last run of number signs replaced by the number, padded with zeros to their length.
[[nodiscard]] std::string numbered_path(const std::string& path, std::int64_t number);

}  // namespace cli
