// Portable executables: the headers, the tables of exports and imports, and the tree of resources.

#include <functional>

#include "binary_file/binary_file.h"
#include "binary_file/resources.h"

namespace binary_file {
namespace {

/// Windows does not load files with more, and every look-up of an address visits each of them.
constexpr std::uint16_t kMostSections = 96;

constexpr std::uint16_t kIsProgram = 0x0002;
constexpr std::uint16_t kIsLibrary = 0x2000;

enum Directory : std::uint64_t { kExports = 0, kImports = 1, kResources = 2, kDelayedImports = 13 };

std::string pe_processor(std::uint16_t machine) {
    switch (machine) {
        case 0x014C:
            return "i386";
        case 0x8664:
            return "x86-64";
        case 0x01C4:
            return "arm";
        case 0xAA64:
            return "arm64";
        default:
            return "processor " + std::to_string(machine);
    }
}

class PeReader {
  public:
    explicit PeReader(const ByteView& file) : file_(file) {}

    void read(BinaryImage& image) {
        const std::uint64_t header = file_.u32(0x3C);
        if (file_.bytes(header, 4) != std::string_view("PE\0\0", 4)) {
            throw Damage(header, "the header of a portable executable is expected here");
        }
        const ByteView coff = file_.part(header + 4, 20);
        image.processor = pe_processor(coff.u16(0));
        const std::uint16_t flags = coff.u16(18);
        image.loadable = (flags & kIsLibrary) != 0;
        image.kind = image.loadable ? "DLL" : (flags & kIsProgram) != 0 ? "program" : "object file";

        if (coff.u16(2) > kMostSections) {
            throw Damage(coff.start_bytes(), "more than " + std::to_string(kMostSections) + " sections");
        }
        const ByteView optional = file_.part(header + 24, coff.u16(16));
        image.is_64_bit = optional.u16(0) == 0x20B;
        const std::uint64_t directories = image.is_64_bit ? 112 : 96;
        directories_ = optional.from(directories);
        directory_count_ = optional.u32(directories - 4);
        sections_ = file_.part(header + 24 + coff.u16(16), std::uint64_t{coff.u16(2)} * 40);

        read_exports(image);
        read_imports(image, kImports, 20, 12);
        read_imports(image, kDelayedImports, 32, 4);
        if (const std::uint64_t tree = directory(kResources); tree != 0) {
            image.property_lists = pe_resources(
                at_address(tree), "PIPL", [this](std::uint64_t address) { return at_address(address); });
        }
    }

  private:
    /// The address of a table in the loaded image; 0 when the table does not exist.
    [[nodiscard]] std::uint64_t directory(Directory which) const {
        return which < directory_count_ ? directories_.u32(which * 8) : 0;
    }

    /// The bytes at an address relative to the image, up to the end of its section.
    [[nodiscard]] ByteView at_address(std::uint64_t address) const {
        for (std::uint64_t at = 0; at < sections_.size(); at += 40) {
            const std::uint64_t begin = sections_.u32(at + 12);
            const std::uint64_t stored = sections_.u32(at + 16);
            if (address >= begin && address - begin < stored) {
                return file_.part(sections_.u32(at + 20), stored).from(address - begin);
            }
        }
        throw Damage(sections_.start_bytes(), "no section holds the address " + std::to_string(address));
    }

    void read_exports(BinaryImage& image) const {
        const std::uint64_t where = directory(kExports);
        if (where == 0) {
            return;
        }
        const ByteView table = at_address(where).part(0, 40);
        const std::uint64_t count = table.u32(24);
        if (count == 0) {
            return;
        }
        const ByteView names = at_address(table.u32(32)).part(0, count * 4);
        for (std::uint64_t i = 0; i < count; ++i) {
            image.exports.push_back(at_address(names.u32(i * 4)).text(0));
        }
    }

    /// The table ends with a row without a name.
    void read_imports(BinaryImage& image, Directory which, std::uint64_t row_bytes,
                      std::uint64_t name_at) const {
        const std::uint64_t where = directory(which);
        if (where == 0) {
            return;
        }
        const ByteView table = at_address(where);
        for (std::uint64_t at = 0;; at += row_bytes) {
            const std::uint32_t name = table.part(at, row_bytes).u32(name_at);
            if (name == 0) {
                return;
            }
            image.needed.push_back({at_address(name).text(0), which == kDelayedImports});
        }
    }

    ByteView file_;
    ByteView directories_{std::string_view()};
    std::uint64_t directory_count_ = 0;
    ByteView sections_{std::string_view()};
};

}  // namespace

bool is_pe_file(std::string_view bytes) {
    return bytes.substr(0, 2) == "MZ";
}

BinaryImage read_pe_file(const ByteView& file) {
    BinaryImage image;
    image.container = Container::pe;
    image.kind = "file";
    try {
        PeReader(file).read(image);
    } catch (const Damage& damage) {
        image.damage = damage;
    }
    return image;
}

}  // namespace binary_file
