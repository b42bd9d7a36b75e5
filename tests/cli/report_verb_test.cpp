#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/page/report_page.h"
#include "cli/report/tool_code.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

Ran report(const std::vector<std::string>& scenes, const std::string& output,
           const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"report", "--bundle", VXR_BUNDLE_PATH, "-o", output};
    words.insert(words.end(), scenes.begin(), scenes.end());
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
}

// What a reader of HTML that shares nothing with the writer finds in the page.
json read_page(const std::string& path) {
    const ProcessResult read = run_process({"python3", VXR_PROJECT_DIR "/tests/cli/page_reader.py", path});
    EXPECT_EQ(read.exit_code, 0) << read.err;
    const json page = json::parse(read.out, nullptr, false);
    EXPECT_FALSE(page.is_discarded()) << read.out;
    return page;
}

struct ReportedPage {
    TemporaryFolder folder;
    Ran ran;
    json page;

    explicit ReportedPage(const std::string& scene)
        : ran(report({folder.write("shot.aec", scene)}, folder.path("shot.html"), {"--pictures", "1"})),
          page(read_page(folder.path("shot.html"))) {}

    [[nodiscard]] std::vector<std::string> all(const char* what) const {
        return page[what].get<std::vector<std::string>>();
    }
};

const std::string kHead = "VORTAN XR COMPOSITION\nRESOLUTION 720 576 FROM 0 TO 9 RANGE 10 FPS 25 ASPECT 1\n";

// Objects follow the first composition.
const std::string kScene = kHead + "COMPOSITION NRM \"Main\" { }\n";

TEST(ReportVerb, AnswersTheQuestionsInTheirOrder) {
    const TemporaryFolder folder;
    const std::string output = folder.path("page.html");
    const Ran ran = report({VXR_EXAMPLES_DIR "/square/courtyard_020.aec"}, output, {"--pictures", "1"});
    EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
    const json page = read_page(output);
    EXPECT_THAT(page["faults"].get<std::vector<std::string>>(), ElementsAre());
    std::vector<std::string> questions;
    for (const std::string heading : page["headings"]) {
        if (heading.ends_with('?')) {
            questions.push_back(heading);
        }
    }
    EXPECT_THAT(questions, ElementsAre("Does it import, and is anything lost?", "What does it look like?",
                                       "Is the camera right?", "What is in it?", "What to do next?"));
    // Four words of this scene do not reach After Effects: ANGLE, AREA, PSPOT and TUBE.
    EXPECT_THAT(page["verdicts"].get<std::vector<std::string>>(),
                ElementsAre("It imports. 4 losses change the picture or the motion."));
    EXPECT_THAT(page["sources"].get<std::vector<std::string>>(), Contains("69  TYPE AREA"));
    EXPECT_THAT(page["names"].get<std::vector<std::string>>(), Contains("Spot on the pot"));
}

TEST(ReportVerb, WhatScriptsGetFollowsTheSchema) {
    const TemporaryFolder folder;
    const std::string output = folder.path("page.html");
    (void)report({VXR_EXAMPLES_DIR "/interlaced/lantern_010.aec", VXR_EXAMPLES_DIR "/textured/shelf_040.aec"},
                 output);
    const json data = read_page(output)["data"];
    ASSERT_EQ(data["scenes"].size(), 2U);
    EXPECT_EQ(data["scenes"][0]["verdict"], "incomplete");
    // The camera of the lantern has keys at the frames 17, 20 and 24.
    EXPECT_EQ(data["scenes"][0]["objects"][0]["keys"]["frame"], json::array({17, 20, 24}));
    // What each format loses: the camera zooms, both lights have an intensity and a kind of shadow.
    std::map<std::string, std::vector<json>> losses;
    for (const json& loss : data["scenes"][0]["losses"]) {
        losses[loss["code"].get<std::string>()].push_back(loss["targets"]);
    }
    EXPECT_THAT(losses["handover-view-angle-lost"], ElementsAre(json{"gltf"}));
    EXPECT_THAT(losses["handover-light-intensity-unit"],
                ElementsAre(json({"gltf", "usda"}), json({"gltf", "usda"})));
    EXPECT_THAT(losses["handover-footage-missing"], ElementsAre(json{"jsx"}));
    // Eight frames from FROM to TO. With its aspect cut to 1.06 a frame is 763 x 576 square pixels, and 540
    // high here.
    const json& frames = data["scenes"][0]["pictures"]["frames"];
    ASSERT_EQ(frames.size(), 8U);
    EXPECT_EQ(frames[7]["frame"], 24);
    EXPECT_EQ(data["scenes"][0]["pictures"]["width_px"], 715);
    const TemporaryFolder documents;
    const std::string validator = VXR_PROJECT_DIR "/tests/support/validate_json.py";
    (void)documents.write("report.1.json", data.dump());
    const ProcessResult valid = run_process(
        {"python3", "-W", "ignore", validator, VXR_PROJECT_DIR "/docs/schema", documents.folder().string()});
    EXPECT_EQ(valid.exit_code, 0) << valid.out << valid.err;
}

TEST(ReportVerb, NamesCannotBecomePartsOfThePage) {
    const ReportedPage made(kHead +
                            "COMPOSITION NRM \"</script><script>alert(1)</script>\" {\n"
                            "FILE NRM STRAIGHT \"<img src=x onerror=alert(1)>.tif\"\n}\n"
                            "CAMERA \"</title>--><!--&amp;'\" {\nKEY 0 0 0 0 0 0 0 45 100\n}\n");
    EXPECT_THAT(made.all("faults"), ElementsAre());
    EXPECT_THAT(made.all("names"), Contains("</script><script>alert(1)</script>"));
    EXPECT_THAT(made.all("names"), Contains("</title>--><!--&amp;'"));
    EXPECT_EQ(made.page["data"]["scenes"][0]["objects"][0]["name"], "</title>--><!--&amp;'");
    EXPECT_THAT(content_of(made.folder.path("shot.html")), Not(HasSubstr("<script>alert")));
}

TEST(ReportVerb, NamesThatAreWrittenFromRightToLeftAreIsolated) {
    // Hebrew "light"; and a sign that would turn everything behind it around, which is shown as its bytes.
    const ReportedPage made(kScene +
                            "LIGHT \"\u05d0\u05d5\u05e8\" {\nKEY 0 0 0 0 0 0 0\n}\n"
                            "NULL \"a\u202eb\" {\nKEY 0 0 0 0 0 0 0\n}\n");
    EXPECT_THAT(made.all("faults"), ElementsAre());
    EXPECT_THAT(made.all("names"), Contains("\u05d0\u05d5\u05e8"));
    EXPECT_THAT(made.all("names"), Contains("a\\xe2\\x80\\xaeb"));
}

json page_of(const cli::PageScene& scene) {
    const TemporaryFolder folder;
    std::string text;
    cli::write_report_page({cli::write_scene(scene, 0, true)},
                           [&text](std::string_view piece) { text += piece; });
    EXPECT_LT(text.size(), 10U << 20U);
    return read_page(folder.write("page.html", text));
}

// `vxr check` joins what occurs often, so this many are made by hand.
TEST(ReportVerb, TwoThousandPlacesAreAllThere) {
    cli::PageScene scene;
    scene.file = "shot.aec";
    scene.code = ExitCode::refused;
    for (int i = 0; i < 2000; ++i) {
        cli::Diagnostic one = diagnostic::make(cli::ToolCode::footage_missing, {"shot.aec", {}, i + 1, 1},
                                               "place " + std::to_string(i));
        one.source_line = "<" + std::to_string(i) + ">";
        scene.diagnostics.push_back(one);
    }
    const json page = page_of(scene);
    EXPECT_THAT(page["faults"].get<std::vector<std::string>>(), ElementsAre());
    EXPECT_EQ(page["places"], 2000);
    EXPECT_THAT(page["marked"].get<std::vector<std::string>>(), Contains("<1999>"));
    EXPECT_EQ(page["data"]["scenes"][0]["diagnostics"].size(), 2000U);
}

TEST(ReportVerb, NumbersThatAreNoneAreWords) {
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    cli::PageScene scene;
    scene.file = "shot.aec";
    scene.imported.emplace();
    scene.imported->shot.pixel_aspect = kNan;
    handover::SceneObject camera;
    camera.kind = handover::ObjectKind::camera;
    handover::ObjectKey key;
    key.position = {kNan, kInfinity, -kInfinity};
    key.view_angle = 45;
    camera.keys.push_back(key);
    scene.imported->objects.push_back(camera);
    const json page = page_of(scene);
    EXPECT_THAT(page["faults"].get<std::vector<std::string>>(), ElementsAre());
    const json& data = page["data"]["scenes"][0];
    EXPECT_EQ(data["shot"]["pixel_aspect"], "nan");
    EXPECT_EQ(data["objects"][0]["keys"]["y"], json::array({"inf"}));
    EXPECT_EQ(data["objects"][0]["keys"]["view_angle"], json::array({45}));
}

TEST(ReportVerb, ARefusedSceneIsOnThePageWithItsLine) {
    const ReportedPage made(kScene + "CAMERA \"c\" {\nKEY zero\n}\n");
    EXPECT_EQ(made.ran.code, ExitCode::refused);
    EXPECT_THAT(made.all("faults"), ElementsAre());
    EXPECT_THAT(made.all("verdicts"), ElementsAre("After Effects imports nothing from this scene."));
    EXPECT_THAT(made.all("sources"), ElementsAre("5KEY zero"));
    EXPECT_THAT(made.all("marked"), ElementsAre("zero"));
}

TEST(ReportVerb, AFolderBeginsWithItsScenesAndTheMostSeriousCounts) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("job"));
    (void)folder.write("job/a.aec", kScene);
    (void)folder.write("job/b.aec", kHead + "COMPOSITION NRM \"m\" {\nFILE NRM STRAIGHT \"gone.tif\"\n}\n");
    (void)folder.write("job/c.aec", "VORTAN XR COMPOSITION\nRESOLUTION wide\n");
    const std::string output = folder.path("job.html");
    for (const char* const jobs : {"1", "3"}) {
        const Ran ran = report({folder.path("job")}, output, {"--jobs", jobs, "--pictures", "0"});
        EXPECT_EQ(ran.code, ExitCode::refused) << ran.err;
        EXPECT_THAT(ran.out, HasSubstr("3 files: 1 ok, 1 incomplete, 1 refused"));
        const json page = read_page(output);
        EXPECT_THAT(page["faults"].get<std::vector<std::string>>(), ElementsAre());
        const std::vector<std::string> headings = page["headings"];
        EXPECT_EQ(headings.at(0), "3 scenes");
        EXPECT_THAT(headings, Contains("c.aec"));
        // Each once in the table and once above its scene.
        EXPECT_EQ(page["verdicts"].size(), 6U);
        EXPECT_EQ(page["verdicts"][1],
                  "It imports, but one footage file is missing; a placeholder stands in for it.");
        EXPECT_EQ(page["data"]["scenes"].size(), 3U);
    }
}

TEST(ReportVerb, FootageIsSoughtWhereTheUserSays) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder.path("elsewhere"));
    std::filesystem::copy(VXR_EXAMPLES_DIR "/textured/wall.txl", folder.path("elsewhere/wall.txl"));
    const std::string scene = folder.write(
        "shot.aec", kHead + "COMPOSITION NRM \"m\" {\nFILE NRM STRAIGHT \"Q:/renders/wall.txl\"\n}\n");
    const std::string output = folder.path("shot.html");
    struct PlaceCase {
        const char* why;
        std::vector<std::string> options;
        ExitCode code;
    };
    const PlaceCase cases[] = {
        {"nowhere else", {}, ExitCode::footage_missing},
        {"a folder", {"--search", folder.path("elsewhere")}, ExitCode::fine},
        {"a drive that is mounted elsewhere",
         {"--map", "Q:/renders=" + folder.path("elsewhere")},
         ExitCode::fine},
    };
    for (const PlaceCase& one : cases) {
        SCOPED_TRACE(one.why);
        std::vector<std::string> options = one.options;
        options.insert(options.end(), {"--pictures", "0"});
        const Ran ran = report({scene}, output, options);
        EXPECT_EQ(ran.code, one.code) << ran.err;
        const json page = read_page(output);
        EXPECT_THAT(page["faults"].get<std::vector<std::string>>(), ElementsAre());
        // The page names the scene that the user named, not the copy that was imported.
        EXPECT_EQ(page["data"]["scenes"][0]["scene"], scene);
        const std::string html = content_of(output);
        EXPECT_EQ(html.find("<span class=\"kind missing\">") == std::string::npos,
                  one.code == ExitCode::fine);
    }
    EXPECT_EQ(report({scene}, folder.path("elsewhere/wall.txl"), {"--search", folder.path("elsewhere")}).code,
              ExitCode::usage)
        << "footage that was found is overwritten";
}

TEST(ReportVerb, RefusesAndLeavesOutWhatTheUserSays) {
    const TemporaryFolder folder;
    const std::string scene =
        folder.write("shot.aec", kHead + "COMPOSITION NRM \"m\" {\nFILE NRM STRAIGHT \"gone.tif\"\n}\n");
    const std::string output = folder.path("shot.html");
    struct PolicyCase {
        std::vector<std::string> options;
        ExitCode code;
        std::size_t diagnostics;
    };
    const PolicyCase cases[] = {
        {{}, ExitCode::footage_missing, 1},
        {{"--fail-on", "footage-missing"}, ExitCode::refused, 1},
        {{"--ignore", "footage-missing"}, ExitCode::fine, 0},
        {{"--fail-on", "no-such-code"}, ExitCode::usage, 0},
    };
    for (const PolicyCase& one : cases) {
        SCOPED_TRACE(testing::PrintToString(one.options));
        std::filesystem::remove(output);
        std::vector<std::string> options = one.options;
        options.insert(options.end(), {"--pictures", "0"});
        const Ran ran = report({scene}, output, options);
        EXPECT_EQ(ran.code, one.code) << ran.err;
        ASSERT_EQ(std::filesystem::exists(output), one.code != ExitCode::usage);
        if (one.code != ExitCode::usage) {
            EXPECT_EQ(read_page(output)["data"]["scenes"][0]["diagnostics"].size(), one.diagnostics);
        }
    }
}

TEST(ReportVerb, NeitherASceneNorItsFootageIsOverwritten) {
    const TemporaryFolder folder;
    const std::string footage = folder.write("plate.tif", "not a picture");
    const std::string scene =
        folder.write("shot.aec", kHead + "COMPOSITION NRM \"m\" {\nFILE NRM STRAIGHT \"plate.tif\"\n}\n");
    const std::string before = content_of(scene);
    EXPECT_EQ(report({scene}, scene).code, ExitCode::usage);
    EXPECT_EQ(content_of(scene), before);
    EXPECT_EQ(report({scene}, footage).code, ExitCode::usage);
    EXPECT_EQ(content_of(footage), "not a picture");
}

TEST(ReportVerb, WithoutAPlaceForThePageNothingIsDone) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("shot.aec", kScene);
    EXPECT_EQ(report({scene}, folder.path("no/such/folder.html")).code, ExitCode::cannot_read_or_write);
    EXPECT_EQ(run({"report", scene}).code, ExitCode::usage);
    const Ran full = report({scene}, "/dev/full");
    EXPECT_EQ(full.code, ExitCode::cannot_read_or_write) << full.out;
}

TEST(ReportVerb, DoesNotWriteOntoWhatItReads) {
    const TemporaryFolder folder;
    std::filesystem::copy(VXR_EXAMPLES_DIR "/textured", folder.path("in"));
    const std::string scene = folder.path("in/shelf_040.aec");
    const std::string list = folder.write("list.txt", scene + '\n');
    struct RoleCase {
        const char* why;
        std::string output;
    };
    const RoleCase cases[] = {
        {"a scene", scene},
        {"footage of a scene", folder.path("in/wall.txl")},
        {"the list of files", list},
        {"the plug-in", VXR_BUNDLE_PATH},
    };
    for (const RoleCase& one : cases) {
        SCOPED_TRACE(one.why);
        const auto size = std::filesystem::file_size(one.output);
        const Ran ran = report({"--files-from", list}, one.output, {"--pictures", "0"});
        EXPECT_EQ(ran.code, ExitCode::usage) << ran.err;
        EXPECT_NE(ran.err.find("would be overwritten"), std::string::npos) << ran.err;
        EXPECT_EQ(std::filesystem::file_size(one.output), size);
    }
}

}  // namespace
