// The three containers: what is read from intact files, and that damaged ones are read or refused.

#include "binary_file/binary_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/file_content.h"
#include "support/made_binary.h"

namespace {

using binary_file::BinaryFile;
using binary_file::BinaryImage;
using binary_file::Container;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> names_of(const std::vector<binary_file::NeededLibrary>& needed) {
    std::vector<std::string> names;
    for (const binary_file::NeededLibrary& library : needed) {
        names.push_back(std::string(library.name) + (library.optional ? "?" : ""));
    }
    return names;
}

struct Case {
    const char* name;
    std::string bytes;
    Container container;
    const char* processor;
    bool is_64_bit;
    const char* kind;
    bool loadable;
};

TEST(BinaryFile, SaysWhatAFileIs) {
    const Case cases[] = {
        {"ELF, 64 bits", made_elf(), Container::elf, "x86-64", true, "shared library", true},
        {"ELF, 32 bits", made_elf({.wide = false, .machine = 3}), Container::elf, "i386", false,
         "shared library", true},
        {"ELF, high byte first", made_elf({.big_endian = true, .machine = 183}), Container::elf, "arm64",
         true, "shared library", true},
        {"ELF, older hash table", made_elf({.gnu_hash = false}), Container::elf, "x86-64", true,
         "shared library", true},
        {"ELF, a program", made_elf({.type = 2}), Container::elf, "x86-64", true, "program", false},
        {"ELF, a position-independent program", made_elf({.program = true}), Container::elf, "x86-64", true,
         "program", false},
        {"PE, 64 bits", made_pe(), Container::pe, "x86-64", true, "DLL", true},
        {"PE, 32 bits", made_pe({.wide = false, .machine = 0x14C}), Container::pe, "i386", false, "DLL",
         true},
        {"PE, a program", made_pe({.machine = 0xAA64, .flags = 0x22}), Container::pe, "arm64", true,
         "program", false},
        {"Mach-O, 64 bits", made_mach_o(), Container::mach_o, "arm64", true, "bundle", true},
        {"Mach-O, 32 bits, high byte first",
         made_mach_o({.wide = false, .big_endian = true, .processor = 18, .type = 6}), Container::mach_o,
         "powerpc", false, "shared library", true},
        {"Mach-O, a program", made_mach_o({.processor = 0x01000007, .type = 2}), Container::mach_o, "x86-64",
         true, "program", false},
        {"an unknown processor", made_elf({.machine = 999}), Container::elf, "processor 999", true,
         "shared library", true},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const std::optional<BinaryFile> file = binary_file::read_binary_file(one.bytes);
        ASSERT_TRUE(file.has_value());
        ASSERT_EQ(file->images.size(), 1U);
        const BinaryImage& image = file->images.front();
        EXPECT_FALSE(image.damage.has_value())
            << image.damage->what() << " @" << image.damage->offset_bytes();
        EXPECT_EQ(image.container, one.container);
        EXPECT_EQ(image.processor, one.processor);
        EXPECT_EQ(image.is_64_bit, one.is_64_bit);
        EXPECT_EQ(image.kind, one.kind);
        EXPECT_EQ(image.loadable, one.loadable);
        EXPECT_THAT(image.exports, ElementsAre("EntryPointFunc", "Main_VORTANXR_AE"));
        EXPECT_EQ(image.needed.size(), 1U);
    }
}

TEST(BinaryFile, ReadsLibrariesAndSearchPaths) {
    const std::string elf_bytes =
        made_elf({.needed = {"libm.so.6", "liba.so"}, .run_path = "/a:$ORIGIN/b::c"});
    const BinaryImage of_elf = binary_file::read_binary_file(elf_bytes)->images.front();
    EXPECT_THAT(names_of(of_elf.needed), ElementsAre("libm.so.6", "liba.so"));
    EXPECT_THAT(of_elf.search_paths, ElementsAre("/a", "$ORIGIN/b", "", "c"));

    const std::string pe_bytes = made_pe({.needed = {"a.dll", "b.dll"}, .delayed = {"c.dll"}});
    const BinaryImage of_pe = binary_file::read_binary_file(pe_bytes)->images.front();
    EXPECT_THAT(names_of(of_pe.needed), ElementsAre("a.dll", "b.dll", "c.dll?"));

    const std::string mach_o_bytes = made_mach_o(
        {.has_signature = false, .needed = {"@rpath/a"}, .weak = {"/b"}, .run_paths = {"@loader_path"}});
    const BinaryImage of_mach_o = binary_file::read_binary_file(mach_o_bytes)->images.front();
    EXPECT_THAT(names_of(of_mach_o.needed), ElementsAre("@rpath/a", "/b?"));
    EXPECT_THAT(of_mach_o.search_paths, ElementsAre("@loader_path"));
    EXPECT_FALSE(of_mach_o.has_signature);
}

TEST(BinaryFile, AnElfFileWithoutDynamicPartIsNotLoadable) {
    const std::string bytes = made_elf({.dynamic = false});
    const BinaryImage image = binary_file::read_binary_file(bytes)->images.front();
    EXPECT_FALSE(image.damage.has_value());
    EXPECT_FALSE(image.loadable);
    EXPECT_THAT(image.exports, IsEmpty());
}

TEST(BinaryFile, FindsThePropertiesOfAPeFileByTheirType) {
    const std::string bytes = made_pe({.resource_number = 7, .property_list = "abcd"});
    const BinaryImage image = binary_file::read_binary_file(bytes)->images.front();
    ASSERT_EQ(image.property_lists.size(), 1U);
    EXPECT_EQ(image.property_lists[0].number, 7U);
    EXPECT_EQ(image.property_lists[0].data.all(), "abcd");
    EXPECT_EQ(image.property_lists[0].data.start_bytes(), bytes.size() - 4);

    const std::string mixed = made_pe({.resource_type = "PiPL"});
    EXPECT_EQ(binary_file::read_binary_file(mixed)->images.front().property_lists.size(), 1U)
        << "Windows ignores case in names";
    const std::string other = made_pe({.resource_type = "ICON"});
    EXPECT_THAT(binary_file::read_binary_file(other)->images.front().property_lists, IsEmpty());
}

TEST(BinaryFile, AUniversalFileHasAnImageForEachProcessor) {
    for (const bool wide : {false, true}) {
        const std::string bytes =
            made_universal({made_mach_o({.processor = 0x01000007}), made_mach_o()}, wide);
        const std::optional<BinaryFile> file = binary_file::read_binary_file(bytes);
        ASSERT_TRUE(file.has_value());
        EXPECT_TRUE(file->universal);
        ASSERT_EQ(file->images.size(), 2U);
        EXPECT_EQ(file->images[0].processor, "x86-64");
        EXPECT_EQ(file->images[0].offset_bytes, 0x100U);
        EXPECT_EQ(file->images[1].processor, "arm64");
        EXPECT_FALSE(file->images[1].damage.has_value());
    }
}

TEST(BinaryFile, OtherFilesAreNotRead) {
    const std::string others[] = {"",       "M",           "text",
                                  "\177EL", "#!/bin/sh\n", std::string("\xCA\xFE\xBA\xBE\0\0\0\x34", 8)};
    for (const std::string& bytes : others) {
        EXPECT_FALSE(binary_file::read_binary_file(bytes).has_value()) << bytes;
    }
}

struct DamagedCase {
    const char* name;
    std::string bytes;
    std::uint64_t offset_bytes;
    const char* reason;
};

TEST(BinaryFile, DamageIsReportedWithItsPlace) {
    const DamagedCase cases[] = {
        {"ELF cut in its header", made_elf().substr(0, 20), 32, "8 bytes are expected here, and 0 are left"},
        {"more sections than Windows loads", made_pe({.sections = 97}), 0x44, "more than 96 sections"},
        {"PE with nothing but its first two bytes", std::string("MZ").append(62, '\0'), 0,
         "the header of a portable executable is expected here"},
        {"Mach-O cut after its header", made_mach_o().substr(0, 32), 32,
         "96 bytes are expected here, and 0 are left"},
    };
    for (const DamagedCase& one : cases) {
        SCOPED_TRACE(one.name);
        const BinaryImage image = binary_file::read_binary_file(one.bytes)->images.front();
        ASSERT_TRUE(image.damage.has_value());
        EXPECT_STREQ(image.damage->what(), one.reason);
        EXPECT_EQ(image.damage->offset_bytes(), one.offset_bytes);
    }
}

/// Visits everything that a result refers to.
std::size_t visited(const std::string& bytes) {
    std::size_t sum = 0;
    const std::optional<BinaryFile> file = binary_file::read_binary_file(bytes);
    if (!file) {
        return sum;
    }
    for (const BinaryImage& image : file->images) {
        for (const std::string_view name : image.exports) {
            sum += std::string(name).size();
        }
        for (const std::string& name : names_of(image.needed)) {
            sum += name.size();
        }
        for (const std::string_view path : image.search_paths) {
            sum += std::string(path).size();
        }
        for (const binary_file::Resource& resource : image.property_lists) {
            sum += std::string(resource.data.all()).size();
        }
    }
    return sum;
}

TEST(BinaryFile, CutAnywhereOrWithAnyByteChangedFilesAreReadOrRefused) {
    const std::string files[] = {
        made_elf({.run_path = "/a:b"}),
        made_elf({.wide = false, .machine = 3, .gnu_hash = false}),
        made_elf({.big_endian = true}),
        made_pe({.delayed = {"d.dll"}}),
        made_pe({.wide = false}),
        made_mach_o({.weak = {"/w"}, .run_paths = {"/r"}}),
        made_mach_o({.wide = false, .big_endian = true}),
        made_universal({made_mach_o(), made_mach_o({.processor = 7})}),
        made_universal({made_mach_o()}, true),
    };
    for (const std::string& whole : files) {
        const std::size_t all = visited(whole);
        EXPECT_GT(all, 0U);
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_LE(visited(whole.substr(0, size)), all);
        }
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
                std::string changed = whole;
                changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ flip);
                // Names are inside the file, and a symbol takes at least 4 bytes of it.
                EXPECT_LE(visited(changed), whole.size() * whole.size());
            }
        }
    }
}

TEST(BinaryFile, RealProgramsOfThisMachineAreRead) {
    const std::string bytes = content_of("/bin/ls");
    const std::optional<BinaryFile> file = binary_file::read_binary_file(bytes);
    ASSERT_TRUE(file.has_value());
    const BinaryImage& image = file->images.front();
    EXPECT_FALSE(image.damage.has_value());
    EXPECT_EQ(image.container, Container::elf);
    EXPECT_EQ(image.kind, "program");
    EXPECT_FALSE(image.loadable);
    EXPECT_THAT(names_of(image.needed), ::testing::Contains("libc.so.6"));
}

}  // namespace
