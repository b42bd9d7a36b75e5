#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "binary_file/byte_view.h"

namespace binary_file {

enum class Container { elf, pe, mach_o };

/// A library that an image needs from the system.
struct NeededLibrary {
    std::string_view name;  ///< as it is written: a file name, or a path
    bool optional = false;  ///< the image loads without it (weak), or needs it only later (delayed)
};

/// One resource of the requested type.
struct Resource {
    std::optional<std::uint32_t> number;  ///< nothing when it has a name instead
    ByteView data;
};

/// The code for one processor in a binary file. Views point into the bytes that were read.
struct BinaryImage {
    Container container = Container::elf;
    std::uint64_t offset_bytes = 0;  ///< in the file; always 0 unless the file is universal
    std::string processor;           ///< "x86-64", "i386", "arm64", ...; "processor 0x1234"
    bool is_64_bit = false;
    std::string kind;                       ///< "shared library", "program", "bundle", "object file", ...
    bool loadable = false;                  ///< of a kind that a running program can load
    std::vector<std::string_view> exports;  ///< functions and data, in the file's order
    std::vector<NeededLibrary> needed;
    std::vector<std::string_view> search_paths;  ///< searched first for its libraries
    bool has_signature = false;                  ///< Mach-O only
    std::vector<Resource> property_lists;        ///< PE only: the resources of type PiPL
    std::optional<Damage> damage;                ///< what was read before it is kept
};

struct BinaryFile {
    bool universal = false;
    std::vector<BinaryImage> images;  ///< one; in a universal file one for each processor
    std::optional<Damage> damage;
};

/// Reads any of the three containers; nothing when the file begins like none of them. No content makes it
/// throw; only a lack of memory does.
std::optional<BinaryFile> read_binary_file(std::string_view bytes);

// The readers of one container each. `file` begins with the container's own header.
BinaryImage read_elf_file(const ByteView& file);
BinaryImage read_pe_file(const ByteView& file);
BinaryImage read_mach_o_file(const ByteView& file);

/// These look at the first bytes only; the rest may be damaged.
bool is_elf_file(std::string_view bytes);
bool is_pe_file(std::string_view bytes);
bool is_mach_o_file(std::string_view bytes);

}  // namespace binary_file
