// Images through Windows' own imaging component, for builds without an image library: PNG, TIFF, JPEG and BMP
// are read and written. Headers and TGA files are the business of the code built in. Lets no exception out.

#include <windows.h>

#include <objbase.h>
#include <wincodec.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image/built_in_header.h"
#include "image/functions.h"
#include "image/reporter.h"
#include "limit/limits.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "system/replacement_file.h"
#include "text/ascii.h"

namespace image {
namespace {

/// Ends the work with a code, in the words for it.
struct Refusal {
    Code code;
    std::string reason;
};

std::string text_of_result(HRESULT result) {
    switch (static_cast<std::uint32_t>(result)) {
        case 0x88982F07:  // WINCODEC_ERR_UNKNOWNIMAGEFORMAT
        case 0x88982F50:  // WINCODEC_ERR_COMPONENTNOTFOUND
            return "Windows has no codec for it";
        case 0x88982F60:  // WINCODEC_ERR_BADIMAGE
        case 0x88982F61:  // WINCODEC_ERR_BADHEADER
        case 0x88982F62:  // WINCODEC_ERR_FRAMEMISSING
        case 0x88982F70:  // WINCODEC_ERR_BADSTREAMDATA
        case 0x88982F72:  // WINCODEC_ERR_STREAMREAD
            return "the file is damaged or cut off";
        case 0x88982F80:  // WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT
        case 0x88982F81:  // WINCODEC_ERR_UNSUPPORTEDOPERATION
            return "Windows does not support its kind of pixels";
        default: {
            std::array<char, 64> text{};
            std::snprintf(text.data(), text.size(), "Windows reports error %08lX",
                          static_cast<unsigned long>(result));
            return text.data();
        }
    }
}

/// Throws the refusal for a call that failed.
void require(HRESULT result, Code code) {
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    if (FAILED(result)) {
        throw Refusal{code, text_of_result(result)};
    }
}

/// An object of the component, released by its scope.
template <typename Object>
class Owned {
  public:
    Owned() = default;
    ~Owned() {
        if (object_ != nullptr) {
            object_->Release();
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    /// Where a function puts the object that it makes.
    Object** place() { return &object_; }
    [[nodiscard]] Object* get() const { return object_; }
    Object* operator->() const { return object_; }

  private:
    Object* object_ = nullptr;
};

/// The imaging component as one thread uses it for one file.
class Imaging {
  public:
    Imaging() : initialised_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        // A thread that has chosen another model already can use the component as well.
        void* made = nullptr;
        const HRESULT result = CoCreateInstance(CLSID_WICImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                                                IID_IWICImagingFactory, &made);
        if (FAILED(result)) {
            leave();
            throw Refusal{Code::gave_up,
                          "Windows' imaging component cannot be used: " + text_of_result(result)};
        }
        factory_ = static_cast<IWICImagingFactory*>(made);
    }
    ~Imaging() {
        factory_->Release();
        leave();
    }
    Imaging(const Imaging&) = delete;
    Imaging& operator=(const Imaging&) = delete;

    IWICImagingFactory* operator->() const { return factory_; }

  private:
    void leave() const {
        if (initialised_) {
            CoUninitialize();
        }
    }

    bool initialised_;
    IWICImagingFactory* factory_ = nullptr;
};

/// A format that the component reads and writes.
struct Container {
    const char* extension;
    const char* name;
    const GUID* id;
    bool grey;                ///< the writer has grey pixels
    bool alpha;               ///< the writer has an alpha channel beside RGB
    bool premultiplied;       ///< that alpha is associated, as a texture's is
    std::string_view begins;  ///< the first bytes of a file
};

constexpr std::array<Container, 7> kContainers{{
    {".png", "png", &GUID_ContainerFormatPng, true, true, false, {"\x89PNG\r\n\x1a\n", 8}},
    {".tif", "tiff", &GUID_ContainerFormatTiff, true, true, true, {"II\x2a\0", 4}},
    {".tiff", "tiff", &GUID_ContainerFormatTiff, true, true, true, {"MM\0\x2a", 4}},
    {".jpg", "jpeg", &GUID_ContainerFormatJpeg, true, false, false, {"\xff\xd8\xff", 3}},
    {".jpeg", "jpeg", &GUID_ContainerFormatJpeg, true, false, false, {"\xff\xd8\xff", 3}},
    // The writer's only grey is a palette, and its alpha needs a header that few programs read.
    {".bmp", "bmp", &GUID_ContainerFormatBmp, false, false, false, {"BM", 2}},
    {".dib", "bmp", &GUID_ContainerFormatBmp, false, false, false, {"BM", 2}},
}};

const Container* container_by_extension(const char* path) {
    const std::string extension = os::text_of(os::path_of(path).extension());
    for (const Container& one : kContainers) {
        if (text::equal_ignoring_case(extension, one.extension)) {
            return &one;
        }
    }
    return nullptr;
}

const Container* container_by_content(std::string_view bytes) {
    for (const Container& one : kContainers) {
        if (bytes.starts_with(one.begins)) {
            return &one;
        }
    }
    return nullptr;
}

/// Pixels that are read as they are, and where each of the four channels is in one; -1 for none.
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

/// How many rows of this length are passed at a time: the component counts bytes in 32 bits.
std::size_t rows_at_once(std::uint64_t row_bytes, std::int32_t height_px) {
    constexpr std::uint64_t kBand_bytes = std::uint64_t{1} << 24;
    return static_cast<std::size_t>(
        std::clamp<std::uint64_t>(kBand_bytes / row_bytes, 1, static_cast<std::uint64_t>(height_px)));
}

// --- Reading
// -------------------------------------------------------------------------------------------------

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
    // A file that has become shorter is cut off, which its reader notices.
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
    // Every kind of pixels can become this one. The alpha of a picture without any is of no interest.
    require(imaging->CreateFormatConverter(source.converter.place()), Code::not_an_image);
    require(source.converter->Initialize(&frame, GUID_WICPixelFormat32bppBGRA, WICBitmapDitherTypeNone,
                                         nullptr, 0.0, WICBitmapPaletteTypeCustom),
            Code::not_an_image);
    source.pixels = source.converter.get();
    source.layout = layout_of(header.has_alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat32bppBGR);
}

/// Refuses a picture of which the component would not pass on every channel and every pixel.
void require_whole(IWICBitmapSource& pixels, const PixelLayout& layout, const Header& header) {
    UINT width = 0;
    UINT height = 0;
    require(pixels.GetSize(&width, &height), Code::not_an_image);
    if (width == 0 || height == 0 ||
        std::uint64_t{width} * height > static_cast<std::uint64_t>(limits::kTexturePixels.value)) {
        throw Refusal{Code::unsupported, "the picture has no pixels, or more than the 2^30 of a texture"};
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

std::uint8_t multiplied(std::uint8_t colour, std::uint8_t alpha) {
    return static_cast<std::uint8_t>((colour * alpha + 127) / 255);
}

/// The inverse, as near as 8 bits allow. Colour without any alpha stays.
std::uint8_t divided(std::uint8_t colour, std::uint8_t alpha) {
    return alpha == 0 ? colour : static_cast<std::uint8_t>(std::min((colour * 255 + alpha / 2) / alpha, 255));
}

/// Stores `count` pixels from pixel number `first` on.
void store_pixels(Texture& texture, std::size_t first, std::size_t count, const std::uint8_t* pixel,
                  const PixelLayout& layout, bool multiply) {
    const auto colours = static_cast<std::size_t>(texture.channels());
    const int pixel_bytes = layout.samples * layout.bits / 8;
    // The fourth byte of a BMP is alpha to everything else that reads it; Windows does not name it.
    const int alpha_index = layout.alpha >= 0 ? layout.alpha : 3;
    for (std::size_t i = first; i < first + count; ++i, pixel += pixel_bytes) {
        std::uint8_t alpha = 255;
        if (!texture.alphas.empty()) {
            alpha = sample_at(pixel, alpha_index, layout.bits);
            texture.alphas[0].values[i] = alpha;
        }
        for (std::size_t c = 0; c < colours; ++c) {
            const std::uint8_t colour = sample_at(pixel, layout.colour[c], layout.bits);
            texture.pixels[i * colours + c] = multiply ? multiplied(colour, alpha) : colour;
        }
    }
}

Texture texture_of(IWICBitmapSource& pixels, const PixelLayout& layout, const Header& header,
                   AlphaBytes alpha_bytes) {
    Texture texture;
    texture.width_px = header.width_px;
    texture.height_px = header.height_px;
    texture.mode = header.channels - (header.has_alpha ? 1 : 0) == 1 ? Texture::kGrey : Texture::kRgb;
    texture.pixels = PixelBuffer(texture.pixel_count() * static_cast<std::size_t>(texture.channels()));
    if (header.has_alpha) {
        texture.alphas.push_back({"A", PixelBuffer(texture.pixel_count())});
    }
    const bool multiply =
        header.has_alpha && !header.alpha_premultiplied && alpha_bytes == AlphaBytes::converted;
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
        store_pixels(texture, y * width, count * width, rows.data(), layout, multiply);
    }
    return texture;
}

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
    texture = texture_of(*source.pixels, *source.layout, header, alpha_bytes);
    if (source.layout->bits > 8) {
        reporter.warn(Code::depth_reduced, "its values are uint16; a texture has 8 bits per channel");
    }
    if (frames > 1) {
        reporter.warn(Code::images_left_out, "the file holds more images; a texture has only one");
    }
}

// --- Writing
// -------------------------------------------------------------------------------------------------

/// Why the format cannot hold the texture; empty when it can.
std::string no_room(const Container& container, const Texture& texture) {
    const std::size_t alphas = texture.alphas.size();
    const std::string files = std::string(container.name) + " files ";
    if (alphas > 0 && !container.alpha) {
        return files + "have no alpha channel; --alpha none leaves it out";
    }
    if (alphas > 1) {
        return files + "have only one alpha channel, the texture has " + std::to_string(alphas) +
               "; --alpha N chooses one";
    }
    if (alphas > 0 && texture.mode == Texture::kGrey) {
        return files +
               "that Windows writes have no alpha channel beside grey; --alpha none leaves it out, "
               "and tga files have room for it";
    }
    return {};
}

/// The pixels to be written from row `y` on: grey, or blue, green, red and alpha.
void fill_rows(std::vector<std::uint8_t>& rows, const Texture& texture, std::size_t first, std::size_t count,
               bool grey, bool divide) {
    rows.clear();
    const auto colours = static_cast<std::size_t>(texture.channels());
    for (std::size_t i = first; i < first + count; ++i) {
        const std::uint8_t* const colour = texture.pixels.data() + i * colours;
        if (grey) {
            rows.push_back(*colour);
            continue;
        }
        const std::uint8_t alpha = texture.alphas.empty() ? std::uint8_t{255} : texture.alphas[0].values[i];
        for (std::size_t c = 3; c > 0; --c) {
            const std::uint8_t value = colour[colours == 1 ? 0 : c - 1];
            rows.push_back(divide ? divided(value, alpha) : value);
        }
        if (!texture.alphas.empty()) {
            rows.push_back(alpha);
        }
    }
}

/// A JPEG's quality, which the image library has as its default, too.
void set_quality(IPropertyBag2& options) {
    std::array<wchar_t, 13> name{L"ImageQuality"};
    PROPBAG2 option{};
    option.pstrName = name.data();
    VARIANT value{};
    value.vt = VT_R4;
    value.fltVal = 0.98F;
    require(options.Write(1, &option, &value), Code::not_written);
}

void write_rows_with_windows(IWICBitmapFrameEncode& frame, const Texture& texture, bool grey, bool divide) {
    const auto width = static_cast<std::size_t>(texture.width_px);
    const std::size_t row_bytes = width * (grey ? 1 : 3 + texture.alphas.size());
    const std::size_t band = rows_at_once(row_bytes, texture.height_px);
    std::vector<std::uint8_t> rows;
    rows.reserve(band * row_bytes);
    for (std::size_t y = 0; y < static_cast<std::size_t>(texture.height_px); y += band) {
        const std::size_t count = std::min(band, static_cast<std::size_t>(texture.height_px) - y);
        fill_rows(rows, texture, y * width, count * width, grey, divide);
        require(frame.WritePixels(static_cast<UINT>(count), static_cast<UINT>(row_bytes),
                                  static_cast<UINT>(rows.size()), rows.data()),
                Code::not_written);
    }
}

/// What has been written to a stream in memory.
std::string content_of(IStream& stream) {
    STATSTG about{};
    HGLOBAL memory = nullptr;
    require(stream.Stat(&about, STATFLAG_NONAME), Code::not_written);
    require(GetHGlobalFromStream(&stream, &memory), Code::not_written);
    const void* const bytes = GlobalLock(memory);
    if (bytes == nullptr || about.cbSize.QuadPart == 0) {
        throw Refusal{Code::not_written, "Windows wrote nothing"};
    }
    std::string content(static_cast<const char*>(bytes), static_cast<std::size_t>(about.cbSize.QuadPart));
    GlobalUnlock(memory);
    return content;
}

std::string encoded(const Container& container, const Texture& texture, AlphaBytes alpha_bytes) {
    const bool alpha = !texture.alphas.empty();
    const bool grey = texture.mode == Texture::kGrey && container.grey;
    const bool divide = alpha && !container.premultiplied && alpha_bytes == AlphaBytes::converted;
    const Imaging imaging;
    Owned<IStream> stream;
    require(CreateStreamOnHGlobal(nullptr, TRUE, stream.place()), Code::gave_up);
    Owned<IWICBitmapEncoder> encoder;
    require(imaging->CreateEncoder(*container.id, nullptr, encoder.place()), Code::not_written);
    require(encoder->Initialize(stream.get(), WICBitmapEncoderNoCache), Code::not_written);
    Owned<IWICBitmapFrameEncode> frame;
    Owned<IPropertyBag2> options;
    require(encoder->CreateNewFrame(frame.place(), options.place()), Code::not_written);
    if (IsEqualGUID(*container.id, GUID_ContainerFormatJpeg) != 0) {
        set_quality(*options.get());
    }
    require(frame->Initialize(options.get()), Code::not_written);
    require(frame->SetSize(static_cast<UINT>(texture.width_px), static_cast<UINT>(texture.height_px)),
            Code::channels_without_room);
    const GUID& wanted = grey                      ? GUID_WICPixelFormat8bppGray
                         : !alpha                  ? GUID_WICPixelFormat24bppBGR
                         : container.premultiplied ? GUID_WICPixelFormat32bppPBGRA
                                                   : GUID_WICPixelFormat32bppBGRA;
    // The writer puts the nearest that it has in its place.
    WICPixelFormatGUID given = wanted;
    require(frame->SetPixelFormat(&given), Code::channels_without_room);
    if (IsEqualGUID(given, wanted) == 0) {
        throw Refusal{Code::channels_without_room, std::string("Windows' writer of ") + container.name +
                                                       " files lacks this kind of pixels"};
    }
    write_rows_with_windows(*frame.get(), texture, grey, divide);
    require(frame->Commit(), Code::not_written);
    require(encoder->Commit(), Code::not_written);
    return content_of(*stream.get());
}

void write_with_windows(const char* path, const Container& container, const Texture& texture,
                        AlphaBytes alpha_bytes) {
    if (texture.pixel_count() == 0) {
        throw Refusal{Code::unsupported, "the texture has no pixels"};
    }
    if (std::string reason = no_room(container, texture); !reason.empty()) {
        throw Refusal{Code::channels_without_room, std::move(reason)};
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        throw Refusal{Code::cannot_open, error};
    }
    if (!file->fill(encoded(container, texture, alpha_bytes), error) || !file->put_in_place(error)) {
        throw Refusal{Code::not_written, error};
    }
}

/// Runs `work`, which throws a refusal when it fails, and reports what it throws.
template <typename Work>
bool refusing(const Reporter& reporter, const Work& work) {
    return guarded(reporter, [&] {
        try {
            work();
            return true;
        } catch (const Refusal& refusal) {
            return reporter.fail(refusal.code, refusal.reason);
        }
    });
}

/// Straight colour is what most of these formats hold, so it is kept.
AlphaBytes bytes_of(const AlphaOptions& alpha) {
    return alpha.pixels == AlphaPixels::straight ? AlphaBytes::kept : alpha.bytes;
}

}  // namespace

const Functions& system_functions() {
    static constexpr Functions kSystemFunctions{
        Functions::kVersion,
        [](const char* path, Header* header, Report report, void* reports) {
            return built_in_functions().probe(path, header, report, reports);
        },
        [](const char* path, const AlphaOptions* alpha, Texture* texture, Report report, void* reports) {
            const Reporter reporter(report, reports);
            return refusing(reporter, [&] { read_with_windows(path, bytes_of(*alpha), *texture, reporter); });
        },
        [](const char* path, const Texture* texture, const WriteOptions* options, Report report,
           void* reports) {
            const Container* const container = container_by_extension(path);
            const Reporter reporter(report, reports);
            if (container != nullptr) {
                return refusing(reporter, [&] {
                    write_with_windows(path, *container, *texture, bytes_of(options->alpha));
                });
            }
            if (built_in_functions().can_write(path)) {
                return built_in_functions().write(path, texture, options, report, reports);
            }
            return reporter.fail(Code::no_format, "PNG, TIFF, JPEG, BMP and TGA files are written");
        },
        [](const char* path) {
            return container_by_extension(path) != nullptr || built_in_functions().can_write(path);
        },
    };
    return kSystemFunctions;
}

}  // namespace image
