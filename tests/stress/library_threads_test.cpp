// The texture library as `vxr texture convert` uses it: several files at a time, one thread for each.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "cli/terminal/ordered_jobs.h"
#include "support/made_texture.h"
#include "support/temporary_folder.h"
#include "texture/value/texture_file.h"

namespace {

constexpr std::size_t kFiles = 400;
constexpr std::size_t kThreads = 8;

Texture picture_of(std::size_t file) {
    const auto number = static_cast<std::int32_t>(file);
    return made_texture(1 + number % 29, 1 + number % 13, number % 2 == 0 ? Texture::kRgb : Texture::kGrey,
                        number % 4, static_cast<unsigned>(file));
}

TEST(LibraryThreads, FilesAreWrittenAndReadAtTheSameTime) {
    const TemporaryFolder folder;
    std::vector<std::size_t> reported;
    std::size_t most_done = 0;
    cli::run_in_order<bool>(
        kFiles, kThreads,
        [&folder](std::size_t i) {
            const std::string path = folder.path(std::to_string(i) + ".txl");
            const Texture picture = picture_of(i);
            return !write_texture(path, picture) && read_texture(path).texture == picture;
        },
        [&most_done](std::size_t done) { most_done = done; },
        [&reported](std::size_t i, bool same) {
            EXPECT_TRUE(same) << i;
            reported.push_back(i);
        });
    EXPECT_EQ(most_done, kFiles);
    ASSERT_EQ(reported.size(), kFiles);
    for (std::size_t i = 0; i < kFiles; ++i) {
        EXPECT_EQ(reported[i], i);
    }
}

}  // namespace
