#include "composition/read/read_footage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "composition/parsed_text.h"

#include "support/special_files.h"

namespace {

// Reads a path from `text`, whose first token is a word in place of the alpha word.
class PathIn {
  public:
    explicit PathIn(const std::string& text) : parsed(text) {
        char* raw = nullptr;
        result = ReadFilename(parsed.p, &raw);
        path.reset(raw);
    }

    ParsedText parsed;
    int result = -1;
    std::unique_ptr<char[]> path;
};

struct Case {
    const char* why;
    std::string text;                 // after the alpha word
    std::optional<std::string> name;  // in the composition file's folder; none: the path cannot be read
};

TEST(ReadFilename, TextBetweenFirstAndLastQuote) {
    const Case cases[] = {
        {"plain", " \"shot.tif\"\n", "shot.tif"},
        {"quote right after the word", "\"shot.tif\"\n", "shot.tif"},
        {"line ended by CR", " \"shot.tif\"\r", "shot.tif"},
        {"what stands before the quote is skipped", " x = 5 / \"shot.tif\"\n", "shot.tif"},
        {"line ends before the quote, too", "\n\r\n \"shot.tif\"\n", "shot.tif"},
        {"what follows the last quote is ignored", " \"shot.tif\" FILE {\n", "shot.tif"},
        {"quotes inside are kept", " \"a \"b\" c.tif\"\n", "a \"b\" c.tif"},
        {"text after it with quotes belongs to it", " \"a.tif\" \"old\"\n", "a.tif\" \"old"},
        {"a path of one character", " \"x\"\n", "x"},
        {"a quote alone is a path", " \"\"\"\n", "\""},
        {"dollars are no escape", " \"a$\"b\"\n", "a$\"b"},
        {"any byte", " \"\xc3\xa4\x80\xff\x01.tif\"\n", "\xc3\xa4\x80\xff\x01.tif"},
        {"a NUL byte ends it", std::string(" \"a\0b\"\n", 7), "a"},
        {"just short of the first buffer", " \"" + std::string(18, 'x') + "\"\n", std::string(18, 'x')},
        {"the first buffer to the byte", " \"" + std::string(19, 'x') + "\"\n", std::string(19, 'x')},
        {"more than the first buffer", " \"" + std::string(20, 'x') + "\"\n", std::string(20, 'x')},
        {"much more", " \"" + std::string(100000, 'x') + "\"\n", std::string(100000, 'x')},
        {"nothing but a word", "\n", std::nullopt},
        {"no closing quote on the line", " \"shot.tif\n\"\n", std::nullopt},
        {"empty path", " \"\"\n", std::nullopt},
        {"empty path for a NUL byte", std::string(" \"\0b\"\n", 6), std::nullopt},
        {"no line end", " \"shot.tif\"", std::nullopt},
        {"nothing after the opening quote", " \"", std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.why);
        const PathIn read("PREMUL" + c.text);
        ASSERT_EQ(read.result, c.name ? 1 : 0);
        if (c.name) {
            EXPECT_EQ(read.path.get(), read.parsed.folder.path(*c.name));
        } else {
            EXPECT_EQ(read.path, nullptr);
        }
    }
}

TEST(ReadFilename, ConsumesTheLineEnd) {
    PathIn read("PREMUL \"shot.tif\"\nnext ");
    EXPECT_EQ(read.parsed.p.nextsym(0), kTokenIdentifier);
    EXPECT_STREQ(read.parsed.p.text, "next");
}

TEST(ReadFilename, SlashesAreText) {
    const PathIn read("PREMUL \"/no/such//folder/shot.tif\"\n");
    ASSERT_EQ(read.result, 1);
    EXPECT_EQ(read.path.get(), read.parsed.folder.path("shot.tif"));
}

TEST(ReadFilename, FootageThatOpensKeepsItsPath) {
    const TemporaryFolder elsewhere;
    const std::string path = elsewhere.write("shot.tif", "x");
    const PathIn read("PREMUL \"" + path + "\"\n");
    ASSERT_EQ(read.result, 1);
    EXPECT_EQ(read.path.get(), path);
}

TEST(ReadFilename, PathThatDoesNotOpenMovesToTheCompositionsFolder) {
    const TemporaryFolder elsewhere;
    const std::string fifo = elsewhere.path("shot.tif");
    make_pipe(fifo);
    const std::pair<std::string, const char*> cases[] = {
        {fifo, "shot.tif"},
        {"/no/such/folder/shot.tif", "shot.tif"},
        {"C:\\media\\shot.tif", "shot.tif"},
        {"Macintosh HD:Renders:shot.tif", "shot.tif"},
        {"a/b\\c:shot.tif", "shot.tif"},
        {"a:b\\c/shot.tif", "shot.tif"},
        {"/no/such/folder/", ""},
    };
    for (const auto& [written, name] : cases) {
        SCOPED_TRACE(written);
        const PathIn read("PREMUL \"" + written + "\"\n");
        ASSERT_EQ(read.result, 1) << "whether or not that file exists";
        EXPECT_EQ(read.path.get(), read.parsed.folder.path(name));
    }
}

TEST(ReadFilename, CompositionFileWithoutAFolderFindsNothing) {
    const TemporaryFolder folder;
    folder.write("bare.aec", "PREMUL \"/no/such/shot.tif\"\n");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.folder());
    ASCIIParser p;
    const A_long init = p.Init(Filename("bare.aec"), 1, 0);
    char* path = nullptr;
    const int result = ReadFilename(p, &path);
    std::filesystem::current_path(before);
    const std::unique_ptr<char[]> owner(path);
    EXPECT_EQ(init, 0);
    EXPECT_EQ(result, 0);
    EXPECT_STREQ(path, "/no/such/shot.tif") << "the path as written had been settled before";
}

#if !defined(_WIN32)  // where no name holds another system's separators
TEST(ReadFilename, EverySeparatorCountsInTheCompositionsPath) {
    const TemporaryFolder folder;
    for (const char* const name : {"a:shot.aec", "a\\shot.aec"}) {
        const std::string path = folder.write(name, "PREMUL \"x.tif\"\n");
        ASCIIParser p;
        ASSERT_EQ(p.Init(Filename(path.c_str()), 1, 0), 0);
        char* result = nullptr;
        ASSERT_EQ(ReadFilename(p, &result), 1);
        const std::unique_ptr<char[]> owner(result);
        EXPECT_EQ(result, path.substr(0, path.size() - std::string("shot.aec").size()) + "x.tif");
    }
}
#endif

}  // namespace
