#include "image/writing_windows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "system/replacement_file.h"
#include "texture/value/alpha_use.h"

namespace image {
namespace {

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

/// Fills `rows` with `count` pixels from pixel number `first` on: grey, or blue, green, red and alpha.
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
            rows.push_back(divide ? divided_by_alpha(value, alpha) : value);
        }
        if (!texture.alphas.empty()) {
            rows.push_back(alpha);
        }
    }
}

/// Sets the JPEG quality to the image library's default, so that both write pictures of one quality.
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
    // A writer without this kind of pixels sets the nearest that it has.
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

}  // namespace

void write_with_windows(const char* path, const Container& container, const Texture& texture,
                        AlphaBytes alpha_bytes) {
    if (texture.pixel_count() == 0) {
        throw Refusal{Code::unsupported, no_pixels_text(texture.width_px, texture.height_px)};
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

}  // namespace image
