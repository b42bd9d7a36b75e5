#include "system/replacement_file.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

/// The error of fsync(); 0 for none. The test's own fsync() takes the place of the system's, which nothing
/// makes fail on a file system that tests can use.
int failing_flush = 0;

void fill(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

TEST(ReplacementFile, appears_only_when_put_in_place) {
    const TemporaryFolder folder;
    std::string error;
    auto file = os::ReplacementFile::create(folder.path("a.txl"), error);
    ASSERT_TRUE(file.has_value()) << error;
    EXPECT_THAT(file->temporary_path(), EndsWith(".txl"));
    fill(file->temporary_path(), "new");
    EXPECT_FALSE(fs::exists(folder.path("a.txl")));
    EXPECT_TRUE(file->put_in_place(error)) << error;
    EXPECT_EQ(content_of(folder.path("a.txl")), "new");
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
}

TEST(ReplacementFile, the_old_file_stays_when_abandoned) {
    const TemporaryFolder folder;
    folder.write("a.txl", "old");
    std::string error;
    {
        const auto file = os::ReplacementFile::create(folder.path("a.txl"), error);
        ASSERT_TRUE(file.has_value()) << error;
        fill(file->temporary_path(), "half");
    }
    EXPECT_EQ(content_of(folder.path("a.txl")), "old");
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
}

TEST(ReplacementFile, keeps_the_permissions_of_what_it_replaces) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.txl", "old");
    const fs::perms perms = fs::perms::owner_read | fs::perms::owner_write | fs::perms::others_read;
    fs::permissions(path, perms);
    std::string error;
    auto file = os::ReplacementFile::create(path, error);
    ASSERT_TRUE(file.has_value()) << error;
    ASSERT_TRUE(file->put_in_place(error)) << error;
    EXPECT_EQ(fs::status(path).permissions(), perms);
}

TEST(ReplacementFile, follows_a_link_and_keeps_the_link) {
    const TemporaryFolder folder;
    fs::create_directory(folder.folder() / "elsewhere");
    const std::string real = folder.write("elsewhere/real.txl", "old");
    fs::create_symlink(real, folder.path("a.txl"));
    std::string error;
    auto file = os::ReplacementFile::create(folder.path("a.txl"), error);
    ASSERT_TRUE(file.has_value()) << error;
    fill(file->temporary_path(), "new");
    ASSERT_TRUE(file->put_in_place(error)) << error;
    EXPECT_TRUE(fs::is_symlink(folder.path("a.txl")));
    EXPECT_EQ(content_of(real), "new");
}

TEST(ReplacementFile, refuses_paths_that_cannot_hold_a_file) {
    const TemporaryFolder folder;
    fs::create_directory(folder.folder() / "folder.txl");
    std::string error;
    EXPECT_FALSE(os::ReplacementFile::create(folder.path("folder.txl"), error).has_value());
    EXPECT_THAT(error, HasSubstr("not a regular file"));
    EXPECT_FALSE(os::ReplacementFile::create("/dev/null", error).has_value());
    EXPECT_THAT(error, HasSubstr("not a regular file"));
    EXPECT_FALSE(os::ReplacementFile::create(folder.path("missing/a.txl"), error).has_value());
    EXPECT_THAT(error, HasSubstr("No such file or directory"));
}

TEST(ReplacementFile, refuses_names_too_long_for_the_file_system) {
    const TemporaryFolder folder;
    std::string error;
    EXPECT_FALSE(os::ReplacementFile::create(folder.path(std::string(300, 'n')), error).has_value());
    EXPECT_THAT(error, HasSubstr("File name too long"));
}

TEST(ReplacementFile, fits_wherever_the_name_of_the_output_does) {
    const std::string ideograph = "\xe5\xbd\xb1";
    std::string longest_in_ideographs;
    while (longest_in_ideographs.size() < 250) {
        longest_in_ideographs += ideograph;
    }
    const struct {
        const char* name;
        std::string file_name;
    } cases[] = {
        {"255 letters with an extension", std::string(251, 'n') + ".png"},
        {"255 letters without one", std::string(255, 'n')},
        {"246 letters", std::string(242, 'n') + ".png"},
        {"84 ideographs", longest_in_ideographs + ".t"},
        {"an extension that fills the name", "a." + std::string(253, 'e')},
        {"a hidden file", "." + std::string(254, 'h')},
        {"bytes of another encoding", std::string(255, '\xe9')},
        {"later bytes of UTF-8 alone", std::string(255, '\xbd')},
        {"one letter", "n"},
    };
    for (const auto& one : cases) {
        const TemporaryFolder folder;
        std::string error;
        auto file = os::ReplacementFile::create(folder.path(one.file_name), error);
        ASSERT_TRUE(file.has_value()) << one.name << ": " << error;
        fill(file->temporary_path(), "new");
        ASSERT_TRUE(file->put_in_place(error)) << one.name << ": " << error;
        EXPECT_THAT(names_in(folder), ElementsAre(one.file_name)) << one.name;
    }
}

TEST(ReplacementFile, has_a_hidden_name_with_the_same_extension) {
    const struct {
        const char* name;
        const char* expected;
    } cases[] = {
        {"a.txl", ".a.1234.txl"},
        {"a", ".a.1234"},
        {".profile", "..profile.1234"},
        {"a.b.png", ".a.b.1234.png"},
        {"fifty-one-characters-of-a-name-that-goes-on-and.png",
         ".fifty-one-characters-of-a-name-that-goes-.1234.png"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(os::temporary_name(one.name, "1234"), one.expected);
    }
}

TEST(ReplacementFile, has_the_permissions_of_the_old_file_from_the_beginning) {
    const TemporaryFolder folder;
    for (const unsigned mode : {0600U, 0640U, 0644U, 0664U, 0666U, 0755U, 0602U}) {
        const std::string path = folder.write("a.txl", "old");
        fs::permissions(path, fs::perms(mode));
        std::string error;
        auto file = os::ReplacementFile::create(path, error);
        ASSERT_TRUE(file.has_value()) << error;
        EXPECT_EQ(fs::status(file->temporary_path()).permissions(), fs::perms(mode)) << std::oct << mode;
        ASSERT_TRUE(file->put_in_place(error)) << error;
        EXPECT_EQ(fs::status(path).permissions(), fs::perms(mode)) << std::oct << mode;
    }
}

TEST(ReplacementFile, is_not_put_in_place_when_the_disk_does_not_take_it) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.txl", "old");
    std::string error;
    {
        auto file = os::ReplacementFile::create(path, error);
        ASSERT_TRUE(file.has_value()) << error;
        fill(file->temporary_path(), "new");
        failing_flush = EIO;
        EXPECT_FALSE(file->put_in_place(error));
        failing_flush = 0;
    }
    EXPECT_EQ(error, path + ": Input/output error");
    EXPECT_EQ(content_of(path), "old");
    EXPECT_THAT(names_in(folder), ElementsAre("a.txl"));
    // What cannot be flushed at all, such as a file on some network drives, is no failure.
    failing_flush = EINVAL;
    auto file = os::ReplacementFile::create(path, error);
    ASSERT_TRUE(file.has_value()) << error;
    fill(file->temporary_path(), "new");
    EXPECT_TRUE(file->put_in_place(error)) << error;
    failing_flush = 0;
    EXPECT_EQ(content_of(path), "new");
}

TEST(ReplacementFile, reports_why_it_cannot_be_put_in_place) {
    const TemporaryFolder folder;
    std::string error;
    auto file = os::ReplacementFile::create(folder.path("a.txl"), error);
    ASSERT_TRUE(file.has_value()) << error;
    fs::create_directories(folder.folder() / "a.txl" / "in the way");
    EXPECT_FALSE(file->put_in_place(error));
    EXPECT_THAT(error, HasSubstr("a.txl"));
    EXPECT_TRUE(fs::is_directory(folder.path("a.txl")));
}

TEST(ReplacementFile, moves_with_its_temporary_file) {
    const TemporaryFolder folder;
    std::string error;
    auto first = os::ReplacementFile::create(folder.path("a.txl"), error);
    auto second = os::ReplacementFile::create(folder.path("b.txl"), error);
    ASSERT_TRUE(first.has_value() && second.has_value());
    *first = std::move(*second);
    second.reset();
    ASSERT_TRUE(first->put_in_place(error)) << error;
    EXPECT_THAT(names_in(folder), ElementsAre("b.txl"));
}

}  // namespace

extern "C" int fsync(int /*descriptor*/) {
    errno = failing_flush;
    return failing_flush == 0 ? 0 : -1;
}
