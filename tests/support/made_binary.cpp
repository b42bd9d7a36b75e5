#include "support/made_binary.h"

#include <algorithm>

ByteWriter& ByteWriter::number(std::uint64_t value, unsigned width) {
    for (unsigned i = 0; i < width; ++i) {
        bytes_ += static_cast<char>(value >> 8U * (big_endian_ ? width - 1 - i : i) & 0xFFU);
    }
    return *this;
}

ByteWriter& ByteWriter::raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
}

ByteWriter& ByteWriter::text(std::string_view bytes) {
    return raw(bytes).u8(0);
}

ByteWriter& ByteWriter::pad_to(std::size_t offset) {
    bytes_.resize(std::max(offset, bytes_.size()));
    return *this;
}

namespace {

std::string padded(std::string data) {
    data.resize((data.size() + 3) / 4 * 4);
    return data;
}

std::string reversed(std::string text) {
    std::reverse(text.begin(), text.end());
    return text;
}

/// Texts one behind the other, with where each begins.
class Texts {
  public:
    std::uint64_t add(std::string_view text) {
        const std::uint64_t at = bytes_.size();
        bytes_.append(text).push_back('\0');
        return at;
    }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

  private:
    std::string bytes_ = std::string(1, '\0');
};

}  // namespace

std::string counted_data(std::string_view text) {
    return padded(static_cast<char>(text.size()) + std::string(text));
}

std::string terminated_data(std::string_view text) {
    return padded(std::string(text) + '\0');
}

std::vector<MadeProperty> usual_properties(bool windows) {
    std::vector<MadeProperty> properties{
        {"kind", windows ? "xgEA" : "AEgx"},
        {"name", counted_data("Sample")},
        {"catg", counted_data("General Plugin")},
        {"vers", windows ? std::string("\0\0\3\0", 4) : std::string("\0\3\0\0", 4)},
    };
    for (const char* key :
         windows ? std::vector<const char*>{"8664"} : std::vector<const char*>{"mi64", "ma64"}) {
        properties.push_back(
            {key, windows ? terminated_data("EntryPointFunc") : counted_data("EntryPointFunc")});
    }
    return properties;
}

std::string made_property_list(MadePropertyList list) {
    if (list.properties.empty()) {
        list.properties = usual_properties(list.windows);
    }
    ByteWriter out(!list.windows);
    if (list.windows) {
        out.u16(list.first_word);
    }
    out.u32(list.version).u32(list.properties.size() + list.more);
    for (const MadeProperty& property : list.properties) {
        out.raw(list.windows ? reversed(list.vendor) : list.vendor)
            .raw(list.windows ? reversed(property.key) : property.key)
            .u32(0)
            .u32(property.data.size())
            .raw(property.data);
    }
    return out.bytes();
}

std::string made_elf(const MadeElf& elf) {
    const unsigned word = elf.wide ? 8 : 4;
    Texts texts;
    std::vector<std::uint64_t> needed;
    std::vector<std::uint64_t> names;
    for (const std::string& name : elf.needed) {
        needed.push_back(texts.add(name));
    }
    const std::uint64_t run_path = elf.run_path.empty() ? 0 : texts.add(elf.run_path);
    for (const std::string& name : elf.exports) {
        names.push_back(texts.add(name));
    }
    // The file is one segment at the address 0x10000, in this order: header, segments, texts, symbols, hash,
    // dynamic.
    constexpr std::uint64_t kAddress = 0x10000;
    const std::uint64_t segment_bytes = elf.wide ? 56 : 32;
    const std::uint64_t header_bytes = elf.wide ? 64 : 52;
    const std::uint64_t texts_at = header_bytes + 2 * segment_bytes;
    const std::uint64_t symbols_at = (texts_at + texts.bytes().size() + 7) / 8 * 8;
    const std::uint64_t symbol_bytes = elf.wide ? 24 : 16;
    // Symbol 0 is none; 1 is asked for and not there, 2 is hidden; the hash table of the newer kind holds the
    // rest.
    const std::uint64_t symbols = 3 + names.size();
    const std::uint64_t hash_at = symbols_at + symbols * symbol_bytes;
    const std::uint64_t hash_bytes = elf.gnu_hash ? 16 + word + 4 + names.size() * 4 : 8;
    const std::uint64_t dynamic_at = (hash_at + hash_bytes + 7) / 8 * 8;

    ByteWriter dynamic(elf.big_endian);
    const auto entry = [&](std::uint64_t tag, std::uint64_t value) {
        dynamic.number(tag, word).number(value, word);
    };
    for (const std::uint64_t name : needed) {
        entry(1, name);
    }
    if (run_path != 0) {
        entry(29, run_path);
    }
    entry(5, kAddress + texts_at);
    entry(10, texts.bytes().size());
    entry(6, kAddress + symbols_at);
    entry(elf.gnu_hash ? 0x6FFFFEF5 : 4, kAddress + hash_at);
    if (elf.program) {
        entry(0x6FFFFFFB, 0x08000000);
    }
    entry(0, 0);
    const std::uint64_t file_bytes = dynamic_at + dynamic.size();

    ByteWriter out(elf.big_endian);
    out.raw("\177ELF").u8(elf.wide ? 2 : 1).u8(elf.big_endian ? 2 : 1).u8(1).pad_to(16);
    out.u16(elf.type).u16(elf.machine).u32(1).number(0, word).number(header_bytes, word).number(0, word);
    out.u32(0).u16(header_bytes).u16(segment_bytes).u16(2).u16(0).u16(0).u16(0);
    const auto segment = [&](std::uint64_t type, std::uint64_t at, std::uint64_t size) {
        if (elf.wide) {
            out.u32(type).u32(4).u64(at).u64(kAddress + at).u64(0).u64(size).u64(size).u64(8);
        } else {
            out.u32(type).u32(at).u32(kAddress + at).u32(0).u32(size).u32(size).u32(4).u32(8);
        }
    };
    segment(1, 0, file_bytes);
    segment(elf.dynamic ? 2 : 4, dynamic_at, dynamic.size());
    out.raw(texts.bytes()).pad_to(symbols_at);
    const auto symbol = [&](std::uint64_t name, unsigned info, unsigned other, unsigned section) {
        if (elf.wide) {
            out.u32(name).u8(info).u8(other).u16(section).u64(0).u64(0);
        } else {
            out.u32(name).u32(0).u32(0).u8(info).u8(other).u16(section);
        }
    };
    symbol(0, 0, 0, 0);
    symbol(names.empty() ? 0 : names[0], 0x12, 0, 0);
    symbol(names.empty() ? 0 : names[0], 0x12, 2, 1);
    for (const std::uint64_t name : names) {
        symbol(name, 0x12, 0, 1);
    }
    if (elf.gnu_hash) {
        out.u32(1).u32(3).u32(1).u32(0).number(0, word).u32(names.empty() ? 0 : 3);
        for (std::size_t i = 0; i < names.size(); ++i) {
            out.u32(i + 1 == names.size() ? 1 : 2);
        }
    } else {
        out.u32(0).u32(symbols);
    }
    return out.pad_to(dynamic_at).raw(dynamic.bytes()).bytes();
}

std::string made_pe(const MadePe& pe) {
    // One section, at the same place in memory as in the file, so that every address is an offset.
    constexpr std::uint64_t kSection = 0x200;
    Texts texts;
    std::vector<std::uint64_t> export_names;
    std::vector<std::uint64_t> needed;
    std::vector<std::uint64_t> delayed;
    for (const std::string& name : pe.exports) {
        export_names.push_back(kSection + texts.add(name));
    }
    for (const std::string& name : pe.needed) {
        needed.push_back(kSection + texts.add(name));
    }
    for (const std::string& name : pe.delayed) {
        delayed.push_back(kSection + texts.add(name));
    }
    ByteWriter section;
    section.raw(texts.bytes()).pad_to((texts.bytes().size() + 3) / 4 * 4);
    const auto here = [&] { return kSection + section.size(); };

    const std::uint64_t names_at = here();
    for (const std::uint64_t name : export_names) {
        section.u32(name);
    }
    const std::uint64_t exports_at = here();
    section.u32(0).u32(0).u32(0).u32(0).u32(1).u32(export_names.size()).u32(export_names.size());
    section.u32(0).u32(names_at).u32(0);
    const std::uint64_t imports_at = here();
    for (const std::uint64_t name : needed) {
        section.u32(0).u32(0).u32(0).u32(name).u32(0);
    }
    section.raw(std::string(20, '\0'));
    const std::uint64_t delayed_at = here();
    for (const std::uint64_t name : delayed) {
        section.u32(1).u32(name).raw(std::string(24, '\0'));
    }
    section.raw(std::string(32, '\0'));

    // Type by name, one number, one language, its data.
    const std::uint64_t resources_at = here();
    const auto branch = [&](unsigned by_name, std::uint64_t name, std::uint64_t target) {
        section.u32(0).u32(0).u32(0).u16(by_name).u16(1 - by_name).u32(name).u32(target);
    };
    branch(1, 0x80000000U + 88, 0x80000000U + 24);
    branch(0, pe.resource_number, 0x80000000U + 48);
    branch(0, 1033, 72);
    const std::uint64_t data_at = resources_at + 88 + 2 + pe.resource_type.size() * 2;
    section.u32(data_at).u32(pe.property_list.size()).u32(0).u32(0);
    section.u16(pe.resource_type.size());
    for (const char letter : pe.resource_type) {
        section.u16(static_cast<unsigned char>(letter));
    }
    section.raw(pe.property_list);

    ByteWriter out;
    out.raw("MZ").pad_to(0x3C).u32(0x40);
    const unsigned optional_bytes = (pe.wide ? 112 : 96) + 16 * 8;
    out.raw(std::string_view("PE\0\0", 4)).u16(pe.machine).u16(pe.sections).u32(0).u32(0).u32(0);
    out.u16(optional_bytes).u16(pe.flags);
    const std::size_t optional_at = out.size();
    out.u16(pe.wide ? 0x20B : 0x10B).pad_to(optional_at + (pe.wide ? 108 : 92)).u32(16);
    for (unsigned i = 0; i < 16; ++i) {
        const bool there = i < 3 || (i == 13 && !delayed.empty());
        out.u32(i == 0 ? exports_at : i == 1 ? imports_at : i == 2 ? resources_at : there ? delayed_at : 0);
        out.u32(there ? 1 : 0);
    }
    out.raw(std::string_view(".all\0\0\0\0", 8)).u32(section.size()).u32(kSection);
    out.u32(section.size()).u32(kSection).raw(std::string(16, '\0'));
    return out.pad_to(kSection).raw(section.bytes()).bytes();
}

std::string made_mach_o(const MadeMachO& mach_o) {
    const std::uint64_t header_bytes = mach_o.wide ? 32 : 28;
    std::vector<std::string> commands;
    const auto with_path = [&](std::uint64_t command, std::uint64_t fixed, const std::string& path) {
        const std::uint64_t size = (fixed + path.size() + 8) / 8 * 8;
        ByteWriter one(mach_o.big_endian);
        one.u32(command).u32(size).u32(fixed).pad_to(fixed).raw(path).pad_to(size);
        commands.push_back(one.bytes());
    };
    for (const std::string& path : mach_o.needed) {
        with_path(0xC, 24, path);
    }
    for (const std::string& path : mach_o.weak) {
        with_path(0x80000018, 24, path);
    }
    for (const std::string& path : mach_o.run_paths) {
        with_path(0x8000001C, 12, path);
    }
    if (mach_o.has_signature) {
        commands.push_back(ByteWriter(mach_o.big_endian).u32(0x1D).u32(16).u32(0).u32(0).bytes());
    }
    std::uint64_t command_bytes = 24;
    for (const std::string& command : commands) {
        command_bytes += command.size();
    }

    Texts texts;
    ByteWriter symbols(mach_o.big_endian);
    const auto symbol = [&](std::uint64_t name, unsigned type) {
        symbols.u32(name).u8(type).u8(1).u16(0).number(0, mach_o.wide ? 8 : 4);
    };
    const std::uint64_t other = texts.add("_other");
    symbol(other, 0x01);         // asked for and not here
    symbol(other, 0x0E);         // not seen from outside
    symbol(other, 0x1F);         // not seen from outside the program
    symbol(other, 0x24 | 0x01);  // for a debugger
    for (const std::string& name : mach_o.exports) {
        symbol(texts.add("_" + name), 0x0F);
    }
    const std::uint64_t symbol_count = 4 + mach_o.exports.size();
    const std::uint64_t symbols_at = header_bytes + command_bytes;
    ByteWriter table(mach_o.big_endian);
    table.u32(2)
        .u32(24)
        .u32(symbols_at)
        .u32(symbol_count)
        .u32(symbols_at + symbols.size())
        .u32(texts.bytes().size());
    commands.push_back(table.bytes());

    ByteWriter out(mach_o.big_endian);
    out.u32(mach_o.wide ? 0xFEEDFACF : 0xFEEDFACE).u32(mach_o.processor).u32(0).u32(mach_o.type);
    out.u32(commands.size()).u32(command_bytes).u32(0).pad_to(header_bytes);
    for (const std::string& command : commands) {
        out.raw(command);
    }
    return out.raw(symbols.bytes()).raw(texts.bytes()).bytes();
}

std::string made_universal(const std::vector<std::string>& slices, bool wide) {
    constexpr std::uint64_t kAlignment = 0x100;
    ByteWriter out(true);
    out.u32(wide ? 0xCAFEBABF : 0xCAFEBABE).u32(slices.size());
    std::uint64_t at = kAlignment;
    std::vector<std::uint64_t> places;
    for (const std::string& slice : slices) {
        places.push_back(at);
        out.u32(0).u32(0).number(at, wide ? 8 : 4).number(slice.size(), wide ? 8 : 4).u32(8);
        if (wide) {
            out.u32(0);
        }
        at = (at + slice.size() + kAlignment - 1) / kAlignment * kAlignment;
    }
    for (std::size_t i = 0; i < slices.size(); ++i) {
        out.pad_to(places[i]).raw(slices[i]);
    }
    return out.bytes();
}

std::string made_resource_file(const MadeResourceFile& file) {
    const std::uint64_t data_bytes = 4 + file.data.size();
    ByteWriter places(true);
    places.u32(256).u32(256 + data_bytes).u32(data_bytes).u32(50);
    ByteWriter out(true);
    out.raw(places.bytes()).pad_to(256).u32(file.data.size()).raw(file.data);
    out.raw(places.bytes()).u32(0).u16(0).u16(0).u16(28).u16(50);
    return out.u16(0).raw(file.type).u16(0).u16(10).u16(file.number).u16(0xFFFF).u32(0).u32(0).bytes();
}
