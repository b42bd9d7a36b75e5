// Scripts of handovers that are made here, run in the stand-in for After Effects. What arrives is stated by
// hand.

#include "handover/jsx/jsx_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "handover/made_handover.h"
#include "support/child_process.h"

namespace {

using namespace made;
using Json = nlohmann::json;

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// What the stand-in has after the script ran; the second run must change nothing. `files` is what is on its
/// disk.
Json built(const Handover& handover, const Json& files = Json::object()) {
    const TemporaryFolder folder;
    const std::string script = folder.path("scene.jsx");
    {
        std::ofstream out(script, std::ios::binary);
        write_jsx(handover, {}, [&](std::string_view piece) { out << piece; });
    }
    const ProcessResult result = run_process({VXR_NODE_PROGRAM, std::string(VXR_JSX_TESTS) + "/run_script.js",
                                              VXR_NODE_MODULES, script, files.dump()});
    EXPECT_EQ(result.exit_code, 0) << result.err;
    Json project = Json::parse(result.out, nullptr, false);
    if (project.is_discarded()) {
        throw std::runtime_error("the stand-in built nothing");
    }
    EXPECT_EQ(project["changesOfSecondRun"], 0);
    return project;
}

/// A composition of 720 x 576 with nothing in it.
Handover empty_scene() {
    Handover made;
    made.shot = {"shot.aec", 720, 576, 1, 0, 99, 100, 25, 25, false, Fields::none};
    made.items.push_back({ItemKind::composition, "vxr-0000000000000001", "Main", kNone, 0, {}});
    made.compositions.push_back({0, 720, 576, 1, 100, 25, {}});
    return made;
}

/// Ids have 16 digits.
std::string id_of(std::size_t number) {
    std::string digits = std::to_string(number);
    return "vxr-" + std::string(16 - digits.size(), '0') + digits;
}

Layer null_layer(std::string name, std::vector<Track> tracks) {
    Layer made;
    made.kind = LayerKind::null;
    made.id = id_of(100);
    made.name = std::move(name);
    made.three_d = true;
    made.length = 100;
    made.tracks = std::move(tracks);
    return made;
}

Json keys_of(const Json& project, const char* property) {
    return project["items"][0]["composition"]["layers"][0]["properties"][property]["keys"];
}

std::string summary_of(const Json& project) {
    std::string text;
    for (const Json& line : project["summary"]) {
        text += line.get<std::string>() + "\n";
    }
    return text;
}

TEST(JsxScript, NamesOfAnyBytesArrive) {
    const struct {
        const char* bytes;
        const char* arrives;
    } kNames[] = {
        {"The \"hero\" pot", "The \"hero\" pot"},
        {"it's \\n a \\", "it's \\n a \\"},
        {"two\r\nlines", "two\r\nlines"},
        {"</script><!--", "</script><!--"},
        {"a\u2028b\u2029c", "a\u2028b\u2029c"},
        {"*/ // ${x} `y`", "*/ // ${x} `y`"},
        {"\U0001f3a5 K\u00fcche \u05d0", "\U0001f3a5 K\u00fcche \u05d0"},
        {"high \xED\xA0\xBD", "high \\ud83d"},  // as the runner prints lone surrogates
        {"low \xED\xB8\x80.", "low \\ude00."},
        {"Mac \x8A", "Mac \uFFFD"},
        {"__proto__", "__proto__"},
    };
    Handover made = empty_scene();
    made.shot.file = "/shots/two\nlines \u2028 */ \"x\".aec";  // also in the script's head
    std::size_t number = 200;
    for (const auto& [bytes, arrives] : kNames) {
        made.items.push_back({ItemKind::folder, id_of(number++), bytes, kNone, kNone, {}});
        Layer layer = null_layer(bytes, {});
        layer.id = id_of(number++);
        made.compositions[0].layers.push_back(std::move(layer));
    }
    const Json project = built(made);
    std::size_t at = 0;
    for (const auto& [bytes, arrives] : kNames) {
        EXPECT_EQ(project["items"][at + 1]["name"], arrives);
        EXPECT_EQ(project["items"][0]["composition"]["layers"][at]["name"], arrives);
        ++at;
    }
}

// A scene with stills of 64 x 48 pixels.
Handover with_stills(const std::string& scene, const std::vector<std::string>& paths) {
    Handover made = empty_scene();
    made.shot.file = scene;
    for (const std::string& path : paths) {
        Footage footage;
        footage.item = made.items.size();
        footage.path = path;
        footage.width_px = 64;
        footage.height_px = 48;
        made.items.push_back(
            {ItemKind::footage, id_of(made.items.size() + 1), "picture", kNone, made.footage.size(), {}});
        made.footage.push_back(footage);
    }
    return made;
}

TEST(JsxScript, FindsFootageOfAnySystem) {
    struct Still {
        std::string reason;
        std::string path;
        std::string found;
    };
    const struct {
        std::string scene;
        std::vector<Still> stills;
    } kScenes[] = {
        {"/shots/x.aec",
         {{"where it was", "/renders/a.tif", "/renders/a.tif"},
          {"beside the script", "/renders/b.tif", "/scripts/b.tif"},
          {"as far from the script as from the scene", "/shots/in/c.tif", "/scripts/in/c.tif"},
          {"a blank and a sign", "/renders/d #1.tif", "/renders/d%20%231.tif"},
          {"in bytes that are no UTF-8", "/renders/k\xFC.tif", "/renders/k%FC.tif"},
          {"in UTF-8", "/renders/K\u00fcche.tif", "/renders/K%C3%BCche.tif"},
          {"not at all", "/renders/gone.tif", ""}}},
        {R"(C:\shots\x.aec)",
         {{"on a drive", R"(C:\renders\a.tif)", "/C/renders/a.tif"},
          {"next to the scene's folder", R"(C:\b\b.tif)", "/b/b.tif"}}},
        {R"(\\server\shots\x.aec)", {{"on a share", R"(\\server\renders\a.tif)", "//server/renders/a.tif"}}},
    };
    for (const auto& [scene, stills] : kScenes) {
        std::vector<std::string> paths;
        Json files = Json::object();
        for (const Still& still : stills) {
            paths.push_back(still.path);
            if (!still.found.empty()) {
                files[still.found] = {{"width", 64}, {"height", 48}, {"alpha", false}};
            }
        }
        const Json project = built(with_stills(scene, paths), files);
        for (std::size_t i = 0; i < stills.size(); ++i) {
            EXPECT_EQ(project["items"][i + 1]["footage"]["source"],
                      stills[i].found.empty() ? "placeholder" : "file")
                << stills[i].reason << "\n"
                << summary_of(project);
        }
    }
}

TEST(JsxScript, LeavesOutWhatIsNotANumberAndGoesOn) {
    Handover made = empty_scene();
    made.compositions[0].layers.push_back(null_layer(
        "Odd",
        {{Property::position, {0, 1, 2, 3}, {1, 2, 3, kNotANumber, 0, 0, 0, kInfinite, 0, 4, 5, 6}, {}, {}},
         {Property::rotate_x, {0, kNotANumber, 2}, {10, 20, 30}, {}, {}},
         {Property::rotate_y, {}, {kNotANumber}, {}, {}},
         {Property::rotate_z, {}, {7}, {}, {}}}));
    const Json project = built(made);
    const Json position = keys_of(project, "ADBE Position");
    ASSERT_EQ(position.size(), 2U);
    EXPECT_EQ(position[0]["value"], (Json{1, 2, 3}));
    EXPECT_EQ(position[1]["value"], (Json{4, 5, 6}));
    EXPECT_EQ(position[1]["time"], 3.0 / 25);
    ASSERT_EQ(keys_of(project, "ADBE Rotate X").size(), 2U);
    EXPECT_EQ(keys_of(project, "ADBE Rotate X")[1]["value"], 30);
    const Json& properties = project["items"][0]["composition"]["layers"][0]["properties"];
    EXPECT_FALSE(properties.contains("ADBE Rotate Y"));
    EXPECT_EQ(properties["ADBE Rotate Z"]["value"], 7);
    const std::string summary = summary_of(project);
    EXPECT_NE(summary.find("The position of 'Odd' has 2 values that are not finite or not in order"),
              std::string::npos)
        << summary;
    EXPECT_NE(summary.find("The rotateX of 'Odd' has 1 value that is not finite"), std::string::npos)
        << summary;
}

TEST(JsxScript, TakesTheNearestOfHugeNumbersOrGoesOnWithout) {
    Handover made = empty_scene();
    made.compositions[0].width_px = 2'000'000'000;
    made.compositions[0].height_px = 1;
    made.compositions[0].pixel_aspect = kInfinite;
    made.compositions[0].frames = 1e300;
    made.compositions[0].rate_fps = kNotANumber;
    made.compositions[0].layers.push_back(
        null_layer("Far", {{Property::position, {}, {1e300, -1e300, 0}, {}, {}},
                           {Property::rotate_x, {}, {std::numeric_limits<double>::denorm_min()}, {}, {}},
                           {Property::rotate_z, {}, {-0.0}, {}, {}}}));
    const Json project = built(made);
    const Json& composition = project["items"][0]["composition"];
    EXPECT_EQ(composition["size"], (Json{30000, 4}));
    EXPECT_EQ(composition["rate"], 1);
    EXPECT_EQ(composition["aspect"], 0.01);
    EXPECT_EQ(composition["seconds"], 10800);
    const Json& properties = composition["layers"][0]["properties"];
    EXPECT_FALSE(properties.contains("ADBE Position"));
    EXPECT_EQ(properties["ADBE Rotate X"]["value"].get<double>(), std::numeric_limits<double>::denorm_min());
    const std::string summary = summary_of(project);
    for (const char* line : {"The width of 'Main' is 2000000000, and After Effects takes 4 to 30000",
                             "The height of 'Main' is 1, and", "The position of 'Far'"}) {
        EXPECT_NE(summary.find(line), std::string::npos) << line << "\n" << summary;
    }
}

TEST(JsxScript, KeepsEveryBitOfItsNumbers) {
    // Numbers of 24 bits of every size and sign, neighbours of powers of two, and numbers between them.
    std::vector<double> numbers = {0.1, -1.0 / 3, 16777217, 1e29, 5e-324, 1e-40F};
    std::mt19937 random(20261123);
    while (numbers.size() < 20'000) {
        const float one = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::abs(one) < 1e30F) {  // and a number, as After Effects takes them
            numbers.push_back(one);
        }
        // Where most numbers of scenes are: thousandths.
        numbers.push_back(static_cast<float>(static_cast<std::int32_t>(random() % 4'000'000)) / 1000.0F);
    }
    for (int power = -126; power < 30; ++power) {
        const float one = std::ldexp(1.0F, power);
        numbers.insert(numbers.end(), {one, std::nextafter(one, 0.0F), -std::nextafter(one, 2 * one)});
    }
    // A call of the script has numbers of one kind when they lie together.
    std::stable_partition(numbers.begin(), numbers.end(), [](double number) {
        return std::abs(number) < 16'000'000 && std::abs(number) > 1e-30 &&
               static_cast<double>(static_cast<float>(number)) == number;
    });
    Track track{Property::rotate_z, {}, numbers, Interpolation::linear, {}};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        track.frames.push_back(static_cast<double>(i));
    }
    Handover made = empty_scene();
    made.compositions[0].layers.push_back(null_layer("Exact", {track}));
    const Json keys = keys_of(built(made), "ADBE Rotate Z");
    ASSERT_EQ(keys.size(), numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ASSERT_EQ(keys[i]["value"].get<double>(), numbers[i]) << i;
    }
}

TEST(JsxScript, KeepsOneKeyOfThousandsAtOneFrame) {
    Handover made = empty_scene();
    Track track{Property::rotate_z, {}, {}, Interpolation::linear, {}};
    for (int i = 0; i < 5000; ++i) {
        track.frames.push_back(i < 4999 ? 0 : 1);
        track.values.push_back(i);
    }
    made.compositions[0].layers.push_back(null_layer("Busy", {track}));
    const Json project = built(made);
    const Json keys = keys_of(project, "ADBE Rotate Z");
    ASSERT_EQ(keys.size(), 2U);
    EXPECT_EQ(keys[0]["value"], 0);
    EXPECT_EQ(keys[1]["value"], 4999);
    EXPECT_NE(summary_of(project).find("4998 values"), std::string::npos);
}

TEST(JsxScript, HoldsTheKeysThatAreCutsAlsoBehindOnesThatAreLeftOut) {
    Handover made = empty_scene();
    made.compositions[0].layers.push_back(null_layer(
        "Cut", {{Property::rotate_z, {0, 1, 2, 3}, {1, kNotANumber, 3, 4}, Interpolation::linear, {1, 2}}}));
    const Json keys = keys_of(built(made), "ADBE Rotate Z");
    ASSERT_EQ(keys.size(), 3U);
    EXPECT_EQ(keys[0]["out"], "LINEAR");
    EXPECT_EQ(keys[1]["out"], "HOLD");
    EXPECT_EQ(keys[1]["value"], 3);
    EXPECT_EQ(keys[2]["out"], "LINEAR");
}

TEST(JsxScript, IsPassedOnInPieces) {
    Handover made = empty_scene();
    Track track{Property::position, {}, {}, Interpolation::linear, {}};
    for (int i = 0; i < 100'000; ++i) {
        track.frames.push_back(i * 2);
        track.values.insert(track.values.end(), {i * 0.1, i * 0.01, i * -0.3});
    }
    made.compositions[0].layers.push_back(null_layer("Long", {track}));
    std::size_t longest = 0;
    std::size_t whole = 0;
    write_jsx(made, {}, [&](std::string_view piece) {
        longest = std::max(longest, piece.size());
        whole += piece.size();
    });
    EXPECT_GT(whole, 2'000'000U);
    EXPECT_LE(longest, 65'536U);
}

TEST(JsxScript, HasTheSameBytesOnAnyNumberOfThreads) {
    Handover made = empty_scene();
    const auto track_of = [](int keys, double first) {
        Track track{Property::position, {}, {}, Interpolation::linear, {}};
        for (int i = 0; i < keys; ++i) {
            track.frames.push_back(i);
            track.values.insert(track.values.end(), {first + i, i % 50 == 49 ? kNotANumber : i * 0.1, 0.5});
        }
        return track;
    };
    for (int i = 0; i < 150; ++i) {
        made.compositions[0].layers.push_back(null_layer("Short " + std::to_string(i), {track_of(60, i)}));
    }
    // More than is made ahead, between layers that are.
    made.compositions[0].layers.push_back(null_layer("Long", {track_of(300'000, 0)}));
    for (int i = 0; i < 150; ++i) {
        made.compositions[0].layers.push_back(null_layer("Late " + std::to_string(i), {track_of(60, -i)}));
    }
    const auto written = [&](std::size_t threads) {
        JsxOptions options;
        options.threads = threads;
        std::string script;
        write_jsx(made, options, [&](std::string_view piece) { script += piece; });
        return script;
    };
    const std::string alone = written(1);
    // The script writes an apostrophe as \u0027.
    const std::size_t notes[] = {alone.find("Short 149\\u0027 has 1 value that is"),
                                 alone.find("Long\\u0027 has 6000 values that are"),
                                 alone.find("Late 0\\u0027 has 1 value that is")};
    EXPECT_TRUE(std::is_sorted(std::begin(notes), std::end(notes)));
    EXPECT_NE(notes[0], std::string::npos);
    EXPECT_NE(notes[2], std::string::npos);
    for (const std::size_t threads : {2U, 7U}) {
        EXPECT_TRUE(written(threads) == alone) << threads << " threads";
    }
}

// ---- From the text of a scene.

TEST(JsxScript, WritesNoZoomForAnAngleOfZero) {
    const Handover handover = of_text(
        scene_text("", "", "CAMERA \"C\" { KEY 0 1 2 3 0 0 0 0 }\nNULL \"N\" { KEY 0 7 8 9 0 0 0 }\n"));
    const Json project = built(handover);
    const Json& layers = project["items"][1]["composition"]["layers"];
    ASSERT_EQ(layers.size(), 2U);
    EXPECT_EQ(layers[0]["properties"]["ADBE Position"]["value"], (Json{1, -2, 3}));
    EXPECT_FALSE(layers[0]["properties"].contains("ADBE Camera Zoom"));
    EXPECT_EQ(layers[1]["properties"]["ADBE Position"]["value"], (Json{7, -8, 9}));
    EXPECT_FALSE(loss_codes(handover).empty());
}

TEST(JsxScript, TakesTheLastOfThousandsOfKeysThatASceneHasAtOneFrame) {
    std::string keys;
    for (int i = 0; i < 3000; ++i) {
        keys += " KEY 5 " + std::to_string(i) + " 0 0 0 0 0\n";
    }
    const Json project = built(of_text(scene_text("", "", "NULL \"N\" {\n" + keys + "}\n")));
    const Json& layer = project["items"][1]["composition"]["layers"][0];
    EXPECT_EQ(layer["properties"]["ADBE Position"]["value"], (Json{2999, 0, 0}));
}

TEST(JsxScript, SetsNothingOfObjectsWithoutKeys) {
    const Json project = built(of_text(scene_text("", "", "CAMERA \"C\" { }\nNULL \"N\" { }\n")));
    const Json& layers = project["items"][1]["composition"]["layers"];
    EXPECT_EQ(layers[0]["properties"], Json::object());
    EXPECT_FALSE(layers[1]["properties"].contains("ADBE Position"));
}

TEST(JsxScript, SurvivesHugeNumbersOfAScene) {
    const Handover handover = of_text(
        scene_text("", "",
                   "CAMERA \"C\" {\n KEY 0 1e38 -1e38 1e38 0 0 0 40\n KEY 1 1e99 0 0 1e30 -1e30 1e38 40\n"
                   " KEY 2147483647 1 2 3 0 0 0 179.9999\n}\nNULL \"N\" { KEY 0 1e-40 0 0 0 0 0 }\n"));
    const Json project = built(handover);
    EXPECT_EQ(project["items"][1]["composition"]["layers"].size(), 2U) << summary_of(project);
    EXPECT_FALSE(loss_codes(handover).empty());
}

TEST(JsxScript, HasTheNestedCompositionsOfAScene) {
    constexpr int kDeep = 1024;  // the root among them; the language allows no more
    std::string open;
    std::string close;
    for (int i = 1; i < kDeep; ++i) {
        open += "COMPOSITION NRM \"C" + std::to_string(i) + "\" {\n";
        close += "}";
    }
    const Json project = built(of_text(scene_text("", open + close + "\n", "")));
    ASSERT_EQ(project["items"].size(), 2U * kDeep) << "a folder and a composition each";
    std::size_t item = 1;
    int depth = 1;
    while (!project["items"][item]["composition"]["layers"].empty()) {
        item = project["items"][item]["composition"]["layers"][0]["item"];
        ++depth;
    }
    EXPECT_EQ(depth, kDeep);
}

}  // namespace
