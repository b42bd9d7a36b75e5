#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene_places.h"

namespace {

using cli::ToolCode;

const std::string k31(31, 'x');

struct Case {
    const char* name;
    std::string objects;
    Places repeated;
    Places cut;
};

const Case kCases[] = {
    {"different names", "NULL \"a\" { }\nNULL \"b\" { }", {}, {}},
    {"one name twice", "NULL \"a\" { }\nNULL \"a\" { }", {"name-repeated 5:6"}, {}},
    {"one name in two kinds of objects", "NULL \"a\" { }\nLIGHT \"a\" { }", {"name-repeated 5:7"}, {}},
    {"three of one name are told once",
     "NULL \"a\" { }\nNULL \"b\" { }\nNULL \"a\" { }\nNULL \"a\" { }",
     {"name-repeated 6:6"},
     {}},
    {"two names twice each",
     "NULL \"a\" { }\nNULL \"b\" { }\nNULL \"b\" { }\nNULL \"a\" { }",
     {"name-repeated 6:6", "name-repeated 7:6"},
     {}},
    {"an object may have the name of a composition", "NULL \"Main\" { }", {}, {}},
    {"letter case counts", "NULL \"a\" { }\nNULL \"A\" { }", {}, {}},
    {"two bytes for one character in UTF-8, one in Windows-1252",
     "NULL \"caf\u00E9\" { }\nNULL \"caf\xE9\" { }",
     {"name-repeated 5:6"},
     {}},
    {"a difference in byte 31", "NULL \"" + k31 + "\" { }\nNULL \"" + k31.substr(1) + "y\" { }", {}, {}},
    {"a difference in byte 32",
     "NULL \"" + k31 + "1\" { }\nNULL \"" + k31 + "2\" { }",
     {},
     {"name-equal-after-cut 5:6"}},
    {"one that is as long as what is kept",
     "NULL \"" + k31 + "\" { }\nNULL \"" + k31 + "2\" { }",
     {},
     {"name-equal-after-cut 5:6"}},
    {"a long name twice is the same with and without a cut",
     "NULL \"" + k31 + "1\" { }\nNULL \"" + k31 + "1\" { }",
     {"name-repeated 5:6"},
     {}},
    {"the third is the one that differs",
     "NULL \"" + k31 + "1\" { }\nNULL \"" + k31 + "1\" { }\nNULL \"" + k31 + "2\" { }",
     {"name-repeated 5:6"},
     {"name-equal-after-cut 6:6"}},
};

TEST(NameCheck, EqualNames) {
    for (const Case& one : kCases) {
        EXPECT_EQ(places_of(warnings_of_code(kScene + one.objects, ToolCode::name_repeated)), one.repeated)
            << one.name;
        EXPECT_EQ(places_of(warnings_of_code(kScene + one.objects, ToolCode::name_equal_after_cut)), one.cut)
            << one.name;
    }
}

TEST(NameCheck, CompositionsAreComparedWithCompositions) {
    const auto notes = warnings_of_code(kHead +
                                            "COMPOSITION NRM \"M\" {\n COMPOSITION NRM \"a\" { }\n "
                                            "COMPOSITION NRM \"a\" { } }\nNULL \"a\" { }",
                                        ToolCode::name_repeated);
    ASSERT_EQ(places_of(notes), Places{"name-repeated 5:18"});
    EXPECT_EQ(notes[0].reason, "2 compositions have the name \"a\"");
    EXPECT_EQ(notes[0].count, 2);
}

TEST(NameCheck, TextsSayWhichNamesAreMeant) {
    const auto read =
        warnings_of_code(kScene + "NULL \"caf\u00E9\" { }\nNULL \"caf\xE9\" { }", ToolCode::name_repeated);
    ASSERT_EQ(read.size(), 1U);
    EXPECT_EQ(
        read[0].reason,
        "2 cameras, lights and nulls have the name \"caf\u00E9\" once those that are not UTF-8 are read as "
        "Windows-1252");
    const auto cut = warnings_of_code(kScene + "NULL \"" + k31 + "1\" { }\nNULL \"" + k31 + "2\" { }",
                                      ToolCode::name_equal_after_cut);
    ASSERT_EQ(cut.size(), 1U);
    EXPECT_EQ(cut[0].reason, "classic hosts keep \"" + k31 + "\" of this name and of \"" + k31 + "1\"");
}

TEST(NameCheck, OtherEncodingsSayWhatMayBeMeant) {
    // 0x8E is a capital Z with a caron in Windows-1252 and an e with an acute accent in Mac Roman.
    const auto warnings = warnings_of_code(kScene + "NULL \"caf\x8E\" { }", ToolCode::name_not_utf8);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_EQ(warnings[0].reason, "the name is not UTF-8; After Effects shows \"caf\u017D\"");
    ASSERT_FALSE(warnings[0].effects.empty());
    EXPECT_EQ(warnings[0].effects[0],
              "if the scene comes from a Mac, \"caf\u00E9\" is meant; write the name in UTF-8");
}

TEST(NameCheck, LongNamesAreShortened) {
    const std::string name(200, 'n');
    const auto notes = warnings_of_code(kScene + "NULL \"" + name + "\" { }\nNULL \"" + name + "\" { }",
                                        ToolCode::name_repeated);
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].reason, "2 cameras, lights and nulls have the name \"" + name.substr(0, 60) + "...\"");
}

}  // namespace
