#pragma once

#include <cstdint>
#include <string>

#include "texture/txl/base_bitmap.h"
#include "texture/value/texture_file.h"

/// One file read both ways: into the host's bitmap and into a plain texture.
struct BothLoads {
    BaseBitmap bitmap;
    bool loaded = false;     // into the bitmap
    std::int32_t error = 0;  // of the container, after the bitmap
    TextureReading reading;

    /// Reads the file and checks, as a test expectation, that both ways agree: on success or the error code,
    /// on the size, on every pixel (on a thousand of them in a large picture) and on the first alpha channel.
    explicit BothLoads(const std::string& path);
};
