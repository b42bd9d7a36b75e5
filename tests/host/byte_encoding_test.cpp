#include "host/byte_encoding.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The upper halves as characters, in the order of their bytes.
const std::u16string kWindows =
    u"\u20AC\x0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\x008D\u017D\x008F"
    u"\x0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\x009D\u017E\u0178"
    u"\u00A0\u00A1\u00A2\u00A3\u00A4\u00A5\u00A6\u00A7\u00A8\u00A9\u00AA\u00AB\u00AC\u00AD\u00AE\u00AF"
    u"°±²³´µ¶·¸¹º»¼½¾¿ÀÁÂÃÄÅÆÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖ×ØÙÚÛÜÝÞßàáâãäåæçèéêëìíîïðñòóôõö÷øùúûüýþÿ";
const std::u16string kMacRoman =
    u"ÄÅÇÉÑÖÜáàâäãåçéèêëíìîïñóòôöõúùûü†°¢£§•¶ß®©™´¨≠ÆØ∞±≤≥¥µ∂∑∏π∫ªºΩæø¿¡¬√ƒ≈∆«»…\u00A0ÀÃÕŒœ–—“”‘’÷◊ÿŸ⁄€‹›"
    u"\uFB01\uFB02‡·‚„‰ÂÊÁËÈÍÎÏÌÓÔ\uF8FFÒÚÛÙıˆ˜¯˘˙˚¸˝˛ˇ";

TEST(ByteEncoding, EveryByteIsTheCharacterOfItsTable) {
    ASSERT_EQ(kWindows.size(), 128U);
    ASSERT_EQ(kMacRoman.size(), 128U);
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        const auto index = static_cast<std::size_t>(byte - 128);
        const std::u16string ascii(1, static_cast<char16_t>(byte));
        EXPECT_EQ(utf16_from_bytes(text, ByteEncoding::windows_1252),
                  byte < 128 ? ascii : kWindows.substr(index, 1))
            << byte;
        EXPECT_EQ(utf16_from_bytes(text, ByteEncoding::mac_roman),
                  byte < 128 ? ascii : kMacRoman.substr(index, 1))
            << byte;
    }
}

TEST(ByteEncoding, NamesAreUtf8IfTheyCanBe) {
    const struct {
        const char* why;
        std::string name;
        std::string windows;
        std::string mac;
    } cases[] = {
        {"nothing", "", "", ""},
        {"ASCII", "Key light 1", "Key light 1", "Key light 1"},
        {"UTF-8 stays", "\xC3\xA9toile \xF0\x9F\x8E\xAC", "\xC3\xA9toile \xF0\x9F\x8E\xAC",
         "\xC3\xA9toile \xF0\x9F\x8E\xAC"},
        {"a byte of Windows-1252", "caf\xE9", "caf\xC3\xA9", "caf\xC3\x88"},
        {"a byte of Mac Roman", "caf\x8E", "caf\xC5\xBD", "caf\xC3\xA9"},
        {"incomplete UTF-8 is read as bytes", "\xC3\xA9\xC3", "\xC3\x83\xC2\xA9\xC3\x83",
         "\xE2\x88\x9A\xC2\xA9\xE2\x88\x9A"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(utf8_from_name(c.name, ByteEncoding::windows_1252), c.windows) << c.why;
        EXPECT_EQ(utf8_from_name(c.name, ByteEncoding::mac_roman), c.mac) << c.why;
    }
    EXPECT_EQ(utf16_from_name("caf\xE9", ByteEncoding::windows_1252), u"caf\u00E9");
    EXPECT_EQ(utf16_from_name("caf\xC3\xA9", ByteEncoding::mac_roman), u"caf\u00E9");
}

TEST(ByteEncoding, EachNameOfAPathIsReadSeparately) {
    using Paths = std::vector<std::string>;
    const struct {
        const char* why;
        std::string path;
        Paths meant;
    } cases[] = {
        {"UTF-8 has no other meaning", "/caf\xC3\xA9/a.tga", {}},
        {"nothing", "", {}},
        {"the last name", "/shots/caf\xE9.tga", {"/shots/caf\xC3\xA9.tga", "/shots/caf\xC3\x88.tga"}},
        {"a folder in UTF-8 before it", "/\xC3\xBC/\x8E", {"/\xC3\xBC/\xC5\xBD", "/\xC3\xBC/\xC3\xA9"}},
        {"backslashes", "C:\\\xFC\\a", {"C:\\\xC3\xBC\\a", "C:\\\xC2\xB8\\a"}},
        {"a separator at the end", "\xFC/", {"\xC3\xBC/", "\xC2\xB8/"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(paths_in_other_encodings(c.path), c.meant) << c.why;
    }
}

TEST(ByteEncoding, LabelsNameTheEncodings) {
    EXPECT_EQ(parse_byte_encoding("windows-1252"), ByteEncoding::windows_1252);
    EXPECT_EQ(parse_byte_encoding("mac-roman"), ByteEncoding::mac_roman);
    EXPECT_EQ(parse_byte_encoding("latin-1"), std::nullopt);
    EXPECT_EQ(parse_byte_encoding(""), std::nullopt);
    EXPECT_STREQ(label(ByteEncoding::windows_1252), "windows-1252");
    EXPECT_STREQ(label(ByteEncoding::mac_roman), "mac-roman");
}

}  // namespace
