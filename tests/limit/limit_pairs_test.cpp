// Every limit with the last file that is accepted and the first that is refused, through the readers and
// through the tools, which name the limit.

#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/report/diagnostic_text.h"
#include "composition/model/project_settings.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "limit/limit_files.h"
#include "limit/scene_text.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_file.h"

namespace {

using nlohmann::json;

bool plug_in_reads_scene(const std::string& path) {
    tagProjectSettings settings;
    ASCIIParser parser;
    return parser.Init(Filename(path.c_str()), 1, 0) == 0 && read_composition_file(parser, settings) != 0;
}

bool plug_in_reads_texture(const std::string& path) {
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    TXLImageFilter filter;
    return filter.LoadImage(path.c_str(), &image);
}

// The error in a verb's JSON document about one file.
json error_in(const std::string& text) {
    const json document = json::parse(text);
    return (document.contains("import") ? document.at("import") : document.at("files").at(0))
        .at("diagnostics")
        .at(0);
}

class Pairs : public testing::TestWithParam<LimitPair> {
  protected:
    void expect_named(std::vector<std::string> arguments) {
        const limits::Limit& limit = *GetParam().limit;
        arguments.emplace_back("--json");
        const Ran refused = run(arguments);
        EXPECT_EQ(refused.code, cli::ExitCode::refused) << arguments[0];
        const json error = error_in(refused.out);
        EXPECT_EQ(error.at("code"), GetParam().refusal);
        const json& effects = error.at("effects");
        EXPECT_EQ(std::count(effects.begin(), effects.end(), cli::limit_text(limit)), 1) << error;
        const json named{
            {"id", limit.id}, {"name", limit.name}, {"value", limit.value}, {"unit", limit.unit}};
        EXPECT_EQ(error.at("limit"), named);
    }

    TemporaryFolder folder_;
};

TEST_P(Pairs, TheLastIsAccepted) {
    const std::string path = GetParam().write(folder_, 0);
    if (GetParam().texture) {
        EXPECT_TRUE(plug_in_reads_texture(path));
    } else {
        EXPECT_TRUE(plug_in_reads_scene(path));
        EXPECT_EQ(run({"import", "--bundle", VXR_BUNDLE_PATH, path}).code, cli::ExitCode::fine);
    }
    const std::vector<std::string> check = GetParam().texture
                                               ? std::vector<std::string>{"texture", "check", path}
                                               : std::vector<std::string>{"check", path};
    EXPECT_EQ(run(check).code, cli::ExitCode::fine);
}

TEST_P(Pairs, OneMoreIsRefused) {
    const std::string path = GetParam().write(folder_, 1);
    if (GetParam().texture) {
        // The plug-in keeps one alpha channel, however many the file has.
        EXPECT_EQ(plug_in_reads_texture(path), GetParam().limit == &limits::kDecodedBytes);
        expect_named({"texture", "check", path});
        expect_named({"texture", "info", path});
        expect_named({"texture", "convert", path, "-o", folder_.path("out.tga")});
    } else {
        EXPECT_FALSE(plug_in_reads_scene(path));
        expect_named({"check", path});
        expect_named({"import", "--bundle", VXR_BUNDLE_PATH, path});
    }
}

TEST(Refusals, NameTheirLimitInALineOfTheMessage) {
    const TemporaryFolder folder;
    const int levels = static_cast<int>(limits::kCompositionNesting.value) + 1;
    const std::string scene = folder.write("scene.aec", nested_scene(levels));
    EXPECT_NE(
        run({"check", scene})
            .err.find("\n      = nesting of compositions: 1,024 levels are allowed (see `vxr limits`)\n"),
        std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Limit, Pairs, testing::ValuesIn(limit_pairs()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(Limits, EveryReachableOneHasAPair) {
    for (const limits::Limit* const limit : limits::kAll) {
        const bool has_pair = std::any_of(limit_pairs().begin(), limit_pairs().end(),
                                          [&](const LimitPair& pair) { return pair.limit == limit; });
        EXPECT_EQ(has_pair, limit->rule != limits::Rule::file_length) << limit->id;
    }
}

}  // namespace
