#include "texture_peers.h"

#include <fcntl.h>
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <memory>
#include <vector>

namespace {

constexpr std::uint16_t kPlanes = 4;

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

bool set_fields(TIFF* tiff, const Texture& texture) {
    std::uint16_t extra = EXTRASAMPLE_ASSOCALPHA;
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

std::uint32_t strip_of(std::size_t plane, std::int32_t y, std::int32_t height) {
    return static_cast<std::uint32_t>(plane) * static_cast<std::uint32_t>(height) +
           static_cast<std::uint32_t>(y);
}

// Row by row, so that split rows are still in the cache when they are coded.
bool save(TIFF* tiff, const Texture& texture) {
    if (tiff == nullptr || !set_fields(tiff, texture)) {
        return false;
    }
    const auto width = static_cast<std::size_t>(texture.width_px);
    std::vector<std::uint8_t> colour(3 * width);
    std::vector<std::uint8_t> alpha(width);  // a copy, because libtiff may change its input
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        const PlaneRow planes = split_row(texture, y, colour.data());
        std::copy(planes[3], planes[3] + width, alpha.begin());
        for (std::size_t plane = 0; plane < kPlanes; ++plane) {
            std::uint8_t* const row = plane == 3 ? alpha.data() : colour.data() + plane * width;
            if (TIFFWriteEncodedStrip(tiff, strip_of(plane, y, texture.height_px), row, texture.width_px) !=
                texture.width_px) {
                return false;
            }
        }
    }
    return TIFFFlush(tiff) == 1;
}

/// The position in a file that is discarded as it is written.
class Nowhere {
  public:
    Nowhere() : device_(::open("/dev/null", O_WRONLY | O_CLOEXEC)) {}
    Nowhere(const Nowhere&) = delete;
    Nowhere& operator=(const Nowhere&) = delete;
    ~Nowhere() { ::close(device_); }

    static tmsize_t read(thandle_t, void*, tmsize_t) { return 0; }
    static tmsize_t write(thandle_t file, void* bytes, tmsize_t count) {
        auto* nowhere = static_cast<Nowhere*>(file);
        const ssize_t written = ::write(nowhere->device_, bytes, static_cast<std::size_t>(count));
        nowhere->position_ += static_cast<toff_t>(std::max<ssize_t>(written, 0));
        nowhere->size_ = std::max(nowhere->size_, nowhere->position_);
        return written;
    }
    static toff_t seek(thandle_t file, toff_t offset, int from) {
        auto* nowhere = static_cast<Nowhere*>(file);
        const toff_t base = from == SEEK_END ? nowhere->size_ : from == SEEK_CUR ? nowhere->position_ : 0;
        return nowhere->position_ = base + offset;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t file) { return static_cast<Nowhere*>(file)->size_; }
    static int map(thandle_t, void**, toff_t*) { return 0; }
    static void unmap(thandle_t, void*, toff_t) {}

  private:
    int device_;
    toff_t position_ = 0;
    toff_t size_ = 0;
};

}  // namespace

void expand_row(const PlaneRow& planes, std::int32_t y, BaseBitmap& bitmap) {
    const std::int64_t width = bitmap.width();
    std::uint16_t* const colour = bitmap.PixelRow(y);
    for (std::int64_t x = 0; x < width; ++x) {
        colour[3 * x] = static_cast<std::uint16_t>(planes[0][x] * 256);
        colour[3 * x + 1] = static_cast<std::uint16_t>(planes[1][x] * 256);
        colour[3 * x + 2] = static_cast<std::uint16_t>(planes[2][x] * 256);
    }
    std::copy(planes[3], planes[3] + width, bitmap.AlphaRow(1, y));
}

PlaneRow split_row(const Texture& texture, std::int32_t y, std::uint8_t* colour) {
    const std::int64_t width = texture.width_px;
    const std::uint8_t* const pixels = texture.pixels.data() + 3 * width * y;
    for (std::int64_t x = 0; x < width; ++x) {
        colour[x] = pixels[3 * x];
        colour[width + x] = pixels[3 * x + 1];
        colour[2 * width + x] = pixels[3 * x + 2];
    }
    return {colour, colour + width, colour + 2 * width, texture.alphas[0].values.data() + width * y};
}

bool holds(const BaseBitmap& bitmap, const Texture& texture) {
    if (bitmap.width() != texture.width_px || bitmap.height() != texture.height_px) {
        return false;
    }
    const auto same_colour = [](std::uint16_t value, std::uint8_t byte) { return value == byte * 256; };
    const std::uint8_t* colour = texture.pixels.data();
    const std::uint8_t* alpha = texture.alphas[0].values.data();
    const std::int64_t width = bitmap.width();
    for (std::int32_t y = 0; y < bitmap.height(); ++y, colour += 3 * width, alpha += width) {
        const std::uint16_t* const alpha_row = bitmap.AlphaRow(1, y);
        if (alpha_row == nullptr || !std::equal(alpha, alpha + width, alpha_row) ||
            !std::equal(bitmap.PixelRow(y), bitmap.PixelRow(y) + 3 * width, colour, same_colour)) {
            return false;
        }
    }
    return true;
}

bool save_tiff(const std::string& path, const Texture& texture) {
    const Tiff tiff(TIFFOpen(path.c_str(), "w"));
    return save(tiff.get(), texture);
}

bool save_tiff_nowhere(const Texture& texture) {
    Nowhere nowhere;
    const Tiff tiff(TIFFClientOpen("nowhere", "w", &nowhere, Nowhere::read, Nowhere::write, Nowhere::seek,
                                   Nowhere::close, Nowhere::size, Nowhere::map, Nowhere::unmap));
    return save(tiff.get(), texture);
}

bool load_tiff(const std::string& path, BaseBitmap& bitmap) {
    const Tiff tiff(TIFFOpen(path.c_str(), "r"));  // maps the file, which is faster than reading it
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t planes = 0;
    if (tiff == nullptr || TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) != 1 ||
        TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height) != 1 ||
        TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &planes) != 1 || planes != kPlanes ||
        static_cast<std::int32_t>(width) != bitmap.width() ||
        static_cast<std::int32_t>(height) != bitmap.height() || TIFFStripSize64(tiff.get()) != width) {
        return false;
    }
    std::vector<std::uint8_t> decoded(std::size_t{kPlanes} * width);
    PlaneRow rows{};
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        rows[plane] = decoded.data() + plane * width;
    }
    for (std::int32_t y = 0; y < bitmap.height(); ++y) {
        for (std::size_t plane = 0; plane < kPlanes; ++plane) {
            if (TIFFReadEncodedStrip(tiff.get(), strip_of(plane, y, bitmap.height()),
                                     decoded.data() + plane * width, bitmap.width()) != bitmap.width()) {
                return false;
            }
        }
        expand_row(rows, y, bitmap);
    }
    return true;
}
