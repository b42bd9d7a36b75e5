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

// The escapes are octal, because they end after three digits whatever follows.

TEST(PropertyList, TheMacosResourceFileHoldsItByteForByte) {
    const std::string list =
        bytes("\0\0\0\0\0\0\0\6") +  // the list's own version, and how many properties
        bytes("8BIMkind\0\0\0\0\0\0\0\4AEgx") + bytes("8BIMname\0\0\0\0\0\0\0\014\011VORTAN XR\0\0") +
        bytes("8BIMcatg\0\0\0\0\0\0\0\020\016General Plugin\0") + bytes("8BIMvers\0\0\0\0\0\0\0\4\0\3\0\0") +
        bytes("8BIMmi64\0\0\0\0\0\0\0\020EntryPointFunc\0\0") +
        bytes("8BIMma64\0\0\0\0\0\0\0\020EntryPointFunc\0\0");
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
    const std::string list =
        bytes("\1\0\0\0\0\0\5\0\0\0") +  // a word of Windows' own before the same two
        bytes("MIB8dnik\0\0\0\0\4\0\0\0xgEA") + bytes("MIB8eman\0\0\0\0\014\0\0\0\011VORTAN XR\0\0") +
        bytes("MIB8gtac\0\0\0\0\020\0\0\0\016General Plugin\0") + bytes("MIB8srev\0\0\0\0\4\0\0\0\0\0\3\0") +
        bytes("MIB84668\0\0\0\0\020\0\0\0EntryPointFunc\0\0");
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
