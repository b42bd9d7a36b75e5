#include "texture/file/filename.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Filename, DefaultIsEmpty) {
    const Filename name;
    EXPECT_EQ(name.GetString(), nullptr);
    EXPECT_EQ(name.GetLength(), 0);
}

TEST(Filename, NullPathIsEmpty) {
    const Filename name(nullptr);
    EXPECT_EQ(name.GetString(), nullptr);
    EXPECT_EQ(name.GetLength(), 0);
}

struct Case {
    const char* why;
    std::string path;
};

TEST(Filename, KeepsEveryPathByteForByte) {
    const Case cases[] = {
        {"an empty path", ""},
        {"a path without a slash is not converted", "Macintosh HD:Renders:shot.tif"},
        {"backslashes are ordinary bytes", "C:\\media\\shot.tif"},
        {"a path with slashes converts to itself here", "/media/renders/shot.tif"},
        {"longer than the 2000 bytes of the conversion on macOS", "/" + std::string(5000, 'x')},
        {"bytes outside ASCII", "/media/\x80\xe9\xff/\xc3\xa4.tif"},
        {"blanks, quotes and line ends", "/a b/\"c\"\r\n.tif"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const Filename name(c.path.c_str());
        ASSERT_NE(name.GetString(), nullptr);
        EXPECT_EQ(name.GetString(), c.path);
        EXPECT_EQ(name.GetLength(), static_cast<std::int32_t>(c.path.size()));
    }
}

TEST(Filename, CopiesOwnTheirText) {
    Filename copy;
    Filename constructed;
    {
        const Filename original("/media/shot.tif");
        copy = original;
        Filename second(original);
        constructed = second;
        second = Filename("other");
        EXPECT_NE(copy.GetString(), original.GetString());
        EXPECT_STREQ(second.GetString(), "other");
    }
    EXPECT_STREQ(copy.GetString(), "/media/shot.tif");
    EXPECT_EQ(copy.GetLength(), 15);
    EXPECT_STREQ(constructed.GetString(), "/media/shot.tif");
}

TEST(Filename, AssigningAnEmptyNameEmpties) {
    Filename name("shot.tif");
    name = Filename();
    EXPECT_EQ(name.GetString(), nullptr);
    EXPECT_EQ(name.GetLength(), 0);
}

TEST(Filename, AssigningToItselfChangesNothing) {
    Filename name("shot.tif");
    const Filename& same = name;
    name = same;
    EXPECT_STREQ(name.GetString(), "shot.tif");
    EXPECT_EQ(name.GetLength(), 8);
}

}  // namespace
