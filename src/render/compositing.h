#pragma once

#include <cstddef>
#include <cstdint>

// How one layer is laid over what is below it: the one place where blend modes are computed.
//
// A pixel is four floats: red, green, blue, each multiplied by coverage, and coverage, all from 0 to 1. With
// cs, as and cb, ab the straight colour and coverage of the layer and of what is below it, and B the blended
// colour:
//
//   colour   as ab B + as (1 - ab) cs + (1 - as) ab cb
//   coverage as + ab - as ab
//
// B is cs for normal, cs cb for multiply, and min(1, cs + cb) for add. How a host adds where both only cover
// partly has never been measured; this is the same rule for all three modes.
//
// Nothing is rounded between layers: footage arrives as the bytes of its file, and rows become bytes once,
// at the end.

namespace render {

enum class Blend : std::uint8_t { normal, add, multiply };

inline constexpr std::size_t kChannels = 4;

/// Lays `pixels` pixels of `layer` over those of `below`, which becomes the result. The two do not overlap.
/// Safe to call from several threads for different rows.
void composite_row(Blend blend, const float* layer, float* below, std::size_t pixels);

}  // namespace render
