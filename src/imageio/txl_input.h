#pragma once

#include <OpenImageIO/imageio.h>

#include <optional>
#include <string>

#include "texture/value/texture_file.h"

namespace imageio {

/// Reads layered textures for OpenImageIO: "Y" or "R", "G", "B", then a channel for every alpha, 8 bits each
/// (see texture_spec). Opening decodes the whole file, because a texture's alphas follow its colour;
/// scanlines come from that one copy until `close`. A file has one image: no subimages, no smaller levels, no
/// tiles. Several threads may read scanlines at once.
///
/// Refuses what `read_texture` refuses, with an error that names the byte and the chunk, as well as pictures
/// above OpenImageIO's own "limits:imagesize_MB" and "limits:channels", and to read from memory.
class TxlInput final : public OIIO::ImageInput {
  public:
    TxlInput() = default;
    TxlInput(const TxlInput&) = delete;
    TxlInput& operator=(const TxlInput&) = delete;
    ~TxlInput() override;

    [[nodiscard]] const char* format_name() const override { return "txl"; }
    [[nodiscard]] bool valid_file(const std::string& filename) const override;
    bool open(const std::string& name, OIIO::ImageSpec& newspec) override;
    bool open(const std::string& name, OIIO::ImageSpec& newspec, const OIIO::ImageSpec& config) override;
    bool set_ioproxy(OIIO::Filesystem::IOProxy* ioproxy) override;
    bool close() override;
    bool read_native_scanline(int subimage, int miplevel, int y, int z, void* data) override;

  private:
    bool load(const std::string& name);

    std::optional<Texture> texture_;  // of the open file
};

}  // namespace imageio
