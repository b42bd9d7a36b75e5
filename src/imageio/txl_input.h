#pragma once

#include <OpenImageIO/imageio.h>

#include <optional>
#include <string>

#include "texture/value/texture_file.h"

namespace imageio {

/// Reads layered textures for OpenImageIO: "Y" or "R", "G", "B", then one channel for every alpha, 8 bits
/// each (see texture_spec). Opening decodes the whole file, because a texture's alphas follow its colour; the
/// one decoded copy is what scanlines are taken from until `close`. One image a file: no subimages, no
/// smaller levels, no tiles. Scanlines may be read from several threads at once.
///
/// Refused with an error that names the byte and the chunk: what `read_texture` refuses, a picture without
/// pixels, and what is above the library's own "limits:imagesize_MB" and "limits:channels".
class TxlInput final : public OIIO::ImageInput {
  public:
    TxlInput() = default;
    TxlInput(const TxlInput&) = delete;
    TxlInput& operator=(const TxlInput&) = delete;
    ~TxlInput() override;

    [[nodiscard]] const char* format_name() const override { return "txl"; }
    [[nodiscard]] bool valid_file(const std::string& filename) const override;
    bool open(const std::string& name, OIIO::ImageSpec& newspec) override;
    bool close() override;
    bool read_native_scanline(int subimage, int miplevel, int y, int z, void* data) override;

  private:
    bool load(const std::string& name);

    std::optional<Texture> texture_;  // of the open file
};

}  // namespace imageio
