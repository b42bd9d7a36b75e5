#pragma once

// The colours and numbers of a plan, and attributes of SVG.

#include <cstddef>
#include <string>
#include <string_view>

#include "handover/handover.h"

namespace plan {

/// Of a camera, by its index in Scene::cameras.
[[nodiscard]] const char* camera_colour(std::size_t camera);

/// A light's colour as a page can show it.
[[nodiscard]] std::string light_colour(const handover::SceneObject& light);

/// A step of 1, 2 or 5 times a power of ten, at least `least`.
[[nodiscard]] double round_step(double least);

/// A number for a page, with up to four digits.
[[nodiscard]] std::string short_number(double number);

/// The colour, "#rrggbb", mixed with so much white: from 0 to 1.
[[nodiscard]] std::string lighter(std::string_view colour, double white);

/// How much lighter the beginning of the shot is than its end.
inline constexpr double kMostWhite = 0.55;

/// An attribute as it is written; its value has no characters that must be escaped.
[[nodiscard]] std::string attribute(std::string_view name, std::string_view value);

/// Text, and what is as dark.
inline constexpr const char* kInk = "#222222";

}  // namespace plan
