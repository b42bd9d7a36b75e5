// Refuses every allocation of the bundle in turn, and reads every file one byte at a time.

#include <gtest/gtest.h>

#include <string>

#include "ladder/climbing_file.h"
#include "ladder/ladder_host.h"
#include "ladder/refused_allocation.h"
#include "ladder/rungs.h"
#include "ladder/slow_files.h"

namespace {

// The most allocations refused per file; a sample of imports with more.
#if defined(VXR_SANITIZED)
constexpr std::size_t kOfOneFile = 60;
#else
constexpr std::size_t kOfOneFile = 1000;
#endif

TEST(MemoryLadder, EveryAllocationRefused) {
    for (const Example& example : all_examples()) {
        const ClimbingFile file(example, example.kind != Kind::scene);
        std::int64_t asked = 0;
        {
            const RefusedAllocation count(0);
            const Climb clean = climb({}, file.path(), RefusedAllocation::watcher());
            asked = RefusedAllocation::asked();
            ASSERT_EQ(clean.violation, "") << example.name;
        }
        // A texture's memory comes from malloc, and a file that is refused by its first bytes needs none.
        if (RefusedAllocation::with_malloc() ||
            (example.kind == Kind::scene && example.origin == Origin::example)) {
            ASSERT_GT(asked, 0) << example.name;
        }
        const std::size_t most = example.kind == Kind::footage ? 1 : kOfOneFile;
        for (const std::size_t place : some_of(static_cast<std::size_t>(asked), most)) {
            const std::string rung =
                example.name + ", allocation " + std::to_string(place + 1) + " of " + std::to_string(asked);
            const RefusedAllocation refused(static_cast<std::int64_t>(place) + 1);
            const Climb climbed = climb({}, file.path(), RefusedAllocation::watcher());
            EXPECT_EQ(climbed.violation, "") << rung;
            EXPECT_FALSE(climbed.no_memory_thrown) << rung;
            EXPECT_TRUE(climbed.result.code == 0 || climbed.result.code == 3 || climbed.result.code == 4 ||
                        climbed.result.code == 1)
                << rung << ": " << climbed.result.code;
            count_rungs("allocations");
        }
    }
}

TEST(MemoryLadder, OneByteAtATimeGivesTheSameResult) {
    for (const Example& example : all_examples()) {
        const ClimbingFile file(example);
        const std::string whole = result_of(file.path());
        const SlowFiles slow;
        EXPECT_TRUE(result_of(file.path()) == whole) << example.name;
        // The bundle reads scenes and textures completely; of other footage, only what shows that it exists.
        if (example.kind != Kind::footage) {
            EXPECT_GE(SlowFiles::bytes(), static_cast<long>(file.size_bytes())) << example.name;
        }
        count_rungs("one_byte_reads");
    }
}

}  // namespace
