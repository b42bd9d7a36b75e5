#include "handover/jsx/jsx_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using namespace std::string_view_literals;

TEST(JsxString, IsAsciiThatNoStringCommentOrPageEnds) {
    const struct {
        const char* reason;
        std::string_view text;
        std::string_view written;
    } kCases[] = {
        {"nothing", "", R"("")"},
        {"plain text", "Main 01_v2", R"("Main 01_v2")"},
        {"double quotes would end the string", R"(The "hero")", R"("The \u0022hero\u0022")"},
        {"single quotes would end one of another style", "it's", R"("it\u0027s")"},
        {"a backslash would hide the next character", R"(a\)", R"("a\u005c")"},
        {"</script> would end the script of a page", "</script>", R"("\u003c/script>")"},
        {"line ends would end string and comment", "a\r\nb", R"("a\u000d\u000ab")"},
        {"U+2028 and U+2029 are line ends for scripts", "a\u2028b\u2029", R"("a\u2028b\u2029")"},
        {"NUL and DEL", "\0\x7f"sv, R"("\u0000\u007f")"},
        {"two bytes of UTF-8", "K\u00fcche", R"("K\u00fcche")"},
        {"three bytes", "\u05d0", R"("\u05d0")"},
        {"four bytes are two units", "\U0001f3a5", R"("\ud83c\udfa5")"},
        {"the last character of all", "\U0010ffff", R"("\udbff\udfff")"},
        {"a lone high surrogate stays one", "\xED\xA0\xBD", R"("\ud83d")"},
        {"a lone low surrogate stays one", "\xED\xB8\x80", R"("\ude00")"},
        {"two of them are their character", "\xED\xA0\xBD\xED\xB8\x80", R"("\ud83d\ude00")"},
        {"a surrogate that is cut off", "\xED\xA0", R"("\ufffd\ufffd")"},
        {"a byte that is no UTF-8",
         "k\xFC"
         "che",
         R"("k\ufffdche")"},
        {"a character that is cut off", "\xE2\x80", R"("\ufffd\ufffd")"},
        {"a zero of two bytes", "\xC0\x80", R"("\ufffd\ufffd")"},
        {"beyond the last character", "\xF4\x90\x80\x80", R"("\ufffd\ufffd\ufffd\ufffd")"},
        {"what looks escaped is not", R"(\u0041)", R"("\u005cu0041")"},
    };
    for (const auto& [reason, text, written] : kCases) {
        EXPECT_EQ(handover::jsx_string(text), written) << reason;
    }
}

TEST(JsxUri, NamesAFileOfAnySystem) {
    const struct {
        const char* reason;
        std::string_view path;
        std::string_view uri;
        bool absolute;
    } kCases[] = {
        {"nothing", "", "", false},
        {"blanks", "/net/glow pass.tif", "/net/glow%20pass.tif", true},
        {"signs that mean something in a URI", "/a#b?c%20d:e", "/a%23b%3fc%2520d%3ae", true},
        {"UTF-8, byte by byte", "/K\u00fcche.tif", "/K%c3%bcche.tif", true},
        {"bytes of any encoding", "/k\xFC.tif", "/k%fc.tif", true},
        {"a quote, and a line end", "/a\"b\nc", "/a%22b%0ac", true},
        {"a drive is the first folder", R"(C:\shots\a.tif)", "/C/shots/a.tif", true},
        {"a drive with slashes", "d:/shots/a.tif", "/d/shots/a.tif", true},
        {"a share", R"(\\server\renders\a.tif)", "//server/renders/a.tif", true},
        {"on other systems a backslash is a letter", R"(/a\b.tif)", "/a%5cb.tif", true},
        {"and without a root too", R"(a\b.tif)", "a%5cb.tif", false},
        {"a drive without a folder depends on where a program runs", "C:a.tif", "C%3aa.tif", false},
        {"a volume of classic systems is not a drive", "Macintosh HD:a.tif", "Macintosh%20HD%3aa.tif", false},
    };
    for (const auto& [reason, path, uri, absolute] : kCases) {
        EXPECT_EQ(handover::jsx_uri(path), uri) << reason;
        EXPECT_EQ(handover::jsx_is_absolute(path), absolute) << reason;
    }
}

TEST(JsxWay, LeadsFromAFolderToAFile) {
    const struct {
        const char* reason;
        std::string_view folder;
        std::string_view file;
        std::string_view way;
    } kCases[] = {
        {"beside it", "/a/b/", "/a/b/x.tif", "x.tif"},
        {"in a folder below", "/a/", "/a/b/c/x.tif", "b/c/x.tif"},
        {"in the folder next to it", "/a/b/", "/a/c/x.tif", "../c/x.tif"},
        {"dots and double slashes mean nothing", "/a/./b//", "/a/z/../c/x.tif", "../c/x.tif"},
        {"nothing in common", "/a/b/", "/c/x.tif", ""},
        {"from the root", "/", "/c/x.tif", "c/x.tif"},
        {"half a name is not a folder in common", "/abc/", "/abd/x.tif", ""},
        {"on a drive", R"(C:\a\b\)", R"(C:\a\c\x.tif)", "../c/x.tif"},
        {"from drive to drive there is no way", R"(C:\a\)", R"(D:\a\x.tif)", ""},
        {"on a share", R"(\\server\one\a\)", R"(\\server\one\b\x.tif)", "../b/x.tif"},
    };
    for (const auto& [reason, folder, file, way] : kCases) {
        EXPECT_EQ(handover::jsx_way(folder, file), way) << reason;
    }
}

std::string collected(const auto& write) {
    std::string whole;
    const handover::Sink sink = [&](std::string_view piece) { whole += piece; };
    handover::JsxText text(sink);
    write(text);
    text.flush();
    return whole;
}

TEST(JsxText, WritesNumbersThatReadBackToTheSame) {
    const struct {
        double number;
        const char* written;
    } kCases[] = {
        {0, "0"},
        {-0.0, "-0"},
        {0.1, "0.1"},
        {double{0.1F}, "0.10000000149011612"},
        {-439.29998779296875, "-439.29998779296875"},
        {1e22, "1e+22"},
        {std::numeric_limits<double>::denorm_min(), "5e-324"},
        {-std::numeric_limits<double>::max(), "-1.7976931348623157e+308"},
    };
    for (const auto& [number, written] : kCases) {
        EXPECT_EQ(collected([&, value = number](handover::JsxText& text) { text << value; }), written);
    }
}

TEST(JsxText, WritesFloatsThatReadBackToTheSame) {
    const struct {
        float number;
        const char* written;
    } kCases[] = {
        {0, "0"},
        {-0.0F, "-0"},
        {0.1F, "0.1"},
        {0.001F, "0.001"},
        {-0.02F, "-0.02"},
        {100, "100"},
        {-439.3F, "-439.3"},
        {4095.999F, "4095.999"},
        {4096.125F, "4096.125"},
        {0.0001F, "1e-04"},
        {1.0F / 3, "0.33333334"},
        {16777216, "16777216"},
        {std::numeric_limits<float>::max(), "3.4028235e+38"},
    };
    for (const auto& [number, written] : kCases) {
        EXPECT_EQ(collected([&, value = number](handover::JsxText& text) { text << value; }), written);
    }
    // Thousandths to both sides of where they are closer than floats are.
    std::istringstream written(collected([](handover::JsxText& text) {
        for (int thousandths = -4'200'000; thousandths < 4'200'000; thousandths += 67) {
            text << static_cast<float>(thousandths) / 1000.0F << '\n';
        }
    }));
    std::string line;
    for (int thousandths = -4'200'000; thousandths < 4'200'000; thousandths += 67) {
        std::getline(written, line);
        ASSERT_EQ(std::strtof(line.c_str(), nullptr), static_cast<float>(thousandths) / 1000.0F) << line;
    }
}

TEST(JsxText, LosesNothingBetweenPieces) {
    // Of all lengths, so that pieces end before, in and after them.
    std::string expected;
    const std::string long_text(200'000, 'x');
    const std::string written = collected([&](handover::JsxText& text) {
        for (int i = 0; i < 40'000; ++i) {
            text << i << ',' << std::string_view(long_text).substr(0, static_cast<std::size_t>(i % 7));
            expected += std::to_string(i) + "," + long_text.substr(0, static_cast<std::size_t>(i % 7));
        }
        text << "before" << long_text << "after";
        expected += "before" + long_text + "after";
    });
    EXPECT_TRUE(written == expected);
}

}  // namespace
