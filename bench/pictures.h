#pragma once

#include <cstdint>

#include "texture/value/texture.h"

enum class PictureKind {
    flat,          ///< one colour, opaque: the best that a row coding meets
    photographic,  ///< smooth gradients under mild noise, and a disc with a soft rim as alpha
    noise,         ///< every byte drawn: the worst
};

[[nodiscard]] const char* picture_name(PictureKind kind);

/// A square RGB texture with one alpha channel. The same arguments give the same bytes on every machine.
[[nodiscard]] Texture make_picture(PictureKind kind, std::int32_t size_px);
