#include "cli/preview/frame_choice.h"

#include <algorithm>
#include <charconv>

namespace cli {
namespace {

constexpr char kNumberSign = '#';

/// The last run of number signs in the last part of the path: where it begins, and behind it.
struct SignRun {
    std::size_t begin = std::string::npos;
    std::size_t end = std::string::npos;
};

SignRun number_signs(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    const std::size_t name = separator == std::string::npos ? 0 : separator + 1;
    const std::size_t last = path.rfind(kNumberSign);
    if (last == std::string::npos || last < name) {
        return {};
    }
    std::size_t begin = last;
    while (begin > name && path[begin - 1] == kNumberSign) {
        --begin;
    }
    return {begin, last + 1};
}

}  // namespace

std::optional<std::int64_t> parse_frame(std::string_view text) {
    std::int64_t number = 0;
    const auto [stopped, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || stopped != text.data() + text.size() || number < 0) {
        return std::nullopt;
    }
    return number;
}

bool parse_frame_range(std::string_view text, FrameChoice& choice) {
    const std::size_t dash = text.find('-');
    if (dash == std::string_view::npos) {
        return false;
    }
    choice.first = parse_frame(text.substr(0, dash));
    choice.last = parse_frame(text.substr(dash + 1));
    return choice.first && choice.last && *choice.first <= *choice.last;
}

std::vector<std::int64_t> chosen_frames(const FrameChoice& choice, std::int64_t count, std::string& problem) {
    const std::int64_t first = choice.frame ? *choice.frame : choice.first.value_or(0);
    const std::int64_t last = choice.frame ? *choice.frame : choice.last.value_or(count - 1);
    if (last >= count) {
        problem = "frame " + std::to_string(last) + " is not in the composition, which has the frames 0 to " +
                  std::to_string(count - 1);
        return {};
    }
    const std::int64_t step = std::max<std::int64_t>(1, choice.every.value_or(1));
    std::vector<std::int64_t> frames;
    for (std::int64_t frame = first; frame <= last; frame += step) {
        frames.push_back(frame);
    }
    return frames;
}

bool has_number_signs(const std::string& path) {
    return number_signs(path).begin != std::string::npos;
}

std::string numbered_path(const std::string& path, std::int64_t number) {
    const SignRun signs = number_signs(path);
    std::string digits = std::to_string(number);
    const std::size_t length = signs.end - signs.begin;
    digits.insert(0, length - std::min(length, digits.size()), '0');
    return std::string(path).replace(signs.begin, length, digits);
}

}  // namespace cli
