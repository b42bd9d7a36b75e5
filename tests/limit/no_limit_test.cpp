// Things that only the length of the file limits: a great many of them are read.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "cli/scene/scene_reading.h"
#include "limit/limits.h"
#include "limit/scene_text.h"
#include "support/temporary_folder.h"
#include "texture/txl_builder.h"
#include "texture/value/texture_file.h"

namespace {

constexpr std::size_t kMany = std::size_t{1} << 20;

TEST(WithoutLimit, AQuotedText) {
    const TemporaryFolder folder;
    const std::string name(kMany, 'n');
    const cli::SceneReading reading =
        cli::read_scene(folder.write("a.aec", scene_settings() + "COMPOSITION NRM \"" + name + "\" { }\n"));
    EXPECT_FALSE(reading.error.has_value());
    ASSERT_EQ(reading.facts.compositions.size(), 1U);
}

TEST(WithoutLimit, ALineWithAFootagePath) {
    const TemporaryFolder folder;
    const std::string path = "/" + std::string(kMany, 'p');
    const cli::SceneReading reading = cli::read_scene(folder.write(
        "a.aec", scene_settings() + "COMPOSITION NRM \"a\" {\nFILE NRM PREMUL \"" + path + "\"\n}\n"));
    EXPECT_FALSE(reading.error.has_value());
    ASSERT_EQ(reading.facts.footage.size(), 1U);
    EXPECT_EQ(reading.facts.footage[0].written.size(), path.size());
}

// The limit on keys is the length of a file that contains only the shortest ones.
TEST(WithoutLimit, KeysOfSixteenBytes) {
    const std::string key = "KEY. . . . . . .";
    ASSERT_EQ(static_cast<std::int64_t>(key.size()), limits::kShortestKey_bytes);
    std::string keys;
    for (int i = 0; i < 1000; ++i) {
        keys += key;
    }
    const TemporaryFolder folder;
    const cli::SceneReading reading = cli::read_scene(
        folder.write("a.aec", scene_settings() + "COMPOSITION NRM \"a\" { }\nNULL \"n\" {" + keys + "}\n"));
    EXPECT_FALSE(reading.error.has_value());
    ASSERT_EQ(reading.facts.objects.size(), 1U);
    EXPECT_EQ(reading.facts.objects[0].keys.size(), 1000U);
}

TEST(WithoutLimit, NestingOfChunksThatAreSkipped) {
    constexpr int kLevels = 200000;
    const std::string start = HyperBytes().Start(777, 0).bytes();
    ASSERT_EQ(static_cast<std::int64_t>(start.size()), limits::kChunkStart_bytes);
    TxlFile file;
    for (int level = 0; level < kLevels; ++level) {
        file.after_layers += start;
    }
    file.after_layers += std::string(kLevels, '\x02');
    const TemporaryFolder folder;
    const TextureReading reading = read_texture(folder.write("a.txl", file.bytes()));
    EXPECT_TRUE(reading.texture.has_value());
    EXPECT_FALSE(reading.error.has_value());
}

}  // namespace
