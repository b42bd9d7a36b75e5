#pragma once

#include <cstdint>
#include <string>

#include "texture/txl/base_bitmap.h"
#include "texture/value/texture_file.h"

/// One file, loaded both ways: into the plug-in's bitmap and into a plain texture.
struct BothLoads {
    BaseBitmap bitmap;
    bool loaded = false;     // into the bitmap
    std::int32_t error = 0;  // of the container, after loading the bitmap
    TextureReading reading;

    /// Loads the file and expects that both results agree: on success or the error code, on the size, on
    /// every pixel (a thousand of them in a large picture) and on the first alpha channel.
    explicit BothLoads(const std::string& path);
};
