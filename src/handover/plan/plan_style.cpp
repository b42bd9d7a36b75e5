#include "handover/plan/plan_style.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "text/plain_number.h"
#include "text/svg.h"

namespace plan {

using handover::SceneObject;

const char* camera_colour(std::size_t camera) {
    // Blue first: reds and oranges are near the colours of lamps.
    constexpr std::array<std::size_t, text::kUniversalColours.size()> kOrder{1, 0, 2, 3, 5, 4};
    return text::kUniversalColours.at(kOrder.at(camera % kOrder.size()));
}

std::string light_colour(const SceneObject& light) {
    constexpr double kFull = 255;
    const double brightest = std::max({light.color[0], light.color[1], light.color[2], 1.0});
    std::string colour = "rgb(";
    for (std::size_t i = 0; i < light.color.size(); ++i) {
        const double part = light.color[i] / brightest;
        colour +=
            (i == 0 ? "" : ",") + std::to_string(std::lround(kFull * (part > 0 ? std::min(part, 1.0) : 0)));
    }
    return colour + ')';
}

double round_step(double least) {
    constexpr double kTen = 10;
    const double power = std::pow(kTen, std::floor(std::log10(least)));
    for (const double digit : {1.0, 2.0, 5.0}) {
        if (digit * power >= least) {
            return digit * power;
        }
    }
    return kTen * power;
}

std::string short_number(double number) {
    constexpr double kDigits = 4;
    if (number == 0 || !std::isfinite(number)) {
        return text::plain_number(number == 0 ? 0 : number);
    }
    const double power = std::pow(10.0, kDigits - 1 - std::floor(std::log10(std::abs(number))));
    // Whole numbers keep their digits.
    if (power <= 1 || !std::isfinite(power) || power == 0) {
        return text::plain_number(std::abs(number) < 1e7 ? std::round(number) : number);
    }
    return text::plain_number(std::round(number * power) / power);
}

// The colour mixed with so much white.
std::string lighter(std::string_view colour, double white) {
    constexpr double kFull = 255;
    constexpr char kDigits[] = "0123456789abcdef";
    std::string mixed = "#";
    for (std::size_t i = 1; i < colour.size(); i += 2) {
        const int part = std::stoi(std::string(colour.substr(i, 2)), nullptr, 16);
        const auto now = static_cast<unsigned>(std::lround(part + (kFull - part) * white));
        mixed += kDigits[now / 16];
        mixed += kDigits[now % 16];
    }
    return mixed;
}

std::string attribute(std::string_view name, std::string_view value) {
    return std::string(name) + "=\"" + std::string(value) + '"';
}

}  // namespace plan
