// Mach-O files for one processor: the header, the load commands and the exported symbols.

#include "binary_file/binary_file.h"

namespace binary_file {
namespace {

constexpr std::uint32_t kMagic32 = 0xFEEDFACE;
constexpr std::uint32_t kMagic64 = 0xFEEDFACF;

enum Command : std::uint32_t {
    kSymbols = 0x2,
    kLoad = 0xC,
    kSignature = 0x1D,
    kLazyLoad = 0x20,
    kWeakLoad = 0x80000018,
    kRunPath = 0x8000001C,
    kReexport = 0x8000001F,
    kUpwardLoad = 0x80000023,
};

std::string mach_o_processor(std::uint32_t type) {
    switch (type) {
        case 7:
            return "i386";
        case 0x01000007:
            return "x86-64";
        case 12:
            return "arm";
        case 0x0100000C:
            return "arm64";
        case 18:
            return "powerpc";
        case 0x01000012:
            return "powerpc64";
        default:
            return "processor " + std::to_string(type);
    }
}

std::string kind_label(std::uint32_t type) {
    switch (type) {
        case 1:
            return "object file";
        case 2:
            return "program";
        case 6:
            return "shared library";
        case 8:
            return "bundle";
        default:
            return "file";
    }
}

bool has_magic(const ByteView& file) {
    return file.size() >= 4 && (file.u32(0) == kMagic32 || file.u32(0) == kMagic64);
}

void read_symbols(const ByteView& file, const ByteView& command, BinaryImage& image) {
    const std::uint64_t width = image.is_64_bit ? 16 : 12;
    const std::uint64_t count = command.u32(12);
    const ByteView rows = file.part(command.u32(8), count * width);
    const ByteView texts = file.part(command.u32(16), command.u32(20));
    for (std::uint64_t at = 0; at < rows.size(); at += width) {
        const std::uint8_t type = rows.u8(at + 4);
        const bool debugging = (type & 0xE0U) != 0;
        const bool is_private = (type & 0x10U) != 0;
        const bool defined = (type & 0x0EU) != 0;
        const bool external = (type & 0x01U) != 0;
        if (!debugging && !is_private && defined && external) {
            const std::string_view name = texts.text(rows.u32(at));
            // C functions have an extra leading underscore in the file.
            image.exports.push_back(name.substr(0, 1) == "_" ? name.substr(1) : name);
        }
    }
}

void read_command(const ByteView& file, const ByteView& command, BinaryImage& image) {
    switch (command.u32(0)) {
        case kLoad:
        case kLazyLoad:
        case kWeakLoad:
        case kReexport:
        case kUpwardLoad:
            image.needed.push_back({command.text(command.u32(8)), command.u32(0) == kWeakLoad});
            break;
        case kRunPath:
            image.search_paths.push_back(command.text(command.u32(8)));
            break;
        case kSymbols:
            // Only the first one counts: a file could repeat the command to have its symbols read again and
            // again.
            if (image.exports.empty()) {
                read_symbols(file, command, image);
            }
            break;
        case kSignature:
            image.has_signature = true;
            break;
        default:
            break;
    }
}

void read_image(const ByteView& slice, BinaryImage& image) {
    const ByteView file(
        slice.all(), has_magic(ByteView(slice.all(), ByteOrder::little)) ? ByteOrder::little : ByteOrder::big,
        slice.start_bytes());
    image.is_64_bit = file.u32(0) == kMagic64;
    image.processor = mach_o_processor(file.u32(4));
    const std::uint32_t type = file.u32(12);
    image.kind = kind_label(type);
    image.loadable = type == 6 || type == 8;
    const std::uint32_t count = file.u32(16);
    const ByteView commands = file.part(image.is_64_bit ? 32 : 28, file.u32(20));
    std::uint64_t at = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint32_t size = commands.u32(at + 4);
        if (size < 8) {
            throw Damage(commands.start_bytes() + at, "a load command has fewer than 8 bytes");
        }
        read_command(file, commands.part(at, size), image);
        at += size;
    }
}

}  // namespace

bool is_mach_o_file(std::string_view bytes) {
    return has_magic(ByteView(bytes, ByteOrder::little)) || has_magic(ByteView(bytes, ByteOrder::big));
}

BinaryImage read_mach_o_file(const ByteView& file) {
    BinaryImage image;
    image.container = Container::mach_o;
    image.kind = "file";
    image.offset_bytes = file.start_bytes();
    try {
        read_image(file, image);
    } catch (const Damage& damage) {
        image.damage = damage;
    }
    return image;
}

}  // namespace binary_file
