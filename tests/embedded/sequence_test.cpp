#include "embedded/sequence.h"

#include <gtest/gtest.h>

#include "support/temporary_folder.h"

namespace {

using embedded::FrameRange;
using embedded::SequenceRequest;

TEST(NumberedNames, AreSplitAtTheLastNumberBeforeTheExtension) {
    struct {
        const char* name;
        const char* file;
        const char* prefix;
        const char* digits;  // null: no number
        const char* suffix;
    } const cases[] = {
        {"ordinary", "shot.0017.rla", "shot.", "0017", ".rla"},
        {"number next to the extension", "shot17.tif", "shot", "17", ".tif"},
        {"number in the middle", "shot0017_beauty.tif", "shot", "0017", "_beauty.tif"},
        {"two numbers: the last", "v2_shot_003.png", "v2_shot_", "003", ".png"},
        {"number in the extension does not count", "shot.mp4", nullptr, nullptr, nullptr},
        {"nothing but a number", "17.tif", "", "17", ".tif"},
        {"no extension", "shot17", "shot", "17", ""},
        {"no number", "shot.tif", nullptr, nullptr, nullptr},
        {"18 digits", "a123456789012345678.tif", "a", "123456789012345678", ".tif"},
        {"19 digits are not a frame number", "a1234567890123456789.tif", nullptr, nullptr, nullptr},
        {"empty", "", nullptr, nullptr, nullptr},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto split = embedded::split_number(c.file);
        ASSERT_EQ(split.has_value(), c.digits != nullptr);
        if (!split) {
            continue;
        }
        EXPECT_EQ(split->prefix, c.prefix);
        EXPECT_EQ(split->digits, c.digits);
        EXPECT_EQ(split->suffix, c.suffix);
    }
}

struct Case {
    const char* name;
    std::vector<const char*> files;
    const char* named;
    SequenceRequest request;
    const char* pattern;  // null: no sequence
    FrameRange range;
    int count;
    std::vector<FrameRange> gaps;
};

SequenceRequest from_to(std::int64_t first, std::int64_t last) {
    SequenceRequest request;
    request.first = first;
    request.last = last;
    return request;
}

SequenceRequest only_named() {
    SequenceRequest request;
    request.whole_folder = false;
    return request;
}

SequenceRequest alphabetical() {
    SequenceRequest request;
    request.ignore_numbers = true;
    return request;
}

const Case kCases[] = {
    {"starts at 17", {"a.0017.x", "a.0018.x", "a.0019.x"}, "a.0017.x", {}, "a.####.x", {17, 19}, 3, {}},
    {"named in its middle",
     {"a.0017.x", "a.0018.x", "a.0019.x"},
     "a.0018.x",
     {},
     "a.####.x",
     {17, 19},
     3,
     {}},
    {"gaps", {"a1.x", "a2.x", "a5.x", "a7.x"}, "a1.x", {}, "a#.x", {1, 7}, 4, {{3, 4}, {6, 6}}},
    {"unpadded across 9", {"a8.x", "a9.x", "a10.x", "a11.x"}, "a9.x", {}, "a#.x", {8, 11}, 4, {}},
    {"padded and past the padding",
     {"a0998.x", "a0999.x", "a9999.x", "a10000.x"},
     "a10000.x",
     {},
     "a####.x",
     {998, 10000},
     4,
     {{1000, 9998}}},
    {"padded and unpadded side by side", {"a09.x", "a10.x", "a9.x"}, "a9.x", {}, "a#.x", {9, 10}, 2, {}},
    {"padded and unpadded, the padded one named",
     {"a09.x", "a10.x", "a9.x"},
     "a09.x",
     {},
     "a##.x",
     {9, 10},
     2,
     {}},
    {"other names in the folder",
     {"a1.x", "a2.x", "b3.x", "a4.y", "a.x", "aa5.x", "a6x.x"},
     "a1.x",
     {},
     "a#.x",
     {1, 2},
     2,
     {}},
    {"a single frame", {"a7.x"}, "a7.x", {}, "a#.x", {7, 7}, 1, {}},
    {"frame 0", {"a0.x", "a1.x"}, "a0.x", {}, "a#.x", {0, 1}, 2, {}},
    {"far apart", {"a1.x", "a999999999999.x"}, "a1.x", {}, "a#.x", {1, 999999999999}, 2, {{2, 999999999998}}},
    {"a range of frames", {"a1.x", "a2.x", "a3.x", "a4.x"}, "a1.x", from_to(2, 3), "a#.x", {2, 3}, 2, {}},
    {"a range without frames", {"a1.x", "a2.x"}, "a1.x", from_to(5, 6), nullptr, {}, 0, {}},
    {"only the named file", {"a1.x", "a2.x", "a3.x"}, "a2.x", only_named(), "a#.x", {2, 2}, 1, {}},
    {"alphabetical: gaps do not count", {"a1.x", "a3.x"}, "a1.x", alphabetical(), "a#.x", {1, 3}, 2, {}},
    {"no number in the name", {"a.x"}, "a.x", {}, nullptr, {}, 0, {}},
};

TEST(Sequences, AreFoundInTheFolderOfTheNamedFile) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const TemporaryFolder folder;
        for (const char* file : c.files) {
            folder.write(file, "");
        }
        embedded::SequenceIndex index;
        const auto found = embedded::find_sequence(index, folder.path(c.named), c.request);
        ASSERT_EQ(found.has_value(), c.pattern != nullptr);
        if (!found) {
            continue;
        }
        EXPECT_EQ(found->pattern, c.pattern);
        EXPECT_EQ(found->range, c.range);
        EXPECT_EQ(found->count, c.count);
        EXPECT_EQ(found->gaps, c.gaps);
    }
}

TEST(Sequences, IgnoreFolders) {
    const TemporaryFolder folder;
    folder.write("a1.x", "");
    std::filesystem::create_directory(folder.path("a2.x"));
    embedded::SequenceIndex index;
    const auto found = embedded::find_sequence(index, folder.path("a1.x"), {});
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->count, 1);
}

TEST(Sequences, AreNotFoundInAFolderThatDoesNotExist) {
    embedded::SequenceIndex index;
    EXPECT_FALSE(embedded::find_sequence(index, "/no/such/folder/a1.x", {}).has_value());
}

TEST(Sequences, OfAFolderAreFoundByGoingThroughItOnce) {
    int listings = 0;
    embedded::SequenceIndex index([&listings](const std::string& folder) {
        ++listings;
        return folder == "/one" ? std::vector<std::string>{"a1.x", "b1.x", "a2.x", "b3.x", "a1.y"}
                                : std::vector<std::string>{"a7.x"};
    });
    const auto range = [&index](const char* path) {
        const auto found = embedded::find_sequence(index, path, {});
        return found ? std::pair(found->range.first, found->range.last)
                     : std::pair<std::int64_t, std::int64_t>();
    };
    using Range = std::pair<std::int64_t, std::int64_t>;
    EXPECT_EQ(range("/one/a1.x"), Range(1, 2));
    EXPECT_EQ(range("/one/b1.x"), Range(1, 3));
    EXPECT_EQ(range("/one/a1.y"), Range(1, 1));
    EXPECT_EQ(listings, 1);
    EXPECT_EQ(range("/two/a7.x"), Range(7, 7));
    EXPECT_EQ(listings, 2);
    index.forget();
    EXPECT_EQ(range("/one/a1.x"), Range(1, 2));
    EXPECT_EQ(listings, 3);
}

}  // namespace
