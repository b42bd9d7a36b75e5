#include "texture/input_module/output_callbacks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "input_module/object_bytes.h"
#include "support/recording_host.h"

namespace {

constexpr char kBefore = 0x5A;

std::string characters(std::size_t count) {
    return std::string(count, 'n');
}

bool is_untouched(const AEIO_Verbiage& verbiage) {
    return bytes_of(verbiage) == std::vector<unsigned char>(sizeof(verbiage), kBefore);
}

struct NameCase {
    const char* name;
    std::string path;
    std::string expected;
};

const NameCase kNameCases[] = {
    {"after the last backslash", "C:\\out\\wall.txl", "wall.txl"},
    {"one backslash", "\\wall.txl", "wall.txl"},
    {"nothing after the backslash", "C:\\out\\", ""},
    {"no backslash", "wall.txl", "???"},
    {"slashes are not separators", "/home/out/wall.txl", "???"},
    {"slash after the backslash", "C:\\out/wall.txl", "out/wall.txl"},
    {"colons are not separators", "Disk:out:wall.txl", "???"},
    {"empty path", "", "???"},
    {"longest name", "C:\\" + characters(31), characters(31)},
    {"one character longer", "C:\\" + characters(32), characters(31)},
    {"longest path", "C:\\" + characters(256), characters(31)},
    {"path without a terminator loses its last character", std::string(258, 'd') + "\\n", ""},
};

TEST(GetOutputInfo, NameFollowsTheLastBackslash) {
    for (const NameCase& c : kNameCases) {
        SCOPED_TRACE(c.name);
        RecordingHost host;
        host.output().path = c.path;
        auto verbiage = filled_with<AEIO_Verbiage>(kBefore);
        EXPECT_EQ(My_GetOutputInfo(host.basic_data(), host.out_spec(), &verbiage), 0);
        EXPECT_STREQ(verbiage.name, c.expected.c_str());
        EXPECT_STREQ(verbiage.type, "Texalon 3D");
        EXPECT_STREQ(verbiage.sub_type, "Texalon 3D");
        EXPECT_EQ(verbiage.type[11], kBefore);
        EXPECT_EQ(verbiage.sub_type[11], kBefore);
        EXPECT_THAT(host.functions_called(), testing::ElementsAre("GetOutSpecFilePath"));
        EXPECT_TRUE(host.reports.empty());
        EXPECT_TRUE(host.suites_held().empty());
    }
}

TEST(GetOutputInfo, ErrorIsReportedAndReturned) {
    RecordingHost host;
    host.fail_every("GetOutSpecFilePath", 77);
    host.fail_every("ReportInfo", 78);
    auto verbiage = filled_with<AEIO_Verbiage>(kBefore);
    EXPECT_EQ(My_GetOutputInfo(host.basic_data(), host.out_spec(), &verbiage), 77);
    EXPECT_THAT(host.reports, testing::ElementsAre("Unable to get file data"));
    EXPECT_TRUE(is_untouched(verbiage));
    EXPECT_TRUE(host.suites_held().empty());
}

TEST(GetOutputInfo, MissingSuitesThrow) {
    for (const auto& [suite, version] :
         {std::pair("AEGP IO Out Suite", A_long{1}), std::pair("AEGP Utility Suite", A_long{7})}) {
        SCOPED_TRACE(suite);
        RecordingHost host;
        host.fail_every("GetOutSpecFilePath", 77);
        host.withhold_suite(suite, version);
        auto verbiage = filled_with<AEIO_Verbiage>(kBefore);
        EXPECT_TRUE(
            throws_missing_suite([&] { My_GetOutputInfo(host.basic_data(), host.out_spec(), &verbiage); }));
        EXPECT_TRUE(is_untouched(verbiage));
        EXPECT_TRUE(host.reports.empty());
        EXPECT_TRUE(host.suites_held().empty());
    }
}

}  // namespace
