// Every example cut at every length and with every bit of every byte turned, imported through the built
// bundle: the host accepts what comes of it, its rules are kept, and nobody waits.

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "ladder/climbing_file.h"
#include "ladder/ladder_host.h"
#include "ladder/rungs.h"

namespace {

using Clock = std::chrono::steady_clock;

// Of files under 4 KB every length and every byte; of larger ones, and under a sanitizer, which takes ten
// times as long, a part that a fixed seed chooses. Of images, of which the bundle reads a few bytes at most,
// less.
#if defined(VXR_SANITIZED)
constexpr std::size_t kOfSmallFiles = 40;
constexpr std::size_t kOfLargeFiles = 40;
constexpr std::size_t kOfFootage = 1;
#else
constexpr std::size_t kOfSmallFiles = 4096;
constexpr std::size_t kOfLargeFiles = 256;
constexpr std::size_t kOfFootage = 2;
#endif
constexpr std::size_t kSmall_bytes = 4096;

std::size_t most(const Example& example, std::size_t size_bytes) {
    if (example.kind == Kind::footage) {
        return kOfFootage;
    }
    return size_bytes < kSmall_bytes ? kOfSmallFiles : kOfLargeFiles;
}

/// A few kilobytes are read in far less.
constexpr std::chrono::seconds kPatience{60};

void expect_sound(const ClimbingFile& file, const std::string& rung) {
    const Clock::time_point begin = Clock::now();
    const Climb climbed = climb({}, file.path());
    EXPECT_LT(Clock::now() - begin, kPatience) << rung;
    EXPECT_EQ(climbed.complaint, "") << rung;
    EXPECT_FALSE(climbed.no_memory_thrown) << rung;
    // The file is refused, or cannot be imported because there is nothing in it.
    EXPECT_TRUE(climbed.result.code == 0 || climbed.result.code == 1 || climbed.result.code == 3)
        << rung << ": " << climbed.result.code;
}

TEST(FileLadder, EveryExampleIsThere) {
    EXPECT_GE(examples_of(Kind::scene).size(), 4U);
    EXPECT_GE(examples_of(Kind::texture).size(), 12U);
    EXPECT_GE(examples_of(Kind::footage).size(), 60U);
}

TEST(FileLadder, RegressionsClimbAsTheFilesInThem) {
    std::size_t scenes = 0;
    std::size_t textures = 0;
    for (const Example& example : all_examples()) {
        if (!is_sound(example)) {
            scenes += example.bytes.starts_with("VORTAN") ? 1U : 0U;
            textures += example.bytes.starts_with("AVXRTexa") ? 1U : 0U;
        }
    }
    EXPECT_GE(scenes, 1U);
    EXPECT_GE(textures, 2U);
}

TEST(FileLadder, WholeFilesAreImported) {
    for (const Example& example : all_examples()) {
        const ClimbingFile file(example);
        const Climb climbed = climb({}, file.path());
        EXPECT_EQ(climbed.complaint, "") << example.name;
        if (is_sound(example)) {
            EXPECT_EQ(climbed.result.code, 0) << example.name;
            EXPECT_TRUE(climbed.finished) << example.name;
        }
        count_rungs("whole");
    }
}

TEST(FileLadder, CutAtEveryLength) {
    for (const Example& example : all_examples()) {
        ClimbingFile file(example, false);
        for (const std::size_t length : some_of(file.size_bytes(), most(example, file.size_bytes()))) {
            file.cut(length);
            expect_sound(file, example.name + " cut at " + std::to_string(length));
            count_rungs("cuts");
        }
    }
}

TEST(FileLadder, EveryBitTurned) {
    constexpr unsigned kBits = 8;
    for (const Example& example : all_examples()) {
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

}  // namespace
