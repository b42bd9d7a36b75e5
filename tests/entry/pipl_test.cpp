// The property list that script/pipl writes, byte for byte. Hosts read it before they load the bundle.

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

std::string written(const std::string& form) {
    const TemporaryFolder folder;
    const std::string path = folder.path("pipl");
    const ProcessResult run = run_process({VXR_PYTHON, VXR_PIPL_SCRIPT, form, path});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    return content_of(path);
}

/// A literal that contains NUL bytes.
template <std::size_t N>
std::string bytes(const char (&text)[N]) {
    return std::string(text, N - 1);
}

// Each field of a property: vendor, key, four zero bytes, how many bytes of data follow, the data in whole
// words of four bytes. Literals are split because an octal escape would otherwise take in the digits that
// follow it.

TEST(PropertyList, TheMacosResourceFileHoldsItByteForByte) {
    // clang-format off
    const std::string list =
        bytes("\0\0\0\0" "\0\0\0\6") +  // the list's own version 0, six properties; no word before them
        bytes("8BIM" "kind" "\0\0\0\0" "\0\0\0\004" "AEgx") +                       // a general plug-in
        bytes("8BIM" "name" "\0\0\0\0" "\0\0\0\014" "\011" "VORTAN XR" "\0\0") +    // 9 characters
        bytes("8BIM" "catg" "\0\0\0\0" "\0\0\0\020" "\016" "General Plugin" "\0") + // 14 characters
        bytes("8BIM" "vers" "\0\0\0\0" "\0\0\0\004" "\0\003\0\0") +                 // 3.0 as one number
        bytes("8BIM" "mi64" "\0\0\0\0" "\0\0\0\020" "\016" "EntryPointFunc" "\0") + // Intel: 14 characters
        bytes("8BIM" "ma64" "\0\0\0\0" "\0\0\0\020" "\016" "EntryPointFunc" "\0");  // Arm: the same
    // clang-format on
    ASSERT_EQ(list.size(), 0xACU);
    // Offset of the data, of the map; length of the data, of the map.
    const std::string places = bytes("\0\0\1\0\0\0\1\260\0\0\0\260\0\0\0\062");
    const std::string expected =
        places + std::string(240, '\0') +  // nothing more up to the data
        bytes("\0\0\0\254") + list +       // the data: a length and that many bytes
        places +                           // the map: the places again,
        bytes("\0\0\0\0\0\0\0\0") +        // what is used in memory only,
        bytes("\0\034\0\062") +            // from the map's start on: the types, the names (there are none),
        bytes("\0\0PiPL\0\0\0\012") +      // one type with one resource, and where that is from the types on,
        bytes("\076\200\377\377\0\0\0\0\0\0\0\0");  // number 16000, without a name, the first of the data
    EXPECT_EQ(written("rsrc"), expected);
}

TEST(PropertyList, TheWindowsResourceScriptHoldsItWordForWord) {
    // clang-format off
    // Numbers and codes with their lowest byte first, so codes read backwards.
    const std::string list =
        bytes("\001\0" "\0\0\0\0" "\005\0\0\0") +  // a word of Windows' own, version 0, five properties
        bytes("MIB8" "dnik" "\0\0\0\0" "\004\0\0\0" "xgEA") +                       // a general plug-in
        bytes("MIB8" "eman" "\0\0\0\0" "\014\0\0\0" "\011" "VORTAN XR" "\0\0") +    // 9 characters
        bytes("MIB8" "gtac" "\0\0\0\0" "\020\0\0\0" "\016" "General Plugin" "\0") + // 14 characters
        bytes("MIB8" "srev" "\0\0\0\0" "\004\0\0\0" "\0\0" "\003\0") +              // 3.0: the 0 comes first
        bytes("MIB8" "4668" "\0\0\0\0" "\020\0\0\0" "EntryPointFunc" "\0\0");       // ended by a zero byte
    // clang-format on
    const std::string script = written("rc");
    const std::size_t begin = script.find("16000 PiPL\nBEGIN\n");
    ASSERT_NE(begin, std::string::npos) << script;

    std::string found;
    std::istringstream words(script.substr(begin + bytes("16000 PiPL\nBEGIN\n").size()));
    for (std::string word; words >> word && word != "END";) {
        const unsigned long value = std::strtoul(word.c_str(), nullptr, 16);
        ASSERT_LE(value, 0xFFFFU) << word;
        found += static_cast<char>(value & 0xFFU);
        found += static_cast<char>(value >> 8U);
    }
    EXPECT_EQ(found, list);
}

TEST(PropertyList, AnUnknownPlatformIsRefused) {
    const ProcessResult run = run_process({VXR_PYTHON, VXR_PIPL_SCRIPT, "elf", "/dev/null"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("usage: script/pipl rc|rsrc FILE"), std::string::npos) << run.err;
}

}  // namespace
