#pragma once

#include <optional>
#include <string>

struct Texture;

/// Describes the first invariant that the texture violates; nullopt when reading a file can have produced it.
/// Violations are what validate_for_writing refuses, and names of alpha channels that are empty, not UTF-8 or
/// not unique. Reads every byte, or evenly spaced ones in buffers of more than 2^26 bytes.
[[nodiscard]] std::optional<std::string> validate_texture(const Texture& texture);
