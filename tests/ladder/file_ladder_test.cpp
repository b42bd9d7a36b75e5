// Damages every example and every seed of the fuzzers and imports it through the built bundle: cut at every
// length, with every bit inverted, and with the bytes that matter to the composition language in every place.
// The host's project must stay sound, the bundle must keep the host's rules, and no import may take long.

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <string>
#include <vector>

#include "ladder/climbing_file.h"
#include "ladder/ladder_host.h"
#include "ladder/rungs.h"

namespace {

// Lengths and bytes per file: all of files below 4 KB; a sample chosen by a fixed random seed of larger files
// and under sanitizers, which take ten times as long; less of the fuzzers' seeds and of images, of which the
// bundle reads a few bytes at most.
#if defined(VXR_SANITIZED)
constexpr std::size_t kOfSmallFiles = 16;
constexpr std::size_t kOfLargeFiles = 16;
constexpr std::size_t kOfSeeds = 2;
constexpr std::size_t kOfFootage = 1;
#else
constexpr std::size_t kOfSmallFiles = 4096;
constexpr std::size_t kOfLargeFiles = 256;
constexpr std::size_t kOfSeeds = 32;
constexpr std::size_t kOfFootage = 2;
#endif
constexpr std::size_t kSmall_bytes = 4096;

std::size_t most(const Example& example, std::size_t size_bytes) {
    if (example.kind == Kind::footage) {
        return kOfFootage;
    }
    if (example.origin == Origin::seed && !example.path.empty()) {
        return kOfSeeds;
    }
    return size_bytes < kSmall_bytes ? kOfSmallFiles : kOfLargeFiles;
}

/// Processor time, so that other programs do not matter. Reading a few kilobytes takes a thousandth of it.
constexpr double kMostTime_s = 10;

void expect_sound(const ClimbingFile& file, const std::string& rung) {
    const std::clock_t begin = std::clock();
    const Climb climbed = climb({}, file.path());
    EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, kMostTime_s) << rung;
    EXPECT_EQ(climbed.violation, "") << rung;
    EXPECT_FALSE(climbed.no_memory_thrown) << rung;
    // The file is refused, or it cannot be imported because nothing is left in it.
    EXPECT_TRUE(climbed.result.code == 0 || climbed.result.code == 1 || climbed.result.code == 3)
        << rung << ": " << climbed.result.code;
}

bool is_there(const std::vector<Example>& examples, const char* extension, const char* first_bytes) {
    return std::any_of(examples.begin(), examples.end(), [&](const Example& example) {
        return example.name.ends_with(extension) && example.bytes.starts_with(first_bytes);
    });
}

TEST(FileLadder, EveryExampleIsThere) {
    EXPECT_GE(examples_of(Kind::scene).size(), 4U);
    EXPECT_GE(examples_of(Kind::texture).size(), 12U);
    EXPECT_GE(examples_of(Kind::footage).size(), 60U);
}

TEST(FileLadder, RegressionsAndSeedsHoldScenesAndTextures) {
    std::vector<Example> regressions = all_examples();
    std::erase_if(regressions, [](const Example& example) { return example.origin != Origin::regression; });
    EXPECT_TRUE(is_there(regressions, ".aec", "VORTAN"));
    EXPECT_TRUE(is_there(regressions, ".txl", "AVXRTexa"));
    EXPECT_GE(all_seeds().size(), 150U);
    EXPECT_TRUE(is_there(all_seeds(), ".aec", "VORTAN"));
    EXPECT_TRUE(is_there(all_seeds(), ".txl", "AVXRTexa"));
}

TEST(FileLadder, WholeFilesAreImported) {
    for (const Example& example : examples_and_seeds()) {
        const ClimbingFile file(example);
        const Climb climbed = climb({}, file.path());
        EXPECT_EQ(climbed.violation, "") << example.name;
        if (example.origin == Origin::example) {
            EXPECT_EQ(climbed.result.code, 0) << example.name;
            EXPECT_TRUE(climbed.finished) << example.name;
        }
        count_rungs("whole");
    }
}

TEST(FileLadder, CutAtEveryLength) {
    for (const Example& example : examples_and_seeds()) {
        ClimbingFile file(example, false);
        for (const std::size_t length : some_of(file.size_bytes(), most(example, file.size_bytes()))) {
            file.cut(length);
            expect_sound(file, example.name + " cut at " + std::to_string(length));
            count_rungs("cuts");
        }
    }
}

TEST(FileLadder, EveryBitInverted) {
    constexpr unsigned kBits = 8;
    for (const Example& example : examples_and_seeds()) {
        ClimbingFile file(example, false);
        for (const std::size_t byte : some_of(file.size_bytes(), most(example, file.size_bytes()))) {
            for (unsigned bit = 0; bit < kBits; ++bit) {
                file.flip(byte, bit);
                expect_sound(
                    file, example.name + ", byte " + std::to_string(byte) + ", bit " + std::to_string(bit));
                count_rungs("flips");
            }
        }
    }
}

TEST(FileLadder, EveryByteOfASceneReplaced) {
    for (const Example& example : examples_and_seeds()) {
        if (example.kind != Kind::scene) {
            continue;
        }
        ClimbingFile file(example, false);
        for (const std::size_t offset : some_of(file.size_bytes(), most(example, file.size_bytes()))) {
            for (const char byte : kBytesThatMatter) {
                file.replace(offset, byte);
                expect_sound(file, example.name + ", byte " + std::to_string(offset) + " is " +
                                       std::to_string(static_cast<int>(byte)));
                count_rungs("replaced_bytes");
            }
        }
    }
}

}  // namespace
