// ELF files, as far as the dynamic loader reads them: segments, the dynamic section and its symbols. Sections
// are for debuggers and may be missing.

#include <algorithm>
#include <map>

#include "binary_file/binary_file.h"

namespace binary_file {
namespace {

constexpr std::string_view kMagic("\177ELF", 4);

constexpr std::uint32_t kSegmentLoad = 1;
constexpr std::uint32_t kSegmentDynamic = 2;

enum DynamicTag : std::uint64_t {
    kTagEnd = 0,
    kTagNeeded = 1,
    kTagHash = 4,
    kTagTexts = 5,
    kTagSymbols = 6,
    kTagTextsSize = 10,
    kTagRpath = 15,
    kTagRunpath = 29,
    kTagFlags1 = 0x6FFFFFFB,
    kTagGnuHash = 0x6FFFFEF5,
};
constexpr std::uint64_t kFlagProgram = 0x08000000;  // position-independent programs are of type "shared"

std::string elf_processor(std::uint16_t machine) {
    switch (machine) {
        case 3:
            return "i386";
        case 40:
            return "arm";
        case 62:
            return "x86-64";
        case 183:
            return "arm64";
        case 243:
            return "risc-v";
        default:
            return "processor " + std::to_string(machine);
    }
}

class ElfReader {
  public:
    explicit ElfReader(const ByteView& file) : file_(file) {}

    void read(BinaryImage& image) {
        wide_ = file_.u8(4) == 2;
        file_ = ByteView(file_.all(), file_.u8(5) == 2 ? ByteOrder::big : ByteOrder::little);
        image.is_64_bit = wide_;
        const std::uint16_t type = file_.u16(16);
        image.processor = elf_processor(file_.u16(18));
        image.kind = type == 1   ? "object file"
                     : type == 2 ? "program"
                     : type == 3 ? "shared library"
                                 : "file";
        image.loadable = type == 3;
        read_segments();
        if (!dynamic_) {
            image.loadable = false;
            return;
        }
        const std::map<std::uint64_t, std::uint64_t> values = read_dynamic();
        if (const auto flags = values.find(kTagFlags1);
            flags != values.end() && (flags->second & kFlagProgram) != 0) {
            image.kind = "program";
            image.loadable = false;
        }
        read_texts(values, image);
        read_symbols(values, image);
    }

  private:
    struct Segment {
        std::uint64_t address = 0;
        std::uint64_t offset = 0;
        std::uint64_t size = 0;
    };

    [[nodiscard]] std::uint64_t word(const ByteView& view, std::uint64_t at) const {
        return wide_ ? view.u64(at) : view.u32(at);
    }

    void read_segments() {
        const std::uint64_t table = word(file_, wide_ ? 32 : 28);
        const std::uint16_t size = file_.u16(wide_ ? 54 : 42);
        const std::uint16_t count = file_.u16(wide_ ? 56 : 44);
        for (std::uint16_t i = 0; i < count; ++i) {
            if (table > file_.size()) {
                throw Damage(table, "the table of segments is expected here");
            }
            const ByteView row = file_.part(table + std::uint64_t{i} * size, wide_ ? 56 : 32);
            const Segment segment{word(row, wide_ ? 16 : 8), word(row, wide_ ? 8 : 4),
                                  word(row, wide_ ? 32 : 16)};
            if (row.u32(0) == kSegmentLoad) {
                segments_.push_back(segment);
            } else if (row.u32(0) == kSegmentDynamic) {
                dynamic_ = segment;
            }
        }
    }

    /// The content of memory at `address`, up to the end of its segment.
    [[nodiscard]] ByteView at_address(std::uint64_t address) const {
        for (const Segment& segment : segments_) {
            if (address >= segment.address && address - segment.address < segment.size) {
                return file_.part(segment.offset, segment.size).from(address - segment.address);
            }
        }
        throw Damage(0, "no segment holds the address " + std::to_string(address));
    }

    std::map<std::uint64_t, std::uint64_t> read_dynamic() {
        const ByteView rows = file_.part(dynamic_->offset, dynamic_->size);
        const std::uint64_t width = wide_ ? 16 : 8;
        std::map<std::uint64_t, std::uint64_t> values;
        for (std::uint64_t at = 0; at + width <= rows.size(); at += width) {
            const std::uint64_t tag = word(rows, at);
            const std::uint64_t value = word(rows, at + width / 2);
            if (tag == kTagEnd) {
                break;
            }
            if (tag == kTagNeeded || tag == kTagRpath || tag == kTagRunpath) {
                text_values_.push_back({tag, value});
            }
            values.emplace(tag, value);
        }
        return values;
    }

    void read_texts(const std::map<std::uint64_t, std::uint64_t>& values, BinaryImage& image) {
        const auto texts = values.find(kTagTexts);
        if (texts == values.end()) {
            return;
        }
        texts_ = at_address(texts->second);
        for (const auto& [tag, offset] : text_values_) {
            const std::string_view text = texts_.text(offset);
            if (tag == kTagNeeded) {
                image.needed.push_back({text});
                continue;
            }
            for (std::string_view rest = text; !rest.empty();) {
                const std::size_t end = std::min(rest.find(':'), rest.size());
                image.search_paths.push_back(rest.substr(0, end));
                rest.remove_prefix(std::min(end + 1, rest.size()));
            }
        }
    }

    /// The dynamic section does not contain the number of symbols, but their hash table does.
    [[nodiscard]] std::uint64_t count_symbols(const std::map<std::uint64_t, std::uint64_t>& values) const {
        if (const auto hash = values.find(kTagHash); hash != values.end()) {
            return at_address(hash->second).u32(4);
        }
        const auto hash = values.find(kTagGnuHash);
        if (hash == values.end()) {
            return 0;
        }
        const ByteView table = at_address(hash->second);
        const std::uint64_t buckets = table.u32(0);
        const std::uint64_t first = table.u32(4);
        const std::uint64_t bucket_rows = 16 + std::uint64_t{table.u32(8)} * (wide_ ? 8 : 4);
        std::uint64_t last = 0;
        for (std::uint64_t i = 0; i < buckets; ++i) {
            last = std::max<std::uint64_t>(last, table.u32(bucket_rows + i * 4));
        }
        if (last < first) {
            return first;
        }
        const std::uint64_t chains = bucket_rows + buckets * 4;
        while ((table.u32(chains + (last - first) * 4) & 1U) == 0) {
            ++last;
        }
        return last + 1;
    }

    void read_symbols(const std::map<std::uint64_t, std::uint64_t>& values, BinaryImage& image) {
        const auto symbols = values.find(kTagSymbols);
        if (symbols == values.end()) {
            return;
        }
        const ByteView table = at_address(symbols->second);
        const std::uint64_t width = wide_ ? 24 : 16;
        const std::uint64_t count = count_symbols(values);
        for (std::uint64_t i = 1; i < count; ++i) {
            const ByteView row = table.part(i * width, width);
            const std::uint8_t binding = row.u8(wide_ ? 4 : 12) >> 4U;
            const std::uint8_t visibility = row.u8(wide_ ? 5 : 13) & 3U;
            const std::uint16_t section = row.u16(wide_ ? 6 : 14);
            const bool outside = binding == 1 || binding == 2 || binding == 10;
            if (section != 0 && outside && (visibility == 0 || visibility == 3)) {
                image.exports.push_back(texts_.text(row.u32(0)));
            }
        }
    }

    ByteView file_;
    bool wide_ = false;
    std::vector<Segment> segments_;
    std::optional<Segment> dynamic_;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> text_values_;
    ByteView texts_{std::string_view()};
};

}  // namespace

bool is_elf_file(std::string_view bytes) {
    return bytes.substr(0, kMagic.size()) == kMagic;
}

BinaryImage read_elf_file(const ByteView& file) {
    BinaryImage image;
    image.container = Container::elf;
    image.kind = "file";
    try {
        ElfReader(file).read(image);
    } catch (const Damage& damage) {
        image.damage = damage;
    }
    return image;
}

}  // namespace binary_file
