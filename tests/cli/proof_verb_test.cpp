#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/scene/written_number.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using nlohmann::json;

Ran prove(const std::string& scene, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"proof", "--bundle", VXR_BUNDLE_PATH, scene};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
}

json target_named(const json& camera, const std::string& name) {
    for (const json& target : camera["targets"]) {
        if (target["target"] == name) {
            return target;
        }
    }
    ADD_FAILURE() << "no target " << name;
    return {};
}

TEST(ProofVerb, ExamplesAreHandedOverWithinTheGoal) {
    int cameras = 0;
    for (const char* name : {"interlaced/lantern_010.aec", "keyframes/orbit_030.aec",
                             "square/courtyard_020.aec", "textured/shelf_040.aec"}) {
        const Ran ran = prove(std::string(VXR_EXAMPLES_DIR "/") + name, {"--json", "--points", "8"});
        EXPECT_EQ(ran.code, ExitCode::fine) << name << ran.err;
        const json document = json::parse(ran.out);
        for (const json& camera : document["cameras"]) {
            ++cameras;
            int judged = 0;
            for (const json& target : camera["targets"]) {
                if (target["judged"]) {
                    ++judged;
                    EXPECT_LT(target["largest_px"], 0.05) << name << target;
                    // Motion blur is as good here.
                    EXPECT_LT(target["between_frames_px"], 0.05) << name << target;
                    EXPECT_GT(target["compared"], 100) << name << target;
                }
            }
            EXPECT_GE(judged, 3) << name;
        }
    }
    EXPECT_EQ(cameras, 3);
}

struct AspectCase {
    const char* aspect;
    const char* heading;
    double shift_px;
};

// In PAL pixels, seen at 45 degrees. At 90 degrees x is the depth: with the aspect c of the
// composition, 1.06, a corner is at (360 / c / c, 288 / c) from the middle, which is (39.601, 16.302) from
// (360, 288): 42.826. The others are from the short Python program of pixel_aspect_check_test.cpp.
const AspectCase kAspects[] = {{"1.0667", "30", 20.872}, {"1.4222", "30", 126.453}, {"1.0667", "90", 42.825}};

TEST(ProofVerb, AgreesWithTheWarningAboutTurnedCameras) {
    for (const AspectCase& one : kAspects) {
        const TemporaryFolder folder;
        const std::string scene = folder.write(
            "a.aec", "VORTAN XR COMPOSITION\nRESOLUTION 720 576 FROM 0 TO 9 RANGE 10 FPS 25 ASPECT " +
                         std::string(one.aspect) +
                         "\nCOMPOSITION NRM \"M\" { }\nCAMERA \"c\" {\nKEY 0 0 0 0 " + one.heading +
                         " 0 0 45\n}\n");
        const json document = json::parse(prove(scene, {"--json"}).out);
        const json stretched = target_named(document["cameras"][0], "imported, stretched");
        const double shift_px = stretched["in_frame_px"];
        EXPECT_NEAR(shift_px, one.shift_px, 0.001) << one.aspect << ' ' << one.heading;
        EXPECT_EQ(stretched["causes"][0]["cause"], "stretched-space");
        EXPECT_LT(target_named(document["cameras"][0], "imported")["in_frame_px"], 1e-9);
        EXPECT_LT(target_named(document["cameras"][0], "corrected")["in_frame_px"], 0.05);
        const json warnings = json::parse(run({"check", "--json", scene}).out);
        bool warned = false;
        for (const json& warning : warnings["files"][0]["diagnostics"]) {
            if (warning["code"] == "aspect-turns-camera") {
                warned = true;
                EXPECT_NE(
                    warning["reason"].get<std::string>().find("up to " + cli::measured_text(shift_px) + " "),
                    std::string::npos)
                    << warning["reason"];
            }
        }
        EXPECT_TRUE(warned) << one.aspect << ' ' << one.heading;
    }
}

TEST(ProofVerb, ShowsTheVerdictFirst) {
    const Ran ran = prove(VXR_EXAMPLES_DIR "/square/courtyard_020.aec");
    EXPECT_EQ(ran.code, ExitCode::fine);
    EXPECT_NE(ran.out.find(
                  "courtyard_020.aec: what is handed over is where the scene has it, within 0.05 pixels\n"),
              std::string::npos);
    EXPECT_NE(ran.out.find("curve-between-keys"), std::string::npos);
    EXPECT_NE(ran.out.find("how a null is turned has no truth"), std::string::npos);
}

TEST(ProofVerb, ChecksWarningsOfDriftsAndBendsSayWhatItFinds) {
    const TemporaryFolder folder;
    const struct {
        const char* reason;
        const char* object;
        const char* code;
        double units_per_px;  // of a camera, half as far away as its point of interest; 0: nulls are in units
    } kCases[] = {
        {"a null holds, and then moves",
         "NULL \"n\" {\n KEY 0 0 0 0 0 0 0\n KEY 60 0 0 0 0 0 0\n KEY 100 300 50 -20 0 0 0\n}\n",
         "hold-drifts", 0},
        {"a null holds between two moves",
         "NULL \"n\" {\n KEY 0 0 0 0 0 0 0\n KEY 20 90 0 0 0 0 0\n KEY 80 90 0 0 0 0 0\n KEY 100 180 0 0 0 0 "
         "0\n}\n",
         "hold-drifts", 0},
        {"the way is a mirror of itself, so it is farthest from the line, and nowhere early or late, in its "
         "middle",
         "NULL \"n\" {\n KEY 0 -50 -80 0 0 0 0\n KEY 1 -50 0 0 0 0 0\n KEY 99 50 0 0 0 0 0\n KEY 100 50 -80 "
         "0 0 0 0\n"
         "}\n",
         "path-bends", 0},
        // At 90 degrees and 360 pixels to the side, 500 away.
        {"a camera holds, and then moves sideways with its point of interest",
         "CAMERA \"c\" {\n KEY 0 0 0 0 0 0 0 90 1000\n KEY 60 0 0 0 0 0 0 90 1000\n KEY 100 300 0 0 0 0 0 90 "
         "1000\n}\n",
         "hold-drifts", 500.0 / 360},
    };
    for (const auto& one : kCases) {
        const std::string scene = folder.write(
            "shot.aec",
            std::string("VORTAN XR COMPOSITION\nRESOLUTION 720 576 FROM 0 TO 100 RANGE 101 FPS 25\n"
                        "COMPOSITION NRM \"Main\" {\n}\n") +
                one.object);
        const json proof = json::parse(prove(scene, {"--json"}).out);
        double units = 0;
        if (one.units_per_px == 0) {
            ASSERT_EQ(proof["nulls"][0]["distances"][0]["target"], "imported");
            units = proof["nulls"][0]["distances"][0]["largest"].get<double>();
        } else {
            // Only what lies between the two equal keys: later the camera leaves its way as well.
            const json held = json::parse(prove(scene, {"--json", "--points", "1", "--at", "30"}).out);
            for (const json& point : held["cameras"][0]["frames"][0]["points"]) {
                if (point["point"] == "a corner at half the target distance") {
                    const double px =
                        std::abs(point["truth"][0].get<double>() - point["landed"][0][0].get<double>());
                    units = one.units_per_px * px;
                }
            }
        }
        EXPECT_GT(units, 1) << one.reason;
        const json check = json::parse(run({"check", "--json", scene}).out);
        std::string said;
        for (const json& warning : check["files"][0]["diagnostics"]) {
            if (warning["code"] == one.code) {
                said = warning["reason"];
            }
        }
        EXPECT_NE(said.find("by about " + cli::measured_text(units) + " units"), std::string::npos)
            << one.reason << ": " << units << ", and: " << said;
    }
}

TEST(ProofVerb, ListsPointsAtFrames) {
    const std::string scene = VXR_EXAMPLES_DIR "/square/courtyard_020.aec";
    const Ran ran = prove(scene, {"--json", "--points", "1", "--at", "4", "--at", "5.5"});
    EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
    const json document = json::parse(ran.out);
    const json& frames = document["cameras"][0]["frames"];
    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames[1]["frame"], 5.5);
    // The aim of frame 4 is in the middle of the picture, for the scene and for what is handed over.
    const json& aim = frames[0]["points"][0];
    EXPECT_EQ(aim["point"], "a point around the aim");
    EXPECT_NEAR(aim["truth"][0], 320, 1e-6);
    EXPECT_NEAR(aim["truth"][1], 180, 1e-6);
    ASSERT_EQ(aim["landed"].size(), document["targets"].size());
    for (std::size_t i = 0; i < document["targets"].size(); ++i) {
        if (document["targets"][i] == "USD") {
            EXPECT_NEAR(aim["landed"][i][0], 320, 0.05);
        }
    }
    EXPECT_FALSE(json::parse(prove(scene, {"--json", "--points", "1"}).out)["cameras"][0].contains("frames"));
    for (const std::vector<std::string>& wrong :
         {std::vector<std::string>{"--at", "4"}, std::vector<std::string>{"--json", "--at", "four"}}) {
        const Ran refused = prove(scene, wrong);
        EXPECT_EQ(refused.code, ExitCode::usage) << wrong.back();
        EXPECT_NE(refused.err.find("--at"), std::string::npos) << refused.err;
    }
}

TEST(ProofVerb, ASceneThatIsRefusedIsNotCompared) {
    const TemporaryFolder folder;
    const Ran ran = prove(folder.write("a.aec", "VORTAN XR COMPOSITION\nRESOLUTION 0 0\n"), {"--json"});
    EXPECT_EQ(ran.code, ExitCode::refused);
    EXPECT_TRUE(json::parse(ran.out)["cameras"].empty());
    EXPECT_EQ(prove(folder.path("none.aec")).code, ExitCode::cannot_read_or_write);
}

TEST(ProofVerb, ACameraWithoutAPictureHasNothingToCompare) {
    const TemporaryFolder folder;
    const std::string scene = folder.write(
        "a.aec",
        "VORTAN XR COMPOSITION\nRESOLUTION 720 576 FROM 0 TO 0 RANGE 1 FPS 25\nCOMPOSITION NRM \"M\" { }\n"
        "CAMERA \"c\" {\nKEY 0 0 0 0 0 0 0 0\n}\nCAMERA \"empty\" {\n}\n");
    const Ran ran = prove(scene, {"--json"});
    const json document = json::parse(ran.out);
    EXPECT_EQ(document["cameras"][0]["no_picture"], 1) << ran.err;
    EXPECT_EQ(document["cameras"][0]["targets"][0]["compared"], 0);
    EXPECT_EQ(document["cameras"][1]["targets"][0]["problem"], "the camera has no keys");
}

TEST(ProofVerb, DrawsWhereThePointsLand) {
    const TemporaryFolder folder;
    const std::string scene =
        folder.write("shot.aec",
                     "VORTAN XR COMPOSITION\nRESOLUTION 720 576 FROM 0 TO 9 RANGE 10 FPS 25\n"
                     "COMPOSITION NRM \"Main\" {\n}\nCAMERA \"</text>\u2028&\" {\n KEY 0 0 0 0 0 0 0 45\n "
                     "KEY 5 1 0 0 0 0 0 45\n"
                     " KEY 9 1 0.5 0 0 0 0 45\n}\n");
    const std::string picture = folder.path("shot.svg");
    ASSERT_EQ(prove(scene, {"--points", "8", "--picture", picture}).code, ExitCode::fine);
    // Read by another program, as a browser would: its texts, and its rings.
    const ProcessResult read =
        run_process({"python3", "-c",
                     "import sys, xml.etree.ElementTree as tree\n"
                     "svg = '{http://www.w3.org/2000/svg}'\n"
                     "root = tree.parse(sys.argv[1]).getroot()\n"
                     "print(ascii([one.text for one in root.iter(svg + 'text')]))\n"
                     "print(len([one for one in root.iter(svg + 'circle') if one.get('r') == '5']))",
                     picture});
    EXPECT_EQ(read.exit_code, 0) << read.err;
    // The curve leaves the line by some tenths of a pixel: a hundred times that can be seen.
    EXPECT_NE(read.out.find("</text>\\\\xe2\\\\x80\\\\xa8&, frame 6.33"), std::string::npos) << read.out;
    EXPECT_NE(read.out.find(": errors are drawn 100 times as large"), std::string::npos) << read.out;
    EXPECT_NE(read.out.find("corrected: at most 0"), std::string::npos) << read.out;
    EXPECT_GE(std::stoi(read.out.substr(read.out.find('\n') + 1)), 8) << read.out;
}

TEST(ProofVerb, DrawsNothingOntoWhatItReads) {
    const TemporaryFolder folder;
    const std::string scene =
        folder.write("shot.aec",
                     "VORTAN XR COMPOSITION\nRESOLUTION 4 4 FROM 0 TO 9 RANGE 10 FPS 25\n"
                     "COMPOSITION NRM \"Main\" {\n}\n");
    const Ran ran = prove(scene, {"--picture", scene});
    EXPECT_EQ(ran.code, ExitCode::usage) << ran.err;
    EXPECT_EQ(prove(scene, {"--picture", folder.path("gone/x.svg")}).code, ExitCode::cannot_read_or_write);
    EXPECT_TRUE(content_of(scene).starts_with("VORTAN XR"));
}

TEST(ProofVerb, AScriptToMeasureWithIsWholeOrAbsent) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("a.aec", content_of(VXR_EXAMPLES_DIR "/square/courtyard_020.aec"));
    const Ran written = prove(scene, {"--for-after-effects", folder.path("a.jsx")});
    EXPECT_EQ(written.code, ExitCode::fine) << written.err;
    EXPECT_NE(written.out.find("240 test points of 1 camera"), std::string::npos) << written.out;
    EXPECT_TRUE(content_of(folder.path("a.jsx")).ends_with("measure();\n})();\n"));
    EXPECT_EQ(prove(scene, {"--for-after-effects", scene}).code, ExitCode::usage);
    EXPECT_EQ(prove(scene, {"--for-after-effects", folder.path("a.jsx"), "--json"}).code, ExitCode::usage);
    const std::string refused = folder.write("b.aec", "VORTAN XR COMPOSITION\nRESOLUTION 0 0\n");
    EXPECT_EQ(prove(refused, {"--for-after-effects", folder.path("b.jsx")}).code, ExitCode::refused);
    EXPECT_FALSE(std::filesystem::exists(folder.path("b.jsx")));
}

TEST(ProofVerb, ATableThatCannotBeJudgedIsRefusedByName) {
    const TemporaryFolder folder;
    const std::string scene = VXR_EXAMPLES_DIR "/square/courtyard_020.aec";
    const Ran none = prove(scene, {"--compare", folder.path("none.tsv")});
    EXPECT_EQ(none.code, ExitCode::cannot_read_or_write);
    EXPECT_NE(none.err.find("cannot read"), std::string::npos) << none.err;
    EXPECT_EQ(none.out, "");
    const std::string other =
        folder.write("other.tsv", "vxr-measured\t1\nscene\tvxr-1\nasked\t2\nhost\t1\t8\t0\nend\t4\n");
    const Ran refused = prove(scene, {"--compare", other, "--json"});
    EXPECT_EQ(refused.code, ExitCode::refused);
    EXPECT_NE(refused.err.find("other.tsv, line 2: the table belongs to another scene"), std::string::npos)
        << refused.err;
    const json document = json::parse(refused.out);
    EXPECT_EQ(document["exit_code"], 1);
    EXPECT_TRUE(document["measured"].is_null());
    EXPECT_EQ(document["problems"].size(), 1U);
    // A file that claims a gibibyte is not read.
    const std::string large = folder.write("large.tsv", "");
    std::filesystem::resize_file(large, std::uintmax_t{1} << 30U);
    const Ran too_large = prove(scene, {"--compare", large});
    EXPECT_EQ(too_large.code, ExitCode::refused);
    EXPECT_NE(too_large.err.find("1073741824 bytes"), std::string::npos) << too_large.err;
    EXPECT_EQ(prove(scene, {"--compare", other, "--picture", other}).code, ExitCode::usage);
}

}  // namespace
