#include "tiff_peer.h"

#include <tiffio.h>

#include <memory>
#include <vector>

namespace {

constexpr std::uint16_t kPlanes = 4;
constexpr std::uint16_t kAlphaPlane = 3;
constexpr std::size_t kColors = 3;

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

bool set_fields(TIFF* tiff, const Texture& texture) {
    std::uint16_t extra = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(texture.width_px)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(texture.height_px)) == 1 &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8) == 1 &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kPlanes) == 1 &&
           TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &extra) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB) == 1 &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_SEPARATE) == 1 &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 1U) == 1 &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS) == 1;
}

}  // namespace

bool write_tiff(const std::string& path, const Texture& texture) {
    const Tiff tiff(TIFFOpen(path.c_str(), "w"));
    if (tiff == nullptr || !set_fields(tiff.get(), texture))
        return false;
    const auto width = static_cast<std::size_t>(texture.width_px);
    const auto height = static_cast<std::size_t>(texture.height_px);
    std::vector<std::uint8_t> row(width);  // a copy: the library may swap bytes in what it is given
    for (std::uint16_t plane = 0; plane < kPlanes; ++plane) {
        const bool alpha = plane == kAlphaPlane;
        const std::uint8_t* from = alpha ? texture.alphas[0].values.data() : texture.pixels.data() + plane;
        const std::size_t stride = alpha ? 1 : kColors;
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x)
                row[x] = from[(y * width + x) * stride];
            if (TIFFWriteScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y), plane) != 1)
                return false;
        }
    }
    return TIFFFlush(tiff.get()) == 1;
}

std::optional<Texture> read_tiff(const std::string& path) {
    const Tiff tiff(TIFFOpen(path.c_str(), "r"));
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t planes = 0;
    if (tiff == nullptr || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) != 1 ||
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) != 1 ||
        TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &planes) != 1 || planes != kPlanes ||
        TIFFScanlineSize64(tiff.get()) != width)
        return std::nullopt;
    Texture texture;
    texture.width_px = static_cast<std::int32_t>(width);
    texture.height_px = static_cast<std::int32_t>(height);
    texture.pixels = PixelBuffer(texture.pixel_count() * kColors);
    texture.alphas.push_back({"Alpha", PixelBuffer(texture.pixel_count())});
    std::vector<std::uint8_t> row(width);
    for (std::uint16_t plane = 0; plane < kPlanes; ++plane) {
        const bool alpha = plane == kAlphaPlane;
        std::uint8_t* to = alpha ? texture.alphas[0].values.data() : texture.pixels.data() + plane;
        const std::size_t stride = alpha ? 1 : kColors;
        for (std::uint32_t y = 0; y < height; ++y) {
            if (TIFFReadScanline(tiff.get(), row.data(), y, plane) != 1)
                return std::nullopt;
            for (std::size_t x = 0; x < width; ++x)
                to[(std::size_t{y} * width + x) * stride] = row[x];
        }
    }
    return texture;
}
