#pragma once

#include <OpenImageIO/imageio.h>

#include <optional>
#include <string>
#include <vector>

#include "imageio/channel_plan.h"
#include "system/replacement_file.h"
#include "texture/value/texture.h"

namespace imageio {

/// Writes layered textures for OpenImageIO. Any number of channels (see plan_channels), 8 bits each; values
/// of other types are converted by the library. Rows and tiles may come in any order. Metadata and channel
/// names are not stored.
///
/// The alpha of a texture is associated, as is that of every image in the library, so values are stored as
/// they are given. That holds for an image marked "oiio:UnassociatedAlpha" as well: its caller has asked the
/// library to keep its hands off, and the bytes of a PNG become the texture's bytes.
///
/// The file appears when `close` has succeeded and not before: what was there stays as it is until then, also
/// when the image was closed before all of it was written, which is an error.
class TxlOutput final : public OIIO::ImageOutput {
  public:
    TxlOutput() = default;
    TxlOutput(const TxlOutput&) = delete;
    TxlOutput& operator=(const TxlOutput&) = delete;
    /// Closes; what goes wrong then is told to nobody.
    ~TxlOutput() override;

    [[nodiscard]] const char* format_name() const override { return "txl"; }
    [[nodiscard]] int supports(OIIO::string_view feature) const override;
    using OIIO::ImageOutput::open;
    bool open(const std::string& name, const OIIO::ImageSpec& newspec, OpenMode mode) override;
    bool close() override;
    bool write_scanline(int y, int z, OIIO::TypeDesc format, const void* data,
                        OIIO::stride_t xstride) override;
    bool write_tile(int x, int y, int z, OIIO::TypeDesc format, const void* data, OIIO::stride_t xstride,
                    OIIO::stride_t ystride, OIIO::stride_t zstride) override;

  private:
    /// Everything that belongs to one open file.
    struct Writing {
        os::ReplacementFile file;
        std::string name;
        ChannelPlan plan;
        Texture texture;
        std::size_t columns;                // of tiles; 1 for an image in rows
        std::vector<bool> written;          // for each row, each column of tiles
        std::vector<std::uint8_t> scratch;  // for the library's conversions
        unsigned dither = 0;
    };

    bool prepare(const std::string& name);
    bool finish(Writing& writing);
    /// Rows of `stride_bytes`; the part that lies in the picture is stored.
    void store(Writing& writing, OIIO::ROI part, const std::uint8_t* bytes, std::size_t stride_bytes);

    std::optional<Writing> writing_;
};

}  // namespace imageio
