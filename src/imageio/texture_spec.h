#pragma once

#include <OpenImageIO/imageio.h>

#include <string>

#include "texture/value/texture_file.h"

namespace imageio {

/// Why this image cannot become a texture: it is deep or a volume, has no pixels, or has more than the
/// format's reader accepts. Empty when it can.
[[nodiscard]] std::string refuse_image(const OIIO::ImageSpec& spec);

/// Describes a texture to OpenImageIO: size, channels, "txl:mode" (2 for grey, 4 for RGB) and "txl:alphas".
///
/// The first alpha is the image's alpha, and it is **associated**: textures label it "premultiplied" for a
/// compositing host. OpenImageIO therefore neither multiplies on reading nor divides when it writes another
/// associated format, and the stored bytes reach TIFF and OpenEXR and come back unchanged. For formats that
/// store only unassociated alpha, PNG above all, OpenImageIO divides and multiplies as for every associated
/// image.
///
/// The colour space is left open, because the format does not define one.
[[nodiscard]] OIIO::ImageSpec texture_spec(const Texture& texture);

/// Adds the metadata of a texture that was read: for each alpha i from 0 "txl:layer<i>:name", ":mode" and
/// ":attributes" (5 bytes), and "txl:warnings" if something was repaired or skipped.
[[nodiscard]] OIIO::ImageSpec texture_spec(const TextureReading& reading);

/// "a.txl@0x1a4: the row needs 64 bytes, 12 are left (in 502 > TaVx)"
[[nodiscard]] std::string error_text(const diagnostic::Diagnostic& error);

}  // namespace imageio
