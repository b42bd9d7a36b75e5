#include "system/file_identity.h"

#include <gtest/gtest.h>

#include <chrono>
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

TEST(FileVersion, IsAnotherWhenTheFileIs) {
    const struct {
        const char* name;
        void (*change)(const TemporaryFolder& folder);
        bool same;
    } cases[] = {
        {"nothing happens", [](const TemporaryFolder&) {}, true},
        {"another file changes", [](const TemporaryFolder& folder) { folder.write("b", "12"); }, true},
        {"it grows",
         [](const TemporaryFolder& folder) {
             const fs::file_time_type before = fs::last_write_time(folder.path("a"));
             folder.write("a", "12");
             fs::last_write_time(folder.path("a"), before);
         },
         false},
        {"it is written again with as many bytes",
         [](const TemporaryFolder& folder) {
             const fs::file_time_type before = fs::last_write_time(folder.path("a"));
             folder.write("a", "2");
             fs::last_write_time(folder.path("a"), before + std::chrono::seconds(1));
         },
         false},
        {"another of that size and time takes its place",
         [](const TemporaryFolder& folder) {
             fs::last_write_time(folder.path("b"), fs::last_write_time(folder.path("a")));
             fs::rename(folder.path("b"), folder.path("a"));
         },
         false},
        {"it goes", [](const TemporaryFolder& folder) { fs::remove(folder.path("a")); }, false},
    };
    for (const auto& one : cases) {
        const TemporaryFolder folder;
        folder.write("a", "1");
        folder.write("b", "2");
        const os::FileVersion before = os::version_of(folder.path("a"));
        one.change(folder);
        EXPECT_EQ(os::version_of(folder.path("a")) == before, one.same) << one.name;
    }
    const TemporaryFolder folder;
    EXPECT_EQ(os::version_of(folder.path("missing")), os::version_of(folder.path("missing, too")));
}

TEST(FileIdentity, OfDevicesAndOfNothing) {
    EXPECT_EQ(os::identity_of("/dev/null"), os::identity_of("/dev/../dev/null"));
    EXPECT_NE(os::identity_of("/dev/null"), os::identity_of("/dev/zero"));
    EXPECT_NE(os::identity_of(""), os::identity_of("/dev/null"));
}

}  // namespace
