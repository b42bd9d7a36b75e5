#include "cli/scene/written_number.h"

#include <array>
#include <charconv>
#include <cmath>

namespace cli {

bool is_kept_as_written(std::optional<double> written, double kept, bool integer) {
    if (!written) {
        return false;
    }
    if (integer) {
        return *written == kept;
    }
    return std::isfinite(kept) && (kept != 0 || *written == 0);
}

std::string shortest_text(double value) {
    std::array<char, 64> text{};
    const bool whole = std::abs(value) < 1e15 && value == std::trunc(value);
    const auto result =
        whole ? std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed)
              : std::to_chars(text.data(), text.data() + text.size(), static_cast<float>(value));
    return {text.data(), result.ptr};
}

std::string measured_text(double value) {
    constexpr int kDigits = 3;
    // The largest double has 309 digits before its point.
    std::array<char, 400> text{};
    const bool whole = std::abs(value) >= 1000;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), value,
                      whole ? std::chars_format::fixed : std::chars_format::general, whole ? 0 : kDigits);
    return {text.data(), result.ptr};
}

}  // namespace cli
