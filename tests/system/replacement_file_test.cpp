#include "system/replacement_file.h"

#include <gmock/gmock.h>

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

void fill(const std::string& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

std::vector<std::string> names_in(const TemporaryFolder& folder) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.folder())) {
        names.push_back(entry.path().filename());
    }
    return names;
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
