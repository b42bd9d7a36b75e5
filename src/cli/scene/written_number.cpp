#include "cli/scene/written_number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace cli {
namespace {

// What the whole text says in decimal or hexadecimal; nothing when it says no number or more than a number.
std::optional<double> whole_value(std::string_view text) {
    const bool negative = text.substr(0, 1) == "-";
    text.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    text.remove_prefix(hexadecimal ? 2 : 0);
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(
        text.data(), end, value, hexadecimal ? std::chars_format::hex : std::chars_format::general);
    // A second minus sign is taken by the conversion but says nothing.
    if (error != std::errc() || stop != end || text.substr(0, 1) == "-") {
        return std::nullopt;
    }
    return negative ? -value : value;
}

}  // namespace

bool is_kept_as_written(std::string_view text, double kept, bool integer) {
    const std::optional<double> written = whole_value(text);
    if (!written) {
        return false;
    }
    if (integer) {
        return *written == kept;
    }
    return std::isfinite(kept) && (kept != 0 || *written == 0);
}

std::string number_text(double value) {
    std::array<char, 64> text{};
    const bool whole = std::abs(value) < 1e15 && value == std::trunc(value);
    const auto result =
        whole ? std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed)
              : std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(value));
    return {text.data(), result.ptr};
}

}  // namespace cli
