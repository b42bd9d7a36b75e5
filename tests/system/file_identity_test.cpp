#include "system/file_identity.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

TEST(FileIdentity, IsOfTheFileAndNotOfItsName) {
    const TemporaryFolder folder;
    folder.write("a", "");
    folder.write("b", "");
    folder.make_folder("sub");
    fs::create_symlink(folder.path("a"), folder.path("link"));
    fs::create_symlink("link", folder.path("link to a link"));
    fs::create_hard_link(folder.path("a"), folder.path("hard"));
    fs::create_symlink(folder.folder(), folder.path("sub/up"));
    fs::create_symlink("missing", folder.path("link to nothing"));
    fs::create_symlink("round", folder.path("round"));
    const struct {
        const char* name;
        const char* one;
        const char* other;
        bool same;
    } cases[] = {
        {"a file and itself", "a", "a", true},
        {"two files with the same bytes", "a", "b", false},
        {"another spelling", "a", "sub/../a", true},
        {"a link", "a", "link", true},
        {"a link to a link", "a", "link to a link", true},
        {"a hard link", "a", "hard", true},
        {"a link to the folder", "a", "sub/up/a", true},
        {"a folder by two names", ".", "sub/up", true},
        {"two missing files", "missing", "missing, too", false},
        {"a missing file by two spellings", "missing", "sub/../missing", true},
        {"a missing file through the link to its folder", "missing", "sub/up/missing", true},
        {"a link to a missing file", "missing", "link to nothing", true},
        {"a missing folder", "new/a", "sub/up/new/a", true},
        {"two files in a missing folder", "new/a", "new/b", false},
        {"a file and one below a file", "a", "a/b", false},
        {"a link onto itself", "round", "round", true},
        {"a link onto itself and a file", "round", "a", false},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(os::identity_of(folder.path(one.one)) == os::identity_of(folder.path(one.other)), one.same)
            << one.name;
    }
}

TEST(FileIdentity, OfDevicesAndOfNothing) {
    EXPECT_EQ(os::identity_of("/dev/null"), os::identity_of("/dev/../dev/null"));
    EXPECT_NE(os::identity_of("/dev/null"), os::identity_of("/dev/zero"));
    EXPECT_NE(os::identity_of(""), os::identity_of("/dev/null"));
}

}  // namespace
