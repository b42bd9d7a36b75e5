#include "image/built_in_header.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "image/header_bytes.h"
#include "text/ascii.h"

namespace image {
namespace {

using FoundHeader = std::optional<Header>;

FoundHeader sized(std::int64_t width, std::int64_t height, int channels, int bits) {
    constexpr std::int64_t kLargest_px = 0x7FFFFFFF;
    if (width < 1 || height < 1 || width > kLargest_px || height > kLargest_px || channels < 1) {
        return std::nullopt;
    }
    Header header;
    header.width_px = static_cast<int>(width);
    header.height_px = static_cast<int>(height);
    header.channels = channels;
    header.bits_per_channel = bits;
    return header;
}

FoundHeader png(HeaderBytes& file) {
    const int depth = file.u8(24);
    const int type = file.u8(25);
    constexpr int kPalette = 1;
    constexpr int kColour = 2;
    constexpr int kAlpha = 4;
    // The library expands palettes to RGB and turns a transparent colour into an alpha channel.
    bool alpha = (type & kAlpha) != 0;
    constexpr std::uint64_t kFirstChunk = 8;
    constexpr int kMostChunks = 1000;
    std::uint64_t at = kFirstChunk;
    for (int i = 0; i < kMostChunks && !file.cut_off(); ++i) {
        const std::string name = file.text(at + 4, 4);
        if (name == "IDAT" || name == "IEND") {
            break;
        }
        alpha = alpha || name == "tRNS";
        at += 12 + std::uint64_t{file.u32(at)};
    }
    const int colours = (type & (kPalette | kColour)) != 0 ? 3 : 1;
    FoundHeader header = sized(file.u32(16), file.u32(20), colours + (alpha ? 1 : 0), depth == 16 ? 16 : 8);
    if (header) {
        header->has_alpha = alpha;
    }
    return header;
}

FoundHeader jpeg(HeaderBytes& file) {
    std::uint64_t at = 2;
    constexpr int kMostSegments = 10000;
    for (int i = 0; i < kMostSegments && !file.cut_off(); ++i) {
        if (file.u8(at) != 0xFF) {
            return std::nullopt;
        }
        const int marker = file.u8(at + 1);
        if (marker == 0xFF) {
            ++at;  // a fill byte
            continue;
        }
        // The markers that start a frame; the three excluded ones are tables.
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
            return sized(file.u16(at + 7), file.u16(at + 5), file.u8(at + 9) == 1 ? 1 : 3, 8);
        }
        const bool alone = marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
        at += alone ? std::uint64_t{2} : 2 + std::uint64_t{file.u16(at + 2)};
    }
    return std::nullopt;
}

/// The entries of a TIFF's first directory.
class TiffDirectory {
  public:
    explicit TiffDirectory(HeaderBytes& file) : file_(file), big_(file.u16(2) == 43) {
        const std::uint64_t directory = big_ ? file.number(8, 8) : file.u32(4);
        first_ = directory + (big_ ? 8 : 2);
        // BigTIFF counts entries in 64 bits; no real directory has more than the 16 bits of ordinary TIFF
        // hold.
        count_ = std::min<std::uint64_t>(big_ ? file.number(directory, 8) : file.u16(directory), 0xFFFF);
    }

    /// Value number `index` of a tag; `otherwise` when there is none.
    std::int64_t value(int tag, std::int64_t otherwise, std::uint64_t index = 0) {
        return value_of(find(tag), otherwise, index);
    }
    /// The same for the entry that `find` returned: a file may have as many values as entries, and must not
    /// have each of them looked for.
    std::int64_t value_of(std::uint64_t entry, std::int64_t otherwise, std::uint64_t index) {
        const int bytes = entry == 0 ? 0 : type_bytes(file_.u16(entry + 2));
        if (bytes == 0 || index >= count_of(entry)) {
            return otherwise;
        }
        const std::uint64_t inside = entry + (big_ ? 12 : 8);
        const std::uint64_t room = big_ ? 8 : 4;
        std::uint64_t place = inside;
        if (count_of(entry) > room / static_cast<std::uint64_t>(bytes)) {
            place = file_.number(inside, big_ ? 8 : 4);
        }
        return static_cast<std::int64_t>(
            file_.number(place + index * static_cast<std::uint64_t>(bytes), bytes));
    }

    /// Where the entry of a tag is; 0 when there is none.
    std::uint64_t find(int tag) {
        for (std::uint64_t i = 0; i < count_ && !file_.cut_off(); ++i) {
            const std::uint64_t entry = first_ + i * (big_ ? 20 : 12);
            if (file_.u16(entry) == tag) {
                return entry;
            }
        }
        return 0;
    }

    std::uint64_t count_of(std::uint64_t entry) {
        return big_ ? file_.number(entry + 4, 8) : file_.u32(entry + 4);
    }

  private:
    static int type_bytes(int type) {
        switch (type) {
            case 1:  // bytes
            case 7:
                return 1;
            case 3:  // shorts
                return 2;
            case 4:  // longs
                return 4;
            case 16:  // 64 bits
                return 8;
            default:
                return 0;
        }
    }

    HeaderBytes& file_;
    bool big_;
    std::uint64_t first_ = 0;
    std::uint64_t count_ = 0;
};

constexpr int kTiffExtraSamples = 338;

/// Decides which sample of a pixel is alpha. The library takes a fourth sample for alpha unless the file says
/// otherwise.
void find_tiff_alpha(TiffDirectory& directory, int photometric, Header& header) {
    constexpr std::int64_t kAssociated = 1;
    constexpr std::int64_t kUnassociated = 2;
    constexpr int kRgb = 2;
    int alpha = header.channels == 2 ? 1 : (header.channels >= 4 ? 3 : -1);
    bool premultiplied = true;
    const int colours = photometric < kRgb || photometric == 3 || photometric == 4 ? 1 : 3;
    const std::uint64_t entry = directory.find(kTiffExtraSamples);
    const std::uint64_t extras = entry == 0 ? 0 : std::min<std::uint64_t>(directory.count_of(entry), 0xFFFF);
    for (std::uint64_t i = 0; i < extras && colours + static_cast<int>(i) < header.channels; ++i) {
        const int channel = colours + static_cast<int>(i);
        const std::int64_t kind = directory.value_of(entry, 0, i);
        if (kind == kAssociated || kind == kUnassociated) {
            alpha = channel;
            premultiplied = kind == kAssociated;
        } else if (alpha == channel) {
            alpha = -1;
        }
    }
    header.has_alpha = alpha >= 0;
    header.alpha_premultiplied = header.has_alpha && premultiplied;
}

FoundHeader tiff(HeaderBytes& file) {
    constexpr int kPalette = 3;
    TiffDirectory directory(file);
    const auto photometric = static_cast<int>(directory.value(262, 0));
    const std::int64_t samples = std::min<std::int64_t>(directory.value(277, 1), 0xFFFF);
    const std::int64_t width = directory.value(256, 0);
    const std::int64_t height = directory.value(257, 0);
    const bool palette = photometric == kPalette;
    // A picture that is part of a larger one makes footage of the larger size.
    FoundHeader header =
        sized(directory.value(33300, width), directory.value(33301, height),
              palette ? 3 : static_cast<int>(samples), static_cast<int>(directory.value(258, 1)));
    if (header) {
        find_tiff_alpha(directory, photometric, *header);
    }
    return header;
}

FoundHeader tga(HeaderBytes& file) {
    file.set_order(Order::little);
    const int map = file.u8(1);
    const int packed_type = file.u8(2);
    const int type = packed_type & 7;
    const int bits = file.u8(16);
    const bool known_type = (packed_type & ~11) == 0 && type >= 1 && type <= 3;
    if (map > 1 || !known_type || (type == 1) != (map == 1)) {
        return std::nullopt;
    }
    const int colour_bits = type == 1 ? file.u8(7) : bits;
    const bool alpha = type == 3 ? bits == 16 : colour_bits == 32;
    FoundHeader header = sized(file.u16(12), file.u16(14), (type == 3 ? 1 : 3) + (alpha ? 1 : 0), 8);
    if (header) {
        header->has_alpha = alpha;
    }
    return header;
}

FoundHeader bmp(HeaderBytes& file) {
    file.set_order(Order::little);
    constexpr std::uint32_t kOldHeader = 12;
    const std::uint32_t header_bytes = file.u32(14);
    if (header_bytes < kOldHeader || (header_bytes > kOldHeader && header_bytes < 40)) {
        return std::nullopt;
    }
    const bool old = header_bytes == kOldHeader;
    const std::int64_t width = old ? file.u16(18) : file.i32(18);
    const std::int64_t height = old ? std::int64_t{file.u16(20)} : std::int64_t{file.i32(22)};
    const int bits = file.u16(old ? 24 : 28);
    FoundHeader header = sized(width, height < 0 ? -height : height, bits == 32 ? 4 : 3, 8);
    if (header) {
        header->has_alpha = header->channels == 4;
        header->alpha_premultiplied = header->has_alpha;
    }
    return header;
}

FoundHeader rla(HeaderBytes& file) {
    const int colours = file.i16(20);
    const int mattes = file.i16(22);
    const int others = file.i16(24);
    if (colours < 0 || mattes < 0 || others < 0) {
        return std::nullopt;
    }
    // The full window: left, right, bottom, top, all inclusive.
    const std::int64_t width = std::int64_t{file.i16(2)} - file.i16(0) + 1;
    const std::int64_t height = std::int64_t{file.i16(6)} - file.i16(4) + 1;
    FoundHeader header = sized(width, height, colours + mattes + others, file.i16(658));
    if (header) {
        header->has_alpha = mattes > 0;
        header->alpha_premultiplied = header->has_alpha;
    }
    return header;
}

FoundHeader by_content(HeaderBytes& file, const std::string& name) {
    const std::string start = file.text(0, 8);
    if (start == "\x89PNG\r\n\x1a\n") {
        return png(file);
    }
    if (start.starts_with("\xff\xd8\xff")) {
        return jpeg(file);
    }
    if (start.starts_with(std::string_view("II\x2a\0", 4)) ||
        start.starts_with(std::string_view("II\x2b\0", 4))) {
        file.set_order(Order::little);
        return tiff(file);
    }
    if (start.starts_with(std::string_view("MM\0\x2a", 4)) ||
        start.starts_with(std::string_view("MM\0\x2b", 4))) {
        return tiff(file);
    }
    if (text::ends_with_ignoring_case(name, ".tga")) {
        return tga(file);
    }
    if (start.starts_with("BM")) {
        return bmp(file);
    }
    constexpr int kRlaRevision = 0xFFFE;
    return file.u16(26) == kRlaRevision ? rla(file) : std::nullopt;
}

}  // namespace

ReadAt reads_from(std::FILE* file) {
    return [file](std::uint64_t offset_bytes, char* data, std::size_t bytes) {
        constexpr std::uint64_t kFarthest = std::uint64_t{1} << 62;
        return offset_bytes <= kFarthest && ::fseeko(file, static_cast<off_t>(offset_bytes), SEEK_SET) == 0 &&
               std::fread(data, 1, bytes, file) == bytes;
    };
}

std::optional<Header> read_built_in_header(const ReadAt& read_at, const std::string& name,
                                           std::string& error) {
    HeaderBytes bytes(read_at);
    FoundHeader header = by_content(bytes, name);
    if (header && !bytes.cut_off()) {
        return header;
    }
    error = bytes.cut_off() ? "the header is cut off"
                            : std::string("not a known image format: ") + kBuiltInFormats + " are supported";
    return std::nullopt;
}

}  // namespace image
