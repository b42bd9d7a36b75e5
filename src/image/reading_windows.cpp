#include "image/reading_windows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "image/built_in_header.h"
#include "image/imaging_windows.h"
#include "limit/limits.h"
#include "system/open_regular_file.h"
#include "texture/value/alpha_use.h"

namespace image {
namespace {

/// A kind of pixel that is read as it is, and the place of each channel in it; -1 for none.
struct PixelLayout {
    const GUID* id;
    std::int8_t samples;
    std::int8_t bits;
    std::array<std::int8_t, 3> colour;
    std::int8_t alpha;
    bool premultiplied;
};

constexpr std::array<PixelLayout, 16> kLayouts{{
    {&GUID_WICPixelFormat8bppGray, 1, 8, {0, 0, 0}, -1, false},
    {&GUID_WICPixelFormat24bppBGR, 3, 8, {2, 1, 0}, -1, false},
    {&GUID_WICPixelFormat24bppRGB, 3, 8, {0, 1, 2}, -1, false},
    {&GUID_WICPixelFormat32bppBGR, 4, 8, {2, 1, 0}, -1, false},
    {&GUID_WICPixelFormat32bppRGB, 4, 8, {0, 1, 2}, -1, false},
    {&GUID_WICPixelFormat32bppBGRA, 4, 8, {2, 1, 0}, 3, false},
    {&GUID_WICPixelFormat32bppRGBA, 4, 8, {0, 1, 2}, 3, false},
    {&GUID_WICPixelFormat32bppPBGRA, 4, 8, {2, 1, 0}, 3, true},
    {&GUID_WICPixelFormat32bppPRGBA, 4, 8, {0, 1, 2}, 3, true},
    {&GUID_WICPixelFormat16bppGray, 1, 16, {0, 0, 0}, -1, false},
    {&GUID_WICPixelFormat48bppRGB, 3, 16, {0, 1, 2}, -1, false},
    {&GUID_WICPixelFormat48bppBGR, 3, 16, {2, 1, 0}, -1, false},
    {&GUID_WICPixelFormat64bppRGBA, 4, 16, {0, 1, 2}, 3, false},
    {&GUID_WICPixelFormat64bppBGRA, 4, 16, {2, 1, 0}, 3, false},
    {&GUID_WICPixelFormat64bppPRGBA, 4, 16, {0, 1, 2}, 3, true},
    {&GUID_WICPixelFormat64bppPBGRA, 4, 16, {2, 1, 0}, 3, true},
}};

const PixelLayout* layout_of(const GUID& id) {
    for (const PixelLayout& one : kLayouts) {
        if (IsEqualGUID(*one.id, id) != 0) {
            return &one;
        }
    }
    return nullptr;
}

/// Pixels of fewer than eight bits and palettes, which the component spreads to bytes without loss.
bool is_narrow(const GUID& id) {
    const std::array<const GUID*, 9> narrow{
        &GUID_WICPixelFormat1bppIndexed, &GUID_WICPixelFormat2bppIndexed, &GUID_WICPixelFormat4bppIndexed,
        &GUID_WICPixelFormat8bppIndexed, &GUID_WICPixelFormatBlackWhite,  &GUID_WICPixelFormat2bppGray,
        &GUID_WICPixelFormat4bppGray,    &GUID_WICPixelFormat16bppBGR555, &GUID_WICPixelFormat16bppBGR565};
    return std::any_of(narrow.begin(), narrow.end(),
                       [&id](const GUID* one) { return IsEqualGUID(*one, id) != 0; });
}

std::string file_content(const char* path) {
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        throw Refusal{Code::cannot_open, "the file may not be read"};
    }
    constexpr std::int64_t kLongest_bytes = std::numeric_limits<std::int32_t>::max();
    std::int64_t bytes = -1;
    if (::fseeko(file.get(), 0, SEEK_END) == 0) {
        bytes = ::ftello(file.get());
    }
    if (bytes < 0 || bytes > kLongest_bytes || ::fseeko(file.get(), 0, SEEK_SET) != 0) {
        throw Refusal{Code::unsupported, "files of 2 GiB and more are not read"};
    }
    std::string content(static_cast<std::size_t>(bytes), '\0');
    // The decoder refuses a file that has become shorter in the meantime.
    content.resize(std::fread(content.data(), 1, content.size(), file.get()));
    return content;
}

Header header_of(const std::string& content, const char* path) {
    const auto read_at = [&content](std::uint64_t offset_bytes, char* data, std::size_t bytes) {
        if (offset_bytes > content.size() || bytes > content.size() - offset_bytes) {
            return false;
        }
        std::copy_n(content.data() + offset_bytes, bytes, data);
        return true;
    };
    std::string error;
    const std::optional<Header> header = read_built_in_header(read_at, path, error);
    if (!header.has_value()) {
        throw Refusal{Code::not_an_image, error};
    }
    return *header;
}

/// The pixels of a picture as bytes or 16-bit numbers, and where the channels are in them.
struct Source {
    Owned<IWICFormatConverter> converter;
    IWICBitmapSource* pixels = nullptr;
    const PixelLayout* layout = nullptr;
};

void choose_source(const Imaging& imaging, IWICBitmapFrameDecode& frame, const Header& header,
                   Source& source) {
    WICPixelFormatGUID id{};
    require(frame.GetPixelFormat(&id), Code::not_an_image);
    source.pixels = &frame;
    source.layout = layout_of(id);
    if (source.layout != nullptr) {
        return;
    }
    if (!is_narrow(id)) {
        throw Refusal{
            Code::unsupported,
            "its pixels are neither grey nor RGB of at most 16 bits a channel, which is all that is "
            "read through Windows"};
    }
    // Every kind of pixel can become this one. Its alpha is ignored where the picture has no alpha.
    require(imaging->CreateFormatConverter(source.converter.place()), Code::not_an_image);
    require(source.converter->Initialize(&frame, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                         nullptr, 0.0, WICBitmapPaletteTypeCustom),
            Code::not_an_image);
    source.pixels = source.converter.get();
    source.layout = layout_of(header.has_alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat32bppBGR);
}

/// Refuses a picture when the component would leave out a channel or a pixel.
void require_whole(IWICBitmapSource& pixels, const PixelLayout& layout, const Header& header) {
    UINT width = 0;
    UINT height = 0;
    require(pixels.GetSize(&width, &height), Code::not_an_image);
    if (width == 0 || height == 0) {
        throw Refusal{Code::unsupported, no_pixels_text(width, height)};
    }
    if (std::uint64_t{width} * height > static_cast<std::uint64_t>(limits::kTexturePixels.value)) {
        throw Refusal{Code::unsupported, std::to_string(width) + " x " + std::to_string(height) +
                                             " pixels exceed the largest texture, which has 2^30"};
    }
    if (width != static_cast<UINT>(header.width_px) || height != static_cast<UINT>(header.height_px)) {
        throw Refusal{Code::unsupported, "the file holds a part of a larger picture"};
    }
    const bool fourth_sample = layout.samples == 4;
    const int alphas = header.has_alpha ? 1 : 0;
    const int colours = header.channels - alphas;
    if ((colours != 1 && colours != 3) || (header.has_alpha ? !fourth_sample : layout.alpha >= 0)) {
        throw Refusal{Code::unsupported, "the file has " + std::to_string(header.channels) +
                                             " channels, and Windows does not pass on all of them"};
    }
}

std::uint8_t sample_at(const std::uint8_t* pixel, int index, int bits) {
    if (bits == 8) {
        return pixel[index];
    }
    // Numbers of 16 bits, lowest byte first; rounded to the nearest of 8 bits.
    const std::uint32_t value = pixel[2 * index] | std::uint32_t{pixel[2 * index + 1]} << 8;
    return static_cast<std::uint8_t>((value * 255 + 32767) / 65535);
}

/// Stores `count` pixels from pixel number `first` on.
void store_pixels(Texture& texture, std::size_t first, std::size_t count, const std::uint8_t* pixel,
                  const PixelLayout& layout) {
    const auto colours = static_cast<std::size_t>(texture.channels());
    const int pixel_bytes = layout.samples * layout.bits / 8;
    // The fourth byte of a BMP is alpha to everything else that reads it; Windows does not name it.
    const int alpha_index = layout.alpha >= 0 ? layout.alpha : 3;
    for (std::size_t i = first; i < first + count; ++i, pixel += pixel_bytes) {
        if (!texture.alphas.empty()) {
            texture.alphas[0].values[i] = sample_at(pixel, alpha_index, layout.bits);
        }
        for (std::size_t c = 0; c < colours; ++c) {
            texture.pixels[i * colours + c] = sample_at(pixel, layout.colour[c], layout.bits);
        }
    }
}

Texture texture_of(IWICBitmapSource& pixels, const PixelLayout& layout, const Header& header) {
    Texture texture;
    texture.width_px = header.width_px;
    texture.height_px = header.height_px;
    texture.mode = header.channels - (header.has_alpha ? 1 : 0) == 1 ? Texture::kGrey : Texture::kRgb;
    texture.pixels = PixelBuffer(texture.pixel_count() * static_cast<std::size_t>(texture.channels()));
    if (header.has_alpha) {
        texture.alphas.push_back({"A", PixelBuffer(texture.pixel_count())});
    }
    const auto width = static_cast<std::size_t>(header.width_px);
    const std::size_t row_bytes = width * static_cast<std::size_t>(layout.samples * layout.bits / 8);
    const std::size_t band = rows_at_once(row_bytes, header.height_px);
    std::vector<std::uint8_t> rows(band * row_bytes);
    for (std::size_t y = 0; y < static_cast<std::size_t>(header.height_px); y += band) {
        const std::size_t count = std::min(band, static_cast<std::size_t>(header.height_px) - y);
        const WICRect part{0, static_cast<INT>(y), static_cast<INT>(width), static_cast<INT>(count)};
        require(pixels.CopyPixels(&part, static_cast<UINT>(row_bytes), static_cast<UINT>(count * row_bytes),
                                  rows.data()),
                Code::not_an_image);
        store_pixels(texture, y * width, count * width, rows.data(), layout);
    }
    return texture;
}

}  // namespace

void read_with_windows(const char* path, AlphaBytes alpha_bytes, Texture& texture, const Reporter& reporter) {
    std::string content = file_content(path);
    const Header header = header_of(content, path);
    const Container* const container = container_by_content(content);
    if (container == nullptr) {
        throw Refusal{Code::not_an_image,
                      "of this format only the header is read; Windows reads PNG, TIFF, JPEG and BMP"};
    }
    const Imaging imaging;
    Owned<IWICStream> stream;
    require(imaging->CreateStream(stream.place()), Code::gave_up);
    require(stream->InitializeFromMemory(reinterpret_cast<BYTE*>(content.data()),
                                         static_cast<DWORD>(content.size())),
            Code::gave_up);
    Owned<IWICBitmapDecoder> decoder;
    require(imaging->CreateDecoder(*container->id, nullptr, decoder.place()), Code::not_an_image);
    require(decoder->Initialize(stream.get(), WICDecodeMetadataCacheOnDemand), Code::not_an_image);
    UINT frames = 0;
    require(decoder->GetFrameCount(&frames), Code::not_an_image);
    Owned<IWICBitmapFrameDecode> frame;
    require(decoder->GetFrame(0, frame.place()), Code::not_an_image);
    Source source;
    choose_source(imaging, *frame.get(), header, source);
    require_whole(*source.pixels, *source.layout, header);
    texture = texture_of(*source.pixels, *source.layout, header);
    if (alpha_bytes == AlphaBytes::converted && !header.alpha_premultiplied) {
        multiply_by_alpha(texture);
    }
    if (source.layout->bits > 8) {
        reporter.warn(Code::depth_reduced, "its values are uint16; a texture has 8 bits per channel");
    }
    if (frames > 1) {
        reporter.warn(Code::images_left_out, "the file holds more images; a texture has only one");
    }
}

}  // namespace image
