// Recognises the container, and reads the table at the start of a universal file.

#include <algorithm>

#include "binary_file/binary_file.h"

namespace binary_file {
namespace {

constexpr std::uint32_t kUniversal = 0xCAFEBABE;
constexpr std::uint32_t kUniversal64 = 0xCAFEBABF;

// Java class files begin with the same four bytes; their next number is a version, 45 or higher.
constexpr std::uint32_t kMostProcessors = 30;

bool is_universal_file(std::string_view bytes) {
    const ByteView file(bytes, ByteOrder::big);
    return bytes.size() >= 8 && (file.u32(0) == kUniversal || file.u32(0) == kUniversal64) &&
           file.u32(4) <= kMostProcessors;
}

BinaryFile read_universal_file(std::string_view bytes) {
    BinaryFile result;
    result.universal = true;
    try {
        const ByteView file(bytes, ByteOrder::big);
        const bool wide = file.u32(0) == kUniversal64;
        const std::uint32_t count = file.u32(4);
        for (std::uint32_t i = 0; i < count; ++i) {
            const ByteView row = file.part(8 + std::uint64_t{i} * (wide ? 32 : 20), wide ? 32 : 20);
            const ByteView slice =
                wide ? file.part(row.u64(8), row.u64(16)) : file.part(row.u32(8), row.u32(12));
            if (!is_mach_o_file(slice.all())) {
                throw Damage(slice.start_bytes(), "code for one processor is expected here");
            }
            result.images.push_back(read_mach_o_file(slice));
        }
    } catch (const Damage& damage) {
        result.damage = damage;
    }
    return result;
}

}  // namespace

std::optional<BinaryFile> read_binary_file(std::string_view bytes) {
    if (is_universal_file(bytes)) {
        return read_universal_file(bytes);
    }
    const ByteView file(bytes);
    BinaryFile result;
    if (is_elf_file(bytes)) {
        result.images.push_back(read_elf_file(file));
    } else if (is_pe_file(bytes)) {
        result.images.push_back(read_pe_file(file));
    } else if (is_mach_o_file(bytes)) {
        result.images.push_back(read_mach_o_file(file));
    } else {
        return std::nullopt;
    }
    return result;
}

}  // namespace binary_file
