// What describes a plug-in besides its code: the property list, the macOS resource file and Info.plist.

#include "binary_file/property_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "binary_file/info_plist.h"
#include "binary_file/resources.h"
#include "support/made_binary.h"

namespace {

using binary_file::ByteView;
using binary_file::Damage;
using binary_file::InfoPlist;
using binary_file::Property;
using binary_file::PropertyForm;
using binary_file::PropertyList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

PropertyList read(const std::string& bytes, bool windows = true) {
    return binary_file::read_property_list(ByteView(bytes),
                                           windows ? PropertyForm::windows : PropertyForm::macos);
}

TEST(PropertyListReader, BothFormsHaveTheSameContent) {
    for (const bool windows : {true, false}) {
        const std::string bytes = made_property_list({.windows = windows});
        const PropertyList list = read(bytes, windows);
        ASSERT_FALSE(list.damage.has_value()) << list.damage->what();
        EXPECT_EQ(list.find("kind")->vendor, "8BIM");
        EXPECT_EQ(list.find("kind")->code(), "AEgx");
        EXPECT_EQ(list.find("kind")->offset_bytes, windows ? 10U : 8U);
        EXPECT_EQ(list.find("name")->counted_text(), "Sample");
        EXPECT_EQ(list.find("catg")->counted_text(), "General Plugin");
        EXPECT_EQ(list.find("vers")->number(), 0x30000U);
        EXPECT_EQ(windows ? list.find("8664")->terminated_text() : list.find("mi64")->counted_text(),
                  "EntryPointFunc");
        EXPECT_EQ(list.find(windows ? "mi64" : "8664"), nullptr);
    }
}

struct Case {
    const char* name;
    std::string bytes;
    std::size_t properties;
    std::uint64_t offset_bytes;
    const char* reason;
};

TEST(PropertyListReader, DamageIsReportedWithItsPlace) {
    const Case cases[] = {
        {"an empty list", "", 0, 0, "2 bytes are expected here, and 0 are left"},
        {"another first word", made_property_list({.first_word = 2}), 0, 0,
         "the property list begins with 2 where Windows hosts expect 1"},
        {"another version", made_property_list({.version = 5}), 0, 2,
         "the property list has version 5, not 0"},
        {"one property more than there are", made_property_list({.more = 1}), 5, made_property_list().size(),
         "16 bytes are expected here, and 0 are left"},
        {"a length that is not a multiple of 4", made_property_list({.properties = {{"name", "abc"}}}), 0, 10,
         "a property of 3 bytes, which is not a multiple of 4"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const PropertyList list = read(one.bytes);
        ASSERT_TRUE(list.damage.has_value());
        EXPECT_EQ(list.properties.size(), one.properties);
        EXPECT_EQ(list.damage->offset_bytes(), one.offset_bytes);
        EXPECT_STREQ(list.damage->what(), one.reason);
    }
}

TEST(PropertyListReader, ValuesInAnotherFormAreNotReturned) {
    const std::string bytes = made_property_list(
        {.properties = {
             {"leng", std::string("\7abc", 4)}, {"none", ""}, {"open", "abcd"}, {"wide", "abcdefgh"}}});
    const PropertyList list = read(bytes);
    ASSERT_EQ(list.properties.size(), 4U);
    EXPECT_EQ(list.find("leng")->counted_text(), std::nullopt);
    EXPECT_EQ(list.find("none")->counted_text(), std::nullopt);
    EXPECT_EQ(list.find("none")->terminated_text(), std::nullopt);
    EXPECT_EQ(list.find("open")->terminated_text(), std::nullopt);
    EXPECT_EQ(list.find("open")->code(), "dcba");
    EXPECT_EQ(list.find("wide")->code(), std::nullopt);
    EXPECT_EQ(list.find("wide")->number(), std::nullopt);
}

TEST(PropertyListReader, CutAnywhereOrWithAnyByteChangedListsAreReadOrRefused) {
    for (const bool windows : {true, false}) {
        const std::string whole = made_property_list({.windows = windows});
        for (std::size_t size = 0; size < whole.size(); ++size) {
            EXPECT_TRUE(read(whole.substr(0, size), windows).damage.has_value()) << size;
        }
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
                std::string changed = whole;
                changed[at] = static_cast<char>(static_cast<unsigned char>(changed[at]) ^ flip);
                for (const Property& property : read(changed, windows).properties) {
                    const std::uint64_t longest = property.data.size();
                    EXPECT_LE(property.counted_text().value_or("").size(), longest);
                    EXPECT_LE(property.terminated_text().value_or("").size(), longest);
                    EXPECT_EQ(property.number().has_value(), property.code().has_value());
                }
            }
        }
    }
}

std::vector<std::uint32_t> numbers_in(const std::string& bytes) {
    std::vector<std::uint32_t> numbers;
    for (const binary_file::Resource& resource : binary_file::resource_fork(bytes, "PiPL")) {
        numbers.push_back(resource.number.value_or(0));
    }
    return numbers;
}

TEST(ResourceFork, FindsResourcesByTypeWithTheirNumbers) {
    const std::string bytes = made_resource_file({.number = 42, .data = "data"});
    const auto found = binary_file::resource_fork(bytes, "PiPL");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].number, 42U);
    EXPECT_EQ(found[0].data.all(), "data");
    EXPECT_EQ(found[0].data.start_bytes(), 260U);
    EXPECT_THAT(numbers_in(made_resource_file({.type = "STR "})), IsEmpty());
}

TEST(ResourceFork, CutAnywhereOrWithAnyByteChangedFilesAreReadOrRefused) {
    const std::string whole = made_resource_file();
    EXPECT_THAT(numbers_in(whole), ElementsAre(16000U));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_THROW(numbers_in(whole.substr(0, size)), Damage) << size;
    }
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string changed = whole;
        changed[at] = static_cast<char>(~static_cast<unsigned char>(changed[at]));
        try {
            EXPECT_LE(numbers_in(changed).size(), 65536U);
        } catch (const Damage& damage) {
            EXPECT_LE(damage.offset_bytes(), UINT32_MAX);
            ++refused;
        }
    }
    EXPECT_GT(refused, 0U);
}

std::string plist(const std::string& inside) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Any//EN\" \"any.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>" +
           inside + "</dict>\n</plist>\n";
}

struct PlistCase {
    const char* name;
    const char* inside;
    std::map<std::string, std::string> texts;
};

TEST(InfoPlistReader, ReadsTheTextsOfTheOutermostDictionary) {
    const PlistCase cases[] = {
        {"nothing", "", {}},
        {"one text", "<key>a</key> <string>b</string>", {{"a", "b"}}},
        {"entities",
         "<key>a&amp;b</key><string>&lt;c&gt; &quot;d&quot; &apos; &x;</string>",
         {{"a&b", "<c> \"d\" ' &x;"}}},
        {"an empty text in either spelling",
         "<key>a</key><string></string><key>b</key><string/>",
         {{"a", ""}, {"b", ""}}},
        {"a text around a comment", "<key>a</key><string>b<!-- c -->d</string>", {{"a", "bd"}}},
        {"a text of spaces", "<key>a</key><string> </string>", {{"a", " "}}},
        {"a CDATA section", "<key>a</key><string><![CDATA[<b>]]></string>", {{"a", "<b>"}}},
        {"other values are skipped",
         "<key>a</key><true/><key>b</key><integer>3</integer><key>c</key><string>d</string>",
         {{"c", "d"}}},
        {"texts inside other values do not count",
         "<key>a</key><dict><key>b</key><string>c</string></dict><key>d</key><array><string>e</string></"
         "array>",
         {}},
        {"a text without a key does not count", "<string>a</string>", {}},
        {"a comment contains no tags",
         "<!-- <key>a</key><string>b</string> --><key>c</key><string>d</string>",
         {{"c", "d"}}},
        {"the first of two texts with one key counts",
         "<key>a</key><string>1</string><key>a</key><string>2</string>",
         {{"a", "1"}}},
    };
    for (const PlistCase& one : cases) {
        SCOPED_TRACE(one.name);
        const InfoPlist read = binary_file::read_info_plist(plist(one.inside));
        EXPECT_FALSE(read.damage.has_value()) << read.damage->what();
        EXPECT_EQ(read.texts, one.texts);
    }
}

TEST(InfoPlistReader, SaysWhyItCannotReadAFile) {
    EXPECT_TRUE(binary_file::read_info_plist("bplist00\xD1").binary);
    const std::pair<std::string, const char*> cases[] = {
        {"", "there is no <plist> with a <dict> in it"},
        {"{ CFBundleName = a; }", "there is no <plist> with a <dict> in it"},
        {"<plist><dict>", "the XML is damaged: start-end tags mismatch"},
        {"<plist></dict>", "the XML is damaged: start-end tags mismatch"},
        {"<plist", "the XML is damaged: error parsing start element tag"},
        {"<>", "the XML is damaged: could not determine tag type"},
        {"<!-- ->", "the XML is damaged: error parsing comment"},
        {"<array></array>", "there is no <plist> with a <dict> in it"},
    };
    for (const auto& [bytes, reason] : cases) {
        const InfoPlist read = binary_file::read_info_plist(bytes);
        ASSERT_TRUE(read.damage.has_value()) << bytes;
        EXPECT_STREQ(read.damage->what(), reason) << bytes;
        EXPECT_FALSE(read.binary);
    }
    EXPECT_EQ(binary_file::read_info_plist("<plist><dict><key>a</key><string>b</string></plist>").text("a"),
              "b")
        << "what comes before the damage counts";
    const std::string whole = plist("<key>a</key><string>b &amp;</string><true/>");
    for (std::size_t size = 0; size + 1 < whole.size(); ++size) {
        EXPECT_TRUE(binary_file::read_info_plist(whole.substr(0, size)).damage.has_value()) << size;
    }
}

TEST(InfoPlistReader, ExpandsNoEntityThatTheFileDeclares) {
    const InfoPlist read = binary_file::read_info_plist(
        "<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\"><!ENTITY c SYSTEM \"/etc/hostname\">]>"
        "<plist><dict><key>k</key><string>&b;&c;</string></dict></plist>");
    EXPECT_FALSE(read.damage.has_value());
    EXPECT_EQ(read.text("k"), "&b;&c;");
}

TEST(InfoPlistReader, ReadsFilesUpToItsLimit) {
    constexpr std::size_t kLargest_bytes = std::size_t{4} << 20U;
    std::string largest = plist("<key>a</key><string>b</string>");
    largest.resize(kLargest_bytes, ' ');
    const InfoPlist read = binary_file::read_info_plist(largest);
    EXPECT_FALSE(read.damage.has_value()) << read.damage->what();
    EXPECT_EQ(read.text("a"), "b");
    const InfoPlist refused = binary_file::read_info_plist(largest + ' ');
    ASSERT_TRUE(refused.damage.has_value());
    EXPECT_STREQ(refused.damage->what(),
                 "the property list has 4194305 bytes; more than 4194304 are not read");
}

TEST(InfoPlistReader, ReadsAnyDepthOfNesting) {
    constexpr int kDepth = 200000;
    std::string nested = "<key>a</key><string>b</string>";
    for (int i = 0; i < kDepth; ++i) {
        nested += "<dict>";
    }
    EXPECT_TRUE(binary_file::read_info_plist(plist(nested)).damage.has_value());
    for (int i = 0; i < kDepth; ++i) {
        nested += "</dict>";
    }
    const InfoPlist read = binary_file::read_info_plist(plist(nested));
    EXPECT_FALSE(read.damage.has_value()) << read.damage->what();
    EXPECT_EQ(read.text("a"), "b");
}

}  // namespace
