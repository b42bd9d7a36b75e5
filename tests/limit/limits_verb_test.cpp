// `vxr limits` shows the values that the readers use.

#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "cli/report/diagnostic_text.h"
#include "limit/limits.h"
#include "support/program_run.h"

namespace {

using Json = nlohmann::ordered_json;

std::string output_of(const std::vector<std::string>& arguments) {
    const Ran ran = run(arguments);
    EXPECT_EQ(ran.code, cli::ExitCode::fine);
    EXPECT_EQ(ran.err, "");
    return ran.out;
}

TEST(LimitsVerb, ShowsEveryLimitWithItsMembers) {
    const std::string text = output_of({"limits"});
    EXPECT_NE(text.find("nesting of compositions: 1,024 levels [composition-nesting]\n"
                        "      our rule: reading, building and deleting a tree stays within 512 KiB of\n"
                        "      stack; real scenes nest a few deep\n"
                        "      beyond it: refused: nesting-too-deep\n"),
              std::string::npos)
        << text;
    for (const limits::Limit* const limit : limits::kAll) {
        EXPECT_NE(text.find('[' + std::string(limit->id) + ']'), std::string::npos) << limit->id;
    }
}

TEST(LimitsVerb, JsonHasEveryMemberInItsPlace) {
    const Json document = Json::parse(output_of({"limits", "--json"}));
    EXPECT_EQ(document.at("schema"), 1);
    EXPECT_EQ(document.at("exit_code"), 0);
    ASSERT_EQ(document.at("limits").size(), limits::kAll.size());
    EXPECT_EQ(document.at("limits").at(2).dump(),
              R"({"id":"word","name":"length of a word or number","value":511,"unit":"characters",)"
              R"("rule":"format","reason":"a word has 512 bytes with the zero behind it",)"
              R"("beyond":"refused: word-too-long"})");
}

TEST(LimitsVerb, CallsOurRulesOurs) {
    const std::map<std::string, std::string> expected{
        {"composition-file", "format"},
        {"composition-nesting", "ours"},
        {"word", "format"},
        {"text", "file-length"},
        {"path", "file-length"},
        {"keys", "file-length"},
        {"texture-file", "format"},
        {"texture-pixels", "ours"},
        {"texture-decoded", "ours"},
        {"row", "ours"},
        {"row-rate", "ours"},
        {"repaired-rows", "ours"},
        {"texture-headers", "ours"},
        {"alpha-nesting", "ours"},
        {"chunk-nesting", "file-length"},
    };
    std::map<std::string, std::string> found;
    const Json document = Json::parse(output_of({"limits", "--json"}));
    for (const Json& limit : document.at("limits")) {
        found.emplace(limit.at("id"), limit.at("rule"));
    }
    EXPECT_EQ(found, expected);
}

TEST(Limits, HaveDistinctNamesAndAReason) {
    std::set<std::string> ids;
    for (const limits::Limit* const limit : limits::kAll) {
        EXPECT_TRUE(ids.insert(limit->id).second) << limit->id;
        EXPECT_GT(limit->value, 0) << limit->id;
        EXPECT_STRNE(limit->reason, "") << limit->id;
        EXPECT_STRNE(limit->beyond, "") << limit->id;
    }
}

struct GroupedCase {
    std::int64_t number;
    const char* text;
};

const GroupedCase kGrouped[] = {
    {0, "0"}, {999, "999"}, {1000, "1,000"}, {-1000, "-1,000"}, {-999, "-999"}, {1073741824, "1,073,741,824"},
};

TEST(Grouped, PutsACommaBetweenThousands) {
    for (const GroupedCase& tested : kGrouped) {
        EXPECT_EQ(cli::grouped(tested.number), tested.text);
    }
}

}  // namespace
