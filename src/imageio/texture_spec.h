#pragma once

#include <OpenImageIO/imageio.h>

#include <cstdint>
#include <string>
#include <vector>

#include "texture/value/texture_file.h"

namespace imageio {

/// Why this image cannot become a texture: it is deep or a volume, has no pixels, has pixels outside its
/// display window, or has more pixels or channels than the readers of textures accept. Empty when it can.
[[nodiscard]] std::string refuse_image(const OIIO::ImageSpec& spec);

/// The texture that an image becomes: its display window. What the data window leaves free is 0.
struct Placement {
    std::int32_t width_px, height_px;  // of the texture
    std::int32_t x, y;                 // of the image's first pixel
};

/// For an image that refuse_image accepts.
[[nodiscard]] Placement place_image(const OIIO::ImageSpec& spec);

/// Why OpenImageIO's own limit on channels, "limits:channels", forbids as many; empty when it does not.
[[nodiscard]] std::string refuse_channels(int channels);

/// The names of the image's metadata for which a texture has no room. What only describes how a file stores
/// its pixels, and which program wrote it when, is not among them.
[[nodiscard]] std::vector<std::string> metadata_without_room(const OIIO::ImageSpec& spec);

/// Describes a texture to OpenImageIO: size, channels, "txl:mode" (2 for grey, 4 for RGB) and "txl:alphas".
///
/// The first alpha is the image's alpha, and it is **associated**: textures label it "premultiplied" for a
/// compositing host. OpenImageIO therefore neither multiplies on reading nor divides when it writes another
/// associated format, and the stored bytes reach TIFF and OpenEXR and come back unchanged. For formats that
/// store only unassociated alpha, PNG above all, OpenImageIO divides and multiplies as for every associated
/// image.
///
/// Colour is sRGB, as After Effects shows it, so that a format like OpenEXR, whose values are linear unless
/// the file says otherwise, does not claim it to be linear. Grey has no colour space: it is data, such as a
/// mask or a height, as often as it is a picture.
[[nodiscard]] OIIO::ImageSpec texture_spec(const Texture& texture);

/// Adds the metadata of a texture that was read: for each alpha i from 0 "txl:layer<i>:name", ":mode" and
/// ":attributes" (5 bytes), and "txl:warnings" if something was repaired or skipped.
[[nodiscard]] OIIO::ImageSpec texture_spec(const TextureReading& reading);

/// Whether an image is to be read from, or written to, memory instead of a file: OpenImageIO passes an object
/// for that in the attribute "oiio:ioproxy".
[[nodiscard]] bool asks_for_memory(const OIIO::ImageSpec& config);

/// Why that is refused.
inline constexpr const char* kNoMemoryFiles =
    "a texture is read from a file and written to one, not in memory";

/// "a.txl@0x1a4: the row needs 64 bytes, 12 are left (in 502 > TaVx)"
[[nodiscard]] std::string error_text(const diagnostic::Diagnostic& error);

}  // namespace imageio
