#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

#include "texture/value/texture_file.h"

namespace imageio {

/// Why this image cannot be a texture: deep or volumetric, without pixels, or with more than the format's
/// reader takes. Empty when it can.
[[nodiscard]] std::string refuse_image(const OIIO::ImageSpec& spec);

/// What the image library is told of a texture: size, channels, "txl:mode" and "txl:alphas".
///
/// The first alpha is the image's alpha, and it is **associated**: textures say so to a compositing host
/// (label "premultiplied"), so the library neither multiplies on reading nor divides on the way to another
/// associated format. The stored bytes reach TIFF and OpenEXR, and come back from them, as they are. Formats
/// that store unassociated alpha only, PNG above all, are divided and multiplied by the library as for every
/// associated image.
///
/// Nothing is said of the colour space, because the format says nothing. "txl:mode" is 2 for grey and 4 for
/// RGB.
[[nodiscard]] OIIO::ImageSpec texture_spec(const Texture& texture);

/// The same of a texture that was read, with more metadata: for each alpha i from 0
/// "txl:layer<i>:name", ":mode" and ":attributes" (5 bytes), and "txl:warnings" when something was repaired
/// or passed over.
[[nodiscard]] OIIO::ImageSpec texture_spec(const TextureReading& reading);

/// "a.txl@0x1a4: the row needs 64 bytes, 12 are left (in 502 > TaVx)"
[[nodiscard]] std::string error_text(const TextureError& error);

}  // namespace imageio
