#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "image/header_bytes.h"
#include "image/ordinary_formats.h"

namespace image {
namespace {

/// An entry of a TIFF's directory.
struct TiffEntry {
    std::uint64_t tag = 0;
    std::uint64_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t data = 0;  ///< where its values are
};

constexpr std::uint64_t kShort = 3;
constexpr std::uint64_t kLong = 4;

std::uint64_t value_bytes(const TiffEntry& entry) {
    constexpr std::array<std::uint64_t, 6> kBytes{0, 1, 1, 2, 4, 8};
    return entry.type < kBytes.size() ? kBytes[entry.type] : 0;
}

/// The first directory, read strictly: each entry has to be one that is known, in order, and whole. The
/// reader in built_in_header.cpp takes what it finds, for builds that have no library to ask.
class OrdinaryTiff {
  public:
    OrdinaryTiff(HeaderBytes& file, std::uint64_t size_bytes) : file_(file), size_bytes_(size_bytes) {}

    bool is_one() {
        if (file_.u16(2) != 42 || !read_directory()) {
            return false;
        }
        for (std::size_t i = 0; i < count_; ++i) {
            if (!is_usual(entries_[i])) {
                return false;
            }
        }
        return is_usual_side(number(256)) && is_usual_side(number(257)) && has_strips() && has_samples();
    }

  private:
    static constexpr std::size_t kMostEntries = 32;

    bool read_directory() {
        const std::uint64_t at = file_.u32(4);
        count_ = file_.u16(at);
        // There is one picture.
        if (at < 8 || count_ > kMostEntries || file_.u32(at + 2 + 12 * count_) != 0) {
            return false;
        }
        for (std::size_t i = 0; i < count_; ++i) {
            const std::uint64_t entry = at + 2 + 12 * i;
            TiffEntry& read = entries_[i];
            read = {file_.u16(entry), file_.u16(entry + 2), file_.u32(entry + 4), entry + 8};
            const std::uint64_t bytes = read.count * value_bytes(read);
            if (bytes > 4) {
                read.data = file_.u32(entry + 8);
            }
            if (bytes == 0 || read.data > size_bytes_ || bytes > size_bytes_ - read.data ||
                (i > 0 && read.tag <= entries_[i - 1].tag)) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] const TiffEntry* find(std::uint64_t tag) const {
        for (std::size_t i = 0; i < count_; ++i) {
            if (entries_[i].tag == tag) {
                return &entries_[i];
            }
        }
        return nullptr;
    }

    std::uint64_t number(const TiffEntry& entry, std::uint64_t index) {
        return file_.number(entry.data + index * value_bytes(entry), static_cast<int>(value_bytes(entry)));
    }

    /// The first value of a tag; 0 without one.
    std::uint64_t number(std::uint64_t tag) {
        const TiffEntry* const entry = find(tag);
        return entry == nullptr ? 0 : number(*entry, 0);
    }

    bool is_short(const TiffEntry& entry, std::uint64_t least, std::uint64_t most) {
        const std::uint64_t value = number(entry, 0);
        return entry.type == kShort && entry.count == 1 && value >= least && value <= most;
    }

    bool is_usual(const TiffEntry& entry) {
        switch (entry.tag) {
            case 254:  // kind of picture: not a reduced one, a page or a mask
                return entry.type == kLong && entry.count == 1 && number(entry, 0) == 0;
            case 256:  // size and rows in a strip
            case 257:
            case 278:
                return (entry.type == kShort || entry.type == kLong) && entry.count == 1;
            case 258:  // bits and formats of samples
            case 339:
                return entry.type == kShort;
            case 259: {  // compression: none, LZW, Deflate twice, PackBits
                const std::uint64_t kind = number(entry, 0);
                return entry.type == kShort && entry.count == 1 &&
                       (kind == 1 || kind == 5 || kind == 8 || kind == 32946 || kind == 32773);
            }
            case 262:  // black is 0, or RGB
                return is_short(entry, 1, 2);
            case 266:  // order of bits, orientation, planes
            case 274:
            case 284:
                return is_short(entry, 1, 1);
            case 273:  // strips
            case 279:
                return entry.type == kShort || entry.type == kLong;
            case 277:
                return is_short(entry, 1, 4);
            case 282:  // pixels per unit
            case 283:
                return entry.type == 5 && entry.count == 1 && number(entry, 0) >> 32 != 0 &&
                       (number(entry, 0) & 0xFFFFFFFF) != 0;
            case 296:
                return is_short(entry, 1, 3);
            case 270:  // description, software, date, artist
            case 305:
            case 306:
            case 315:
                return is_text(entry);
            case 317:
                return is_short(entry, 1, 2);
            case 338:
                return is_short(entry, 0, 2);
            default:
                return false;
        }
    }

    /// Short, printable, and without a meaning of its own: the library reads some descriptions as values.
    bool is_text(const TiffEntry& entry) {
        constexpr std::uint64_t kLongest_bytes = 256;
        if (entry.type != 2 || entry.count > kLongest_bytes || (entry.tag == 306 && entry.count != 20)) {
            return false;
        }
        const std::string text = file_.text(entry.data, static_cast<int>(entry.count));
        return text.back() == '\0' && std::all_of(text.begin(), text.end() - 1, [&](char byte) {
                   return byte >= ' ' && byte <= '~' && (entry.tag != 270 || byte != '=');
               });
    }

    /// Every strip lies in the file.
    bool has_strips() {
        const TiffEntry* const offsets = find(273);
        const TiffEntry* const sizes = find(279);
        const std::uint64_t rows = number(278);
        if (offsets == nullptr || sizes == nullptr || rows == 0) {
            return false;
        }
        const std::uint64_t strips = (number(257) + rows - 1) / rows;
        if (offsets->count != strips || sizes->count != strips) {
            return false;
        }
        for (std::uint64_t i = 0; i < strips; ++i) {
            const std::uint64_t offset = number(*offsets, i);
            const std::uint64_t bytes = number(*sizes, i);
            if (offset < 8 || bytes == 0 || offset > size_bytes_ || bytes > size_bytes_ - offset) {
                return false;
            }
        }
        return true;
    }

    /// Grey or RGB, with or without one alpha, all samples of 8 or of 16 bits.
    bool has_samples() {
        const std::uint64_t samples = number(277);
        const std::uint64_t colours = number(262) == 2 ? 3 : 1;
        const TiffEntry* const bits = find(258);
        const TiffEntry* const formats = find(339);
        const TiffEntry* const extra = find(338);
        if (find(259) == nullptr || find(262) == nullptr || bits == nullptr || bits->count != samples ||
            (formats != nullptr && formats->count != samples) ||
            samples != colours + (extra == nullptr ? 0 : 1)) {
            return false;
        }
        // Differences of neighbours need a compression that knows them.
        if (number(317) == 2 && (number(259) == 1 || number(259) == 32773)) {
            return false;
        }
        for (std::uint64_t i = 0; i < samples; ++i) {
            const std::uint64_t depth = number(*bits, i);
            if ((depth != 8 && depth != 16) || depth != number(*bits, 0) ||
                (formats != nullptr && number(*formats, i) != 1)) {
                return false;
            }
        }
        return true;
    }

    HeaderBytes& file_;
    std::uint64_t size_bytes_;
    std::array<TiffEntry, kMostEntries> entries_{};
    std::size_t count_ = 0;
};

}  // namespace

bool is_ordinary_tiff(HeaderBytes& file, std::uint64_t size_bytes) {
    const std::string order = file.text(0, 2);
    if (order != "II" && order != "MM") {
        return false;
    }
    file.set_order(order == "II" ? Order::little : Order::big);
    return OrdinaryTiff(file, size_bytes).is_one();
}

}  // namespace image
