#pragma once

#include <cstdint>
#include <string>

#include "texture_samples.h"

// The benchmarks of texture_bench, a source file each.

/// Registers drawing a square picture into a host's frame in four ways: as the input module does it, the same
/// compiled for x86-64-v3 where the processor supports it, pixel by pixel with bounds checks, and a copy of
/// as many bytes as drawing moves.
void register_drawing(std::int64_t size_px);

/// Registers reading a picture through OpenImageIO, from a texture and from the peer's TIFF.
void register_image_reading(PictureKind kind, std::int64_t size_px);

/// Registers reading textures with more and more alpha channels through OpenImageIO.
void register_image_alphas();

/// The path of a texture of 32 x 32 pixels, RGB, with so many alpha channels.
[[nodiscard]] const std::string& layered_texture(std::int64_t alphas);

/// Registers loading and saving textures that grow in one respect: pixels, alpha channels, or chunks that
/// nothing reads. The number at the end of a name is the size.
void register_texture_growth();
