#pragma once

#include <optional>
#include <string>

struct Texture;

/// The first thing in a texture that reading a file cannot have brought about; nothing for a sound one. That
/// is what validate_for_writing refuses, and names of alpha channels that are empty, no UTF-8 or the same.
/// Every byte is read, or where there are more than 2^26 in one buffer, evenly spaced ones.
[[nodiscard]] std::optional<std::string> validate_texture(const Texture& texture);
