#include "entry/plugin_entry.h"

#include <gtest/gtest.h>

#include <string>

#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using namespace std::string_literals;

TEST(VerifyFile, NineBytesDecide) {
    const TemporaryFolder folder;
    const struct {
        const char* why;
        std::string bytes;
        bool importable;
    } cases[] = {
        {"a composition file", "VORTAN XR COMPOSITION\nRESOLUTION 1 1\n", true},
        {"the nine bytes and nothing else", "VORTAN XR", true},
        {"only nine bytes count", "VORTAN XRX", true},
        {"ten bytes", "VORTAN XR\n", true},
        {"what follows may be anything", "VORTAN XR\0\xff"s, true},
        {"lower case", "vortan xr composition", false},
        {"two blanks", "VORTAN  XR", false},
        {"a tab in place of the blank", "VORTAN\tXR", false},
        {"a blank before", " VORTAN XR", false},
        {"a byte order mark before", "\xef\xbb\xbfVORTAN XR", false},
        {"eight bytes", "VORTAN X", false},
        {"a NUL in place of the last byte", "VORTAN X\0 "s, false},
        {"one byte", "V", false},
        {"empty", "", false},
    };
    for (const auto& c : cases) {
        A_Boolean importable = 2;
        EXPECT_EQ(VerifyFileImportable(folder.write("shot.aec", c.bytes).c_str(), nullptr, &importable), 0)
            << c.why;
        EXPECT_EQ(importable, c.importable ? 1 : 0) << c.why;
    }
}

TEST(VerifyFile, APathWithoutAReadableFileIsNotImportable) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe.aec");
    make_pipe(pipe);
    const struct {
        const char* why;
        std::string path;
    } cases[] = {
        {"missing", folder.path("missing.aec")},
        {"empty path", ""},
        {"a folder", folder.folder().string()},
        {"a pipe, which must not be waited for", pipe},
        {"a device", "/dev/zero"},
    };
    for (const auto& c : cases) {
        A_Boolean importable = 2;
        EXPECT_EQ(VerifyFileImportable(c.path.c_str(), nullptr, &importable), 0) << c.why;
        EXPECT_EQ(importable, 0) << c.why;
    }
    A_Boolean importable = 2;
    EXPECT_EQ(VerifyFileImportable(nullptr, nullptr, &importable), 0);
    EXPECT_EQ(importable, 0) << "no path at all";
}

}  // namespace
