#pragma once

#include <OpenImageIO/imageio.h>

#include <optional>
#include <string>
#include <vector>

#include "imageio/channel_plan.h"
#include "imageio/texture_spec.h"
#include "system/replacement_file.h"
#include "texture/value/texture.h"

namespace imageio {

/// Writes layered textures for OpenImageIO: any number of channels (see plan_channels), 8 bits each;
/// OpenImageIO converts values of other types. Rows and tiles may come in any order. Metadata and channel
/// names are not stored, and OpenImageIO has no way to say so.
///
/// The texture is the image's display window. Images with pixels outside of it are refused, and so is what
/// TxlInput would not read again, and to write into memory.
///
/// The alpha of a texture is associated, like that of every image in OpenImageIO, so values are stored as
/// given. This includes images marked "oiio:UnassociatedAlpha": their caller asked for unchanged bytes, and
/// the bytes of a PNG become the texture's bytes.
///
/// The file appears only after `close` succeeded; until then an existing file stays as it is. Closing an
/// image before all of it was written is an error.
class TxlOutput final : public OIIO::ImageOutput {
  public:
    TxlOutput() = default;
    TxlOutput(const TxlOutput&) = delete;
    TxlOutput& operator=(const TxlOutput&) = delete;
    /// Closes and ignores errors: a destructor has no way to report them.
    ~TxlOutput() override;

    [[nodiscard]] const char* format_name() const override { return "txl"; }
    [[nodiscard]] int supports(OIIO::string_view feature) const override;
    bool set_ioproxy(OIIO::Filesystem::IOProxy* ioproxy) override;
    using OIIO::ImageOutput::open;
    bool open(const std::string& name, const OIIO::ImageSpec& newspec, OpenMode mode) override;
    bool close() override;
    bool write_scanline(int y, int z, OIIO::TypeDesc format, const void* data,
                        OIIO::stride_t xstride) override;
    bool write_tile(int x, int y, int z, OIIO::TypeDesc format, const void* data, OIIO::stride_t xstride,
                    OIIO::stride_t ystride, OIIO::stride_t zstride) override;

  private:
    /// The state of one open file.
    struct Writing {
        os::ReplacementFile file;
        std::string name;
        ChannelPlan plan;
        Placement placement;
        Texture texture;
        std::size_t columns;                // of tiles; 1 for an image in scanlines
        std::vector<bool> written;          // for each row: each column of tiles
        std::vector<std::uint8_t> scratch;  // for OpenImageIO's conversions
        unsigned dither = 0;
    };

    bool prepare(const std::string& name);
    bool finish(Writing& writing);
    /// Stores the part that lies inside the image's data window, whose first pixel is 0, 0. Rows of `bytes`
    /// are `stride_bytes` apart.
    void store(Writing& writing, OIIO::ROI part, const std::uint8_t* bytes, std::size_t stride_bytes);

    std::optional<Writing> writing_;
};

}  // namespace imageio
