#pragma once

#include <cstdint>

#include "pictures.h"

/// Registers the reading of a picture through OpenImageIO, from a texture and from the TIFF of the peer.
void register_image_reading(PictureKind kind, std::int64_t size_px);
