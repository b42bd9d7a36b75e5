#include "image/ordinary_header.h"

#include <cstdio>
#include <string_view>

#include "image/header_bytes.h"
#include "image/ordinary_formats.h"
#include "system/open_regular_file.h"
#include "text/ascii.h"

namespace image {
namespace {

// --- PNG

/// The checksum of PNG chunks (ISO 3309), a bit at a time: chunks here are short.
std::uint32_t crc32(std::string_view bytes) {
    constexpr std::uint32_t kPolynomial = 0xEDB88320;
    std::uint32_t crc = 0xFFFFFFFF;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? kPolynomial : 0);
        }
    }
    return ~crc;
}

bool is_usual_png_header(HeaderBytes& file, std::uint64_t data) {
    const int depth = file.u8(data + 8);
    const int type = file.u8(data + 9);
    const bool known_type = type == 0 || type == 2 || type == 4 || type == 6;
    return is_usual_side(file.u32(data)) && is_usual_side(file.u32(data + 4)) && known_type &&
           (depth == 8 || depth == 16) && file.u16(data + 10) == 0 && file.u8(data + 12) <= 1;
}

/// Whether a chunk behind the header changes neither the picture nor its channels.
bool is_harmless_png_chunk(HeaderBytes& file, std::string_view name, std::uint64_t data,
                           std::uint32_t length) {
    if (name == "oFFs") {
        return length == 9 && file.number(data, 8) == 0 && file.u8(data + 8) == 0;
    }
    if (name == "tEXt") {
        // The library takes a text with the name of one of its own values for that value.
        return !text::equal_ignoring_case(file.text(data, 5), "oiio:");
    }
    return name == "tIME" || name == "pHYs" || name == "gAMA";
}

bool is_ordinary_png(HeaderBytes& file) {
    constexpr int kMostChunks = 64;
    constexpr std::uint32_t kLongestChunk_bytes = 1024;
    constexpr std::uint32_t kLongestAllowed_bytes = 0x7FFFFFFF;
    constexpr std::uint32_t kHeader_bytes = 13;
    if (file.text(0, 8) != "\x89PNG\r\n\x1a\n") {
        return false;
    }
    std::uint64_t at = 8;
    for (int i = 0; i < kMostChunks && !file.cut_off(); ++i) {
        const std::uint32_t length = file.u32(at);
        const std::string name = file.text(at + 4, 4);
        if (i > 0 && name == "IDAT") {
            return length > 0 && length <= kLongestAllowed_bytes;
        }
        if (length > kLongestChunk_bytes ||
            crc32(file.text(at + 4, static_cast<int>(length) + 4)) != file.u32(at + 8 + length)) {
            return false;
        }
        const std::uint64_t data = at + 8;
        const bool usual = i == 0
                               ? name == "IHDR" && length == kHeader_bytes && is_usual_png_header(file, data)
                               : is_harmless_png_chunk(file, name, data, length);
        if (!usual) {
            return false;
        }
        at = data + length + 4;
    }
    return false;
}

// --- TGA

/// What may follow the pixels of a TGA: nothing, or a footer with at most an extension area that leaves alpha
/// straight and has neither a colour table nor a thumbnail, which the library would read as well.
bool has_usual_tga_end(HeaderBytes& file, std::uint64_t pixels_end, std::uint64_t size_bytes,
                       bool has_alpha) {
    constexpr std::uint64_t kFooter_bytes = 26;
    constexpr std::uint64_t kExtension_bytes = 495;
    constexpr std::uint64_t kTables = 482;  // offsets of the colour table and of the thumbnail
    constexpr std::uint64_t kMeaningOfAlpha = 494;
    if (size_bytes < pixels_end + kFooter_bytes || file.text(size_bytes - 18, 16) != "TRUEVISION-XFILE") {
        return true;
    }
    const std::uint64_t area = file.u32(size_bytes - kFooter_bytes);
    if (area == 0) {
        return true;
    }
    const int meaning_of_alpha = file.u8(area + kMeaningOfAlpha);
    return area >= pixels_end && area + kExtension_bytes + kFooter_bytes <= size_bytes &&
           file.u16(area) == kExtension_bytes && file.number(area + kTables, 8) == 0 &&
           (meaning_of_alpha == 3 || (meaning_of_alpha == 0 && !has_alpha));
}

/// Grey, RGB or RGBA without a map.
bool is_ordinary_tga(HeaderBytes& file, std::uint64_t size_bytes) {
    constexpr std::uint64_t kHeader_bytes = 18;
    // The library looks for a footer first, and refuses a file without room for one.
    constexpr std::uint64_t kFooter_bytes = 26;
    file.set_order(Order::little);
    const int type = file.u8(2);
    const int bits = file.u8(16);
    const int alpha_bits = file.u8(17) & 0x0F;
    const bool grey = type == 3 || type == 11;
    const bool colour = type == 2 || type == 10;
    const bool whole_bytes = grey ? bits == 8 && alpha_bits == 0
                                  : (bits == 24 && alpha_bits == 0) || (bits == 32 && alpha_bits == 8);
    const std::uint64_t width_px = file.u16(12);
    const std::uint64_t height_px = file.u16(14);
    if ((!grey && !colour) || !whole_bytes || file.u16(0) != 0 || file.number(3, 5) != 0 ||
        (file.u8(17) & 0xC0) != 0 || !is_usual_side(width_px) || !is_usual_side(height_px) ||
        size_bytes < kHeader_bytes + kFooter_bytes) {
        return false;
    }
    const std::uint64_t pixels_bytes = width_px * height_px * static_cast<std::uint64_t>(bits / 8);
    const bool packed = type >= 8;
    return (packed || size_bytes - kHeader_bytes >= pixels_bytes) &&
           has_usual_tga_end(file, kHeader_bytes + (packed ? 0 : pixels_bytes), size_bytes, bits == 32);
}

// --- RLA

/// Up to three colours and a matte of whole bytes, of one picture that fills its window.
bool is_ordinary_rla(HeaderBytes& file, std::uint64_t size_bytes) {
    constexpr std::uint64_t kHeader_bytes = 740;
    const int colours = file.i16(20);
    const int mattes = file.i16(22);
    const int bits = file.i16(658);
    // The library refuses other depths even of channels that the file does not have.
    const bool same_bits = (bits == 8 || bits == 16) && file.i16(662) == bits && file.i16(666) == bits;
    const std::int64_t width_px = std::int64_t{file.i16(2)} - file.i16(0) + 1;
    const std::int64_t height_px = std::int64_t{file.i16(6)} - file.i16(4) + 1;
    if (file.u16(26) != 0xFFFE || (colours != 1 && colours != 3) || mattes < 0 || mattes > 1 ||
        file.i16(24) != 0 || !same_bits || width_px < 1 || height_px < 1 ||
        !is_usual_side(static_cast<std::uint64_t>(width_px)) ||
        !is_usual_side(static_cast<std::uint64_t>(height_px))) {
        return false;
    }
    const bool fills_window = file.number(0, 8) == file.number(8, 8);
    // Kinds of channels: whole numbers.
    const bool whole_numbers =
        file.i16(18) == 0 && file.i16(656) == 0 && file.i16(660) == 0 && file.i16(664) == 0;
    const bool one_picture = file.i16(16) == 0 && file.u32(736) == 0;
    return fills_window && whole_numbers && one_picture &&
           size_bytes >= kHeader_bytes + 4 * static_cast<std::uint64_t>(height_px);
}

bool is_ordinary(HeaderBytes& file, std::uint64_t size_bytes, const std::string& name) {
    const auto has_extension = [&name](std::string_view extension) {
        return text::ends_with_ignoring_case(name, extension);
    };
    if (has_extension(".png")) {
        return is_ordinary_png(file);
    }
    if (has_extension(".jpg") || has_extension(".jpeg")) {
        return is_ordinary_jpeg(file);
    }
    if (has_extension(".tif") || has_extension(".tiff")) {
        return is_ordinary_tiff(file, size_bytes);
    }
    if (has_extension(".tga")) {
        return is_ordinary_tga(file, size_bytes);
    }
    return has_extension(".rla") && is_ordinary_rla(file, size_bytes);
}

}  // namespace

std::optional<Header> ordinary_header(const ReadAt& read_at, std::uint64_t size_bytes,
                                      const std::string& name) {
    HeaderBytes file(read_at);
    if (!is_ordinary(file, size_bytes, name) || file.cut_off()) {
        return std::nullopt;
    }
    std::string error;
    return read_built_in_header(read_at, name, error);
}

std::optional<Header> ordinary_header_of_file(const std::string& path) {
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr || ::fseeko(file.get(), 0, SEEK_END) != 0) {
        return std::nullopt;
    }
    const off_t size_bytes = ::ftello(file.get());
    if (size_bytes < 0) {
        return std::nullopt;
    }
    return ordinary_header(reads_from(file.get()), static_cast<std::uint64_t>(size_bytes), path);
}

}  // namespace image
