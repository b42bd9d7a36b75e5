#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "image/header_bytes.h"
#include "image/ordinary_formats.h"

namespace image {
namespace {

/// Whether `bytes` are whole Huffman tables whose codes fit, as decoders want them; sets their bits in
/// `tables`: 0 to 3 for those of first coefficients, 4 to 7 for the others.
bool read_huffman_tables(HeaderBytes& file, std::uint64_t at, std::uint64_t end, unsigned& tables) {
    while (at < end) {
        const int index = file.u8(at);
        const bool others = index >> 4 == 1;
        if ((index & 0x0F) > 3 || index >> 4 > 1) {
            return false;
        }
        std::uint64_t symbols = 0;
        std::uint32_t code = 0;
        for (std::uint64_t length = 1; length <= 16; ++length) {
            const std::uint32_t count = file.u8(at + length);
            symbols += count;
            code += count;
            // A code of ones alone is not used.
            if (count > 0 && code >= (std::uint32_t{1} << length)) {
                return false;
            }
            code <<= 1;
        }
        constexpr std::uint64_t kCounts_bytes = 17;
        if (symbols == 0 || symbols > 256 || at + kCounts_bytes + symbols > end) {
            return false;
        }
        for (std::uint64_t i = 0; !others && i < symbols; ++i) {
            if (file.u8(at + kCounts_bytes + i) > 15) {
                return false;
            }
        }
        tables |= 1U << ((index & 3) + (others ? 4 : 0));
        at += kCounts_bytes + symbols;
    }
    return at == end;
}

bool read_quantisation_tables(HeaderBytes& file, std::uint64_t at, std::uint64_t end, unsigned& tables) {
    constexpr std::uint64_t kTable_bytes = 65;
    for (; at + kTable_bytes <= end; at += kTable_bytes) {
        if (file.u8(at) > 3) {
            return false;
        }
        tables |= 1U << file.u8(at);
    }
    return at == end;
}

/// A baseline frame of 1 or 3 components, of which the first is as large as the others or up to twice.
bool is_usual_frame(HeaderBytes& file, std::uint64_t at, std::uint64_t end, unsigned quantisation_tables) {
    const std::uint64_t components = file.u8(at + 5);
    if (file.u8(at) != 8 || (components != 1 && components != 3) || end != at + 6 + 3 * components ||
        !is_usual_side(file.u16(at + 1)) || !is_usual_side(file.u16(at + 3))) {
        return false;
    }
    for (std::uint64_t i = 0; i < components; ++i) {
        const std::uint64_t component = at + 6 + 3 * i;
        const int sampling = file.u8(component + 1);
        const bool larger = i == 0 && (sampling == 0x21 || sampling == 0x12 || sampling == 0x22);
        const int table = file.u8(component + 2);
        if (file.u8(component) != i + 1 || (sampling != 0x11 && !larger) || table > 3 ||
            (quantisation_tables >> table & 1) == 0) {
            return false;
        }
    }
    return true;
}

/// A scan of all components, after which there are pixels.
bool is_usual_scan(HeaderBytes& file, std::uint64_t at, std::uint64_t end, std::uint64_t components,
                   unsigned huffman_tables) {
    if (file.u8(at) != components || end != at + 4 + 2 * components || file.u8(end - 3) != 0 ||
        file.u8(end - 2) != 63 || file.u8(end - 1) != 0) {
        return false;
    }
    for (std::uint64_t i = 0; i < components; ++i) {
        const int tables = file.u8(at + 2 + 2 * i);
        const int first = tables >> 4;
        const int others = tables & 0x0F;
        if (file.u8(at + 1 + 2 * i) != i + 1 || first > 3 || others > 3 ||
            (huffman_tables >> first & 1) == 0 || (huffman_tables >> (others + 4) & 1) == 0) {
            return false;
        }
    }
    return file.u8(end) != 0xFF || file.u8(end + 1) == 0;
}

/// Whether a value of Exif describes the picture, and changes neither its channels nor their depth.
bool is_description(int tag) {
    constexpr std::array<std::pair<int, int>, 11> kFirstAndLast{{
        {270, 272},      // description, make and model of the camera
        {274, 274},      // orientation, which the library does not apply
        {282, 283},      // pixels in an inch or centimetre
        {296, 296},      // inch or centimetre
        {305, 306},      // program, date
        {315, 315},      // artist
        {531, 531},      // where colour is sampled
        {33432, 33437},  // copyright, exposure, aperture
        {36864, 36868},  // version, dates
        {37121, 37386},  // order of components, light, lens
        {40960, 40963},  // version, colour space, size
    }};
    return std::any_of(kFirstAndLast.begin(), kFirstAndLast.end(),
                       [tag](const auto& range) { return tag >= range.first && tag <= range.second; });
}

/// Whether a directory of Exif has only descriptions: the library takes even the depth from it. `camera` is
/// set to where the directory of the camera's settings begins, if there is one.
bool is_usual_exif_directory(HeaderBytes& file, std::uint64_t tiff, std::uint64_t at, std::uint64_t end,
                             std::uint64_t& camera) {
    constexpr std::uint64_t kMostEntries = 64;
    constexpr std::uint64_t kEntry_bytes = 12;
    constexpr int kCamera = 34665;
    const std::uint64_t entries = file.u16(at);
    if (entries > kMostEntries || at + 2 + kEntry_bytes * entries > end) {
        return false;
    }
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = at + 2 + kEntry_bytes * i;
        const int tag = file.u16(entry);
        if (tag == kCamera) {
            camera = tiff + file.u32(entry + 8);
        } else if (!is_description(tag)) {
            return false;
        }
    }
    return true;
}

/// What a camera or a program says of the picture: Exif with settings of the camera at most.
bool is_usual_exif(HeaderBytes& file, std::uint64_t at, std::uint64_t end) {
    constexpr std::uint64_t kName_bytes = 6;
    const std::uint64_t tiff = at + kName_bytes;
    if (file.text(at, 6) != std::string_view("Exif\0\0", kName_bytes) || tiff + 8 > end) {
        return false;
    }
    const std::string order = file.text(tiff, 2);
    file.set_order(order == "II" ? Order::little : Order::big);
    std::uint64_t camera = 0;
    std::uint64_t none = 0;
    const bool usual = (order == "II" || order == "MM") && file.u16(tiff + 2) == 42 &&
                       is_usual_exif_directory(file, tiff, tiff + file.u32(tiff + 4), end, camera) &&
                       (camera == 0 || (is_usual_exif_directory(file, tiff, camera, end, none) && none == 0));
    file.set_order(Order::big);
    return usual;
}

}  // namespace

bool is_ordinary_jpeg(HeaderBytes& file) {
    constexpr int kMostSegments = 64;
    if (file.u16(0) != 0xFFD8) {
        return false;
    }
    std::uint64_t at = 2;
    std::uint64_t components = 0;
    unsigned quantisation_tables = 0;
    unsigned huffman_tables = 0;
    for (int i = 0; i < kMostSegments && !file.cut_off(); ++i) {
        const int marker = file.u16(at);
        const std::uint64_t data = at + 4;
        const std::uint64_t end = at + 2 + file.u16(at + 2);
        if (end < data) {
            return false;
        }
        bool usual = false;
        switch (marker) {
            case 0xFFE0:  // JFIF: how large a pixel is
                usual = i == 0 && end == data + 14 && file.text(data, 5) == std::string_view("JFIF\0", 5);
                break;
            case 0xFFE1:
                usual = is_usual_exif(file, data, end);
                break;
            case 0xFFFE:  // a comment; the next marker shows that it is complete
                usual = true;
                break;
            case 0xFFDB:
                usual = read_quantisation_tables(file, data, end, quantisation_tables);
                break;
            case 0xFFC4:
                usual = read_huffman_tables(file, data, end, huffman_tables);
                break;
            case 0xFFC0:
                usual = components == 0 && is_usual_frame(file, data, end, quantisation_tables);
                components = file.u8(data + 5);
                break;
            case 0xFFDA:
                return components > 0 && is_usual_scan(file, data, end, components, huffman_tables);
            default:
                break;
        }
        if (!usual) {
            return false;
        }
        at = end;
    }
    return false;
}

}  // namespace image
