#pragma once

// What every picture in SVG is written with: texts, numbers and colours.

#include <array>
#include <string>
#include <string_view>

namespace text {

/// Any bytes as the content of an element or an attribute of XML. Bytes that are not UTF-8, control
/// characters and characters that change the direction of writing are shown as "\xNN".
[[nodiscard]] std::string svg_text(std::string_view text);

/// A name that stands among other words, as svg_text(): if it may be written from right to left, it is
/// isolated, so that it does not turn round what stands beside it. Of more than `most_characters` the rest is
/// left out, and an ellipsis says so.
[[nodiscard]] std::string svg_name(std::string_view name, std::size_t most_characters = 64);

/// A coordinate with two digits after the point. What is not a number is 0, and what is beyond a million is
/// a million: programs that draw do not agree about such numbers.
[[nodiscard]] std::string svg_number(double number);

/// Colours that differ for every kind of sight: those of Okabe and Ito, "Color Universal Design" (2008).
/// Without black, which is for text, and yellow, which is too light for lines on white.
inline constexpr std::array<const char*, 6> kUniversalColours{
    "#d55e00",  // vermilion
    "#0072b2",  // blue
    "#009e73",  // bluish green
    "#cc79a7",  // reddish purple
    "#e69f00",  // orange
    "#56b4e9",  // sky blue
};

}  // namespace text
