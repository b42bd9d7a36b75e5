#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Plug-in files as small as their containers allow, made in code. A record describes a file; a test changes
// one member. No code is shared with the readers.

/// Writes numbers one after the other, in one byte order.
class ByteWriter {
  public:
    explicit ByteWriter(bool big_endian = false) : big_endian_(big_endian) {}

    ByteWriter& number(std::uint64_t value, unsigned width);
    ByteWriter& u8(std::uint64_t value) { return number(value, 1); }
    ByteWriter& u16(std::uint64_t value) { return number(value, 2); }
    ByteWriter& u32(std::uint64_t value) { return number(value, 4); }
    ByteWriter& u64(std::uint64_t value) { return number(value, 8); }
    /// `raw` writes the bytes alone, `text` a NUL after them.
    ByteWriter& raw(std::string_view bytes);
    ByteWriter& text(std::string_view bytes);
    /// NUL bytes up to `offset`.
    ByteWriter& pad_to(std::size_t offset);

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    bool big_endian_;
    std::string bytes_ = {};
};

struct MadeProperty {
    std::string key = {};   ///< in reading order
    std::string data = {};  ///< as stored; its length is not corrected
};

/// The data of a text with a length before it and of one with a NUL after it, padded to whole words.
std::string counted_data(std::string_view text);
std::string terminated_data(std::string_view text);

struct MadePropertyList {
    bool windows = true;
    std::uint16_t first_word = 1;  ///< Windows only
    std::uint32_t version = 0;
    std::string vendor = "8BIM";
    std::vector<MadeProperty> properties = {};  ///< if empty, those of a plug-in that hosts list
    std::uint32_t more = 0;                     ///< added to the count
};
std::string made_property_list(MadePropertyList list = {});
/// The properties of a plug-in that hosts list.
std::vector<MadeProperty> usual_properties(bool windows);

struct MadeElf {
    bool wide = true;
    bool big_endian = false;
    std::uint16_t type = 3;
    std::uint16_t machine = 62;
    bool gnu_hash = true;
    bool dynamic = true;
    bool program = false;
    std::vector<std::string> exports = {"EntryPointFunc", "Main_VORTANXR_AE"};
    std::vector<std::string> needed = {"libc.so.6"};
    std::string run_path = {};
};
std::string made_elf(const MadeElf& elf = {});

struct MadePe {
    bool wide = true;
    std::uint16_t machine = 0x8664;
    std::uint16_t flags = 0x2022;
    std::uint16_t sections = 1;
    std::vector<std::string> exports = {"EntryPointFunc", "Main_VORTANXR_AE"};
    std::vector<std::string> needed = {"KERNEL32.dll"};
    std::vector<std::string> delayed = {};
    std::string resource_type = "PIPL";
    std::uint32_t resource_number = 16000;
    std::string property_list = made_property_list();
};
std::string made_pe(const MadePe& pe = {});

struct MadeMachO {
    bool wide = true;
    bool big_endian = false;
    std::uint32_t processor = 0x0100000C;
    std::uint32_t type = 8;
    bool has_signature = true;
    std::vector<std::string> exports = {"EntryPointFunc", "Main_VORTANXR_AE"};
    std::vector<std::string> needed = {"/usr/lib/libSystem.B.dylib"};
    std::vector<std::string> weak = {};
    std::vector<std::string> run_paths = {};
};
std::string made_mach_o(const MadeMachO& mach_o = {});
std::string made_universal(const std::vector<std::string>& slices, bool wide = false);

struct MadeResourceFile {
    std::string type = "PiPL";
    std::uint16_t number = 16000;
    std::string data = made_property_list({.windows = false});
};
std::string made_resource_file(const MadeResourceFile& file = {});
