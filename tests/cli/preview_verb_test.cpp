#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/preview/frame_choice.h"
#include "cli/terminal/child_process.h"
#include "image/image.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/program_run.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using nlohmann::json;

constexpr const char* kLantern = VXR_EXAMPLES_DIR "/interlaced/lantern_010.aec";
constexpr const char* kCourtyard = VXR_EXAMPLES_DIR "/square/courtyard_020.aec";

Ran preview(const std::string& scene, const std::string& output, const std::vector<std::string>& more = {}) {
    std::vector<std::string> words = {"preview", "--bundle", VXR_BUNDLE_PATH, scene, "-o", output};
    words.insert(words.end(), more.begin(), more.end());
    return run(words);
}

std::vector<std::string> names_in(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

struct NameCase {
    const char* why;
    const char* path;
    std::int64_t number;
    const char* named;
};

TEST(FrameChoice, NumberSignsBecomeTheNumber) {
    const NameCase cases[] = {
        {"padded to their length", "a.####.png", 17, "a.0017.png"},
        {"a longer number keeps all its digits", "a.##.png", 1234, "a.1234.png"},
        {"the last run counts", "#1.##.png", 3, "#1.03.png"},
        {"folders keep theirs", "a##/b#.png", 5, "a##/b5.png"},
        {"the end of a name is one, too", "a#", 0, "a0"},
    };
    for (const NameCase& one : cases) {
        ASSERT_TRUE(cli::has_number_signs(one.path)) << one.why;
        EXPECT_EQ(cli::numbered_path(one.path, one.number), one.named) << one.why;
    }
    EXPECT_FALSE(cli::has_number_signs("a##/b.png"));
    EXPECT_FALSE(cli::has_number_signs("frame.png"));
}

struct ChoiceCase {
    const char* why;
    cli::FrameChoice choice;
    std::vector<std::int64_t> frames;
};

TEST(FrameChoice, OfTenFrames) {
    const ChoiceCase cases[] = {
        {"all without a choice", {}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {"one", {4, {}, {}, {}}, {4}},
        {"both ends belong to a range", {{}, 2, 4, {}}, {2, 3, 4}},
        {"every third of all", {{}, {}, {}, 3}, {0, 3, 6, 9}},
        {"every third of a range, from its beginning", {{}, 1, 8, 3}, {1, 4, 7}},
        {"the last frame is there", {{}, 9, 9, {}}, {9}},
        {"the one after it is not", {{}, 9, 10, {}}, {}},
        {"nor is a single one", {10, {}, {}, {}}, {}},
    };
    for (const ChoiceCase& one : cases) {
        std::string problem;
        EXPECT_EQ(cli::chosen_frames(one.choice, 10, problem), one.frames) << one.why;
        EXPECT_EQ(problem.empty(), !one.frames.empty()) << one.why;
    }
}

TEST(FrameChoice, RangesAreTwoNumbersInOrder) {
    for (const char* wrong : {"", "3", "-3", "3-", "4-3", "a-b", "1-2-3", "1 - 2"}) {
        cli::FrameChoice choice;
        EXPECT_FALSE(cli::parse_frame_range(wrong, choice)) << wrong;
    }
    cli::FrameChoice choice;
    EXPECT_TRUE(cli::parse_frame_range("17-17", choice));
    EXPECT_EQ(choice.first, 17);
    EXPECT_EQ(choice.last, 17);
}

TEST(PreviewVerb, BytesDoNotDependOnTheProcessors) {
    const TemporaryFolder folder;
    const std::string one = folder.path("one.##.png");
    const std::string many = folder.path("many.##.png");
    const Ran alone = preview(kLantern, one, {"--frames", "19-20", "--jobs", "1"});
    const Ran together = preview(kLantern, many, {"--frames", "19-20", "--jobs", "7"});
    EXPECT_EQ(alone.code, together.code);
    EXPECT_EQ(alone.err, together.err);
    for (int frame = 19; frame <= 20; ++frame) {
        const std::string bytes = content_of(cli::numbered_path(one, frame));
        EXPECT_FALSE(bytes.empty());
        EXPECT_EQ(bytes, content_of(cli::numbered_path(many, frame))) << frame;
    }
}

TEST(PreviewVerb, WritesTheFramesThatWereAskedFor) {
    const TemporaryFolder folder;
    const Ran ran =
        preview(kCourtyard, folder.path("f.####.png"), {"--frames", "1-8", "--every", "3", "--json"});
    EXPECT_EQ(ran.code, ExitCode::fine) << ran.err;
    EXPECT_EQ(names_in(folder.path("")),
              (std::vector<std::string>{"f.0001.png", "f.0004.png", "f.0007.png"}));
    const json document = json::parse(ran.out);
    EXPECT_EQ(document["composition"]["name"], "Courtyard 020");
    EXPECT_EQ(document["composition"]["frames"], 9);
    EXPECT_EQ(document["composition"]["rate_fps"], 24.0);
    EXPECT_EQ(document["frames"].size(), 3U);
    EXPECT_EQ(document["frames"][1]["frame"], 4);
    EXPECT_EQ(document["frames"][1]["output"], folder.path("f.0004.png"));
}

TEST(PreviewVerb, SaysOnceWhatIsMissingAndWritesTheRest) {
    const TemporaryFolder folder;
    const Ran ran = preview(kLantern, folder.path("f.##.png"), {"--frames", "19-20", "--json"});
    EXPECT_EQ(ran.code, ExitCode::footage_missing);
    const json document = json::parse(ran.out);
    ASSERT_EQ(document["diagnostics"].size(), 1U);
    EXPECT_EQ(document["diagnostics"][0]["code"], "placeholder-shown");
    EXPECT_EQ(document["diagnostics"][0]["reason"], "\"dust0017.tif\" is missing");
    EXPECT_EQ(document["frames"].size(), 2U);
    EXPECT_EQ(document["width_px"], 763);  // 720 pixels, 1.06 times as wide
}

TEST(PreviewVerb, FormatsWithoutAlphaGetThePictureOnBlack) {
    const TemporaryFolder folder;
    const std::string scene = std::string(VXR_EXAMPLES_DIR) + "/square/courtyard_020.aec";
    // Nothing is shown at frame 0, where the layers have not begun.
    ASSERT_EQ(preview(scene, folder.path("a.jpg"), {"--frame", "0"}).code, ExitCode::fine);
    const image::Reading reading = image::read(folder.path("a.jpg"));
    ASSERT_TRUE(reading.texture.has_value());
    EXPECT_TRUE(reading.texture->alphas.empty());
    EXPECT_LE(reading.texture->pixels[0], 1);
}

struct WrongUse {
    const char* why;
    std::string output;
    std::vector<std::string> options;
    const char* said;
};

TEST(PreviewVerb, WrongUseWritesNothing) {
    const TemporaryFolder folder;
    const WrongUse cases[] = {
        {"several frames in one file", "a.png", {"--frames", "1-2"}, "several frames need ####"},
        {"every frame in one file", "a.png", {"--every", "2"}, "several frames need ####"},
        {"one frame and a range", "a.#.png", {"--frame", "1", "--frames", "1-2"}, "--frame excludes"},
        {"a range past the end", "a.#.png", {"--frames", "5-9"}, "frame 9 is not in the composition"},
        {"a range backwards", "a.#.png", {"--frames", "5-4"}, "is not A-B"},
        {"every 0th", "a.#.png", {"--every", "0"}, "is not a number from 1"},
        {"no such format", "a.xyz", {}, "no image format has the extension of"},
        {"no such composition",
         "a.png",
         {"--comp", "shadow pass"},
         "there are \"Courtyard 020\", \"Shadow pass\""},
    };
    for (const WrongUse& one : cases) {
        const Ran ran = preview(kCourtyard, folder.path(one.output), one.options);
        EXPECT_EQ(ran.code, ExitCode::usage) << one.why;
        EXPECT_NE(ran.err.find(one.said), std::string::npos) << one.why << '\n' << ran.err;
    }
    EXPECT_TRUE(names_in(folder.path("")).empty());
}

/// What ffprobe says of a film's only stream: "codec_name=h264\nwidth=764\n".
std::string film_facts(const std::string& film, const std::string& members) {
    const ProcessResult probed =
        run_process({"/usr/bin/ffprobe", "-v", "error", "-count_frames", "-show_entries", "stream=" + members,
                     "-of", "default=noprint_wrappers=1", film});
    EXPECT_EQ(probed.exit_code, 0) << probed.err;
    return probed.out;
}

// script/bootstrap installs it where tests run; for Windows there is none.
#ifdef _WIN32
#define VXR_NEEDS_FFMPEG() GTEST_SKIP() << "there is no ffmpeg for Windows here"
#else
#define VXR_NEEDS_FFMPEG() ASSERT_TRUE(cli::find_program("ffmpeg")) << "script/bootstrap installs ffmpeg"
#endif

TEST(PreviewVerb, AFilmOfFewFramesLastsNoLongerThanTheComposition) {
    VXR_NEEDS_FFMPEG();
    struct StepCase {
        const char* why;
        const char* every;
        const char* facts;  // of a composition of 9 frames at 24 a second
    };
    const StepCase cases[] = {
        {"every eighth is two frames", "8", "r_frame_rate=3/1\nnb_read_frames=2\n"},
        {"every ninth is one", "9", "r_frame_rate=8/3\nnb_read_frames=1\n"},
        {"more than there are", "100000", "r_frame_rate=8/3\nnb_read_frames=1\n"},
        {"beyond 32 bits", "4294967296", "r_frame_rate=8/3\nnb_read_frames=1\n"},
        {"the largest number", "9223372036854775807", "r_frame_rate=8/3\nnb_read_frames=1\n"},
    };
    for (const StepCase& one : cases) {
        SCOPED_TRACE(one.why);
        const TemporaryFolder folder;
        const Ran ran = preview(kCourtyard, folder.path("a.mp4"), {"--every", one.every});
        ASSERT_EQ(ran.code, ExitCode::fine) << ran.err;
        EXPECT_EQ(film_facts(folder.path("a.mp4"), "r_frame_rate,nb_read_frames"), one.facts);
    }
}

TEST(PreviewVerb, AnOverlaySaysWhatIsWrongWithTheSceneFirst) {
    struct BrokenCase {
        const char* why;
        const char* scene;
        ExitCode code;
        const char* said;
    };
    const BrokenCase cases[] = {
        {"there is none", "none.aec", ExitCode::cannot_read_or_write, "[cannot-read]"},
        {"no composition file", "text.aec", ExitCode::refused, "error:"},
        {"no camera has a key", "empty.aec", ExitCode::usage, "no camera has a key"},
    };
    const TemporaryFolder folder;
    folder.write("text.aec", "text\n");
    folder.write("empty.aec",
                 "VORTAN XR COMPOSITION\nRESOLUTION 64 48 FROM 0 TO 9 RANGE 10 FPS 25\nCOMPOSITION NRM "
                 "\"Main\" { }\n");
    for (const BrokenCase& one : cases) {
        SCOPED_TRACE(one.why);
        const Ran ran = preview(folder.path(one.scene), folder.path("a.png"), {"--overlay", "nulls"});
        EXPECT_EQ(ran.code, one.code) << ran.err;
        EXPECT_NE(ran.err.find(one.said), std::string::npos) << ran.err;
    }
}

TEST(PreviewVerb, MakesAFilmOfEveryFrame) {
    VXR_NEEDS_FFMPEG();
    const TemporaryFolder folder;
    const Ran ran = preview(kLantern, folder.path("a.mp4"), {"--frames", "16-20", "--every", "2", "--json"});
    EXPECT_EQ(ran.code, ExitCode::footage_missing) << ran.err;
    // 763 pixels are padded to an even number, and every other frame of 25 a second are 12.5.
    EXPECT_EQ(film_facts(folder.path("a.mp4"), "codec_name,width,height,r_frame_rate,nb_read_frames"),
              "codec_name=h264\nwidth=764\nheight=576\nr_frame_rate=25/2\nnb_read_frames=3\n");
    EXPECT_EQ(names_in(folder.path("")), std::vector<std::string>{"a.mp4"});
    const json document = json::parse(ran.out);
    ASSERT_EQ(document["frames"].size(), 3U);
    EXPECT_EQ(document["frames"][2]["frame"], 20);
    EXPECT_EQ(document["frames"][2]["output"], folder.path("a.mp4"));
    // A frame of the film is the picture on black, within what its compression loses.
    ASSERT_EQ(preview(kLantern, folder.path("20.png"), {"--frame", "20"}).code, ExitCode::footage_missing);
    const ProcessResult taken = run_process({"/usr/bin/ffmpeg", "-v", "error", "-i", folder.path("a.mp4"),
                                             "-vf", "select=eq(n\\,2),scale=in_color_matrix=bt709",
                                             "-frames:v", "1", folder.path("taken.png")});
    ASSERT_EQ(taken.exit_code, 0) << taken.err;
    const image::Reading film = image::read(folder.path("taken.png"));
    const image::Reading picture = image::read(folder.path("20.png"));
    ASSERT_TRUE(film.texture && picture.texture);
    ASSERT_EQ(film.texture->width_px, 764);
    ASSERT_EQ(picture.texture->width_px, 763);
    double difference = 0;
    for (std::size_t y = 0; y < 576; ++y) {
        for (std::size_t i = 0; i < 763 * 3; ++i) {
            difference += std::abs(int{film.texture->pixels[y * 764 * 3 + i]} -
                                   int{picture.texture->pixels[y * 763 * 3 + i]});
        }
    }
    EXPECT_LT(difference / (576 * 763 * 3), 3);
}

TEST(PreviewVerb, AFilmThatFailsLeavesTheOldOne) {
    VXR_NEEDS_FFMPEG();
    const TemporaryFolder folder;
    const std::string old = folder.write("a.mp4", "old");
    // A program of this name that reads some frames and fails.
    folder.make_folder("bin");
    folder.write("bin/ffmpeg", "#!/bin/sh\nhead -c 100000 > /dev/null\necho broken >&2\nexit 3\n");
    std::filesystem::permissions(folder.path("bin/ffmpeg"), std::filesystem::perms::owner_all);
    const ProcessResult failed = run_process({"/usr/bin/env", "PATH=" + folder.path("bin") + ":/usr/bin:/bin",
                                              VXR_PROGRAM, "preview", kCourtyard, "-o", old});
    EXPECT_EQ(failed.exit_code, 3);
    EXPECT_NE(failed.err.find("a.mp4: ffmpeg made no film: broken"), std::string::npos) << failed.err;
    EXPECT_EQ(content_of(old), "old");
    const ProcessResult missing = run_process(
        {"/usr/bin/env", "PATH=" + folder.path("none"), VXR_PROGRAM, "preview", kCourtyard, "-o", old});
    EXPECT_EQ(missing.exit_code, 3);
    EXPECT_NE(missing.err.find("films are made by ffmpeg, which is not installed"), std::string::npos)
        << missing.err;
    EXPECT_EQ(content_of(old), "old");
    EXPECT_EQ(names_in(folder.path("")), (std::vector<std::string>{"a.mp4", "bin"}));
}

TEST(PreviewVerb, ASceneThatIsRefusedIsNotDrawn) {
    const TemporaryFolder folder;
    const std::string scene = folder.write("a.aec", "VORTAN XR COMPOSITION\nRESOLUTION 0 0\n");
    const Ran ran = preview(scene, folder.path("a.png"), {"--json"});
    EXPECT_EQ(ran.code, ExitCode::refused);
    EXPECT_TRUE(json::parse(ran.out)["composition"].is_null());
    EXPECT_EQ(names_in(folder.path("")), std::vector<std::string>{"a.aec"});
}

TEST(PreviewVerb, AFolderThatIsNotThereIsNamed) {
    const TemporaryFolder folder;
    const Ran ran = preview(kCourtyard, folder.path("none/a.##.png"), {"--frames", "2-5"});
    EXPECT_EQ(ran.code, ExitCode::cannot_read_or_write);
    const std::size_t named = ran.err.find("none/a.02.png");
    EXPECT_NE(named, std::string::npos) << ran.err;
    EXPECT_EQ(ran.err.rfind("none/a.02.png"), named) << "named once: " << ran.err;
}

TEST(PreviewSheet, ShowsEveryPassAndCompositionAndMarksWhatIsWrong) {
    struct SheetCase {
        const char* why;
        const char* scene;
        std::vector<std::string> more;
        ExitCode code;
        const char* said;
        std::int32_t width_px;  // margins of 24, gaps of 16, columns of 384
    };
    const SheetCase cases[] = {
        // Six compositions with six layers of footage; one is missing, and the four sequences end early.
        {"twelve pictures in four columns",
         kLantern,
         {},
         ExitCode::footage_missing,
         "12 pictures, 5 marked",
         1632},
        // The composition of the light passes, and the two in it.
        {"one composition",
         kLantern,
         {"--comp", "Light passes"},
         ExitCode::footage_missing,
         "3 pictures, 2 marked",
         832},
        {"nothing is wrong", kCourtyard, {}, ExitCode::fine, "14 pictures, 0 marked", 1632},
        {"a frame past the end is the last",
         kCourtyard,
         {"--frame", "100000"},
         ExitCode::fine,
         "14 pictures, 0 marked",
         1632},
    };
    const TemporaryFolder folder;
    for (const SheetCase& one : cases) {
        SCOPED_TRACE(one.why);
        const std::string output = folder.path("sheet.png");
        std::vector<std::string> more = one.more;
        more.emplace_back("--sheet");
        const Ran ran = preview(one.scene, output, more);
        EXPECT_EQ(ran.code, one.code) << ran.err;
        EXPECT_NE(ran.out.find(one.said), std::string::npos) << ran.out;
        const image::Reading sheet = image::read(output);
        ASSERT_TRUE(sheet.texture.has_value());
        EXPECT_EQ(sheet.texture->width_px, one.width_px);
    }
}

TEST(PreviewSheet, RefusesWhatItCannotDo) {
    struct RefusalCase {
        const char* why;
        std::vector<std::string> more;
        const char* said;
    };
    const RefusalCase cases[] = {
        {"ranges are of frames", {"--frames", "1-2"}, "--sheet excludes"},
        {"a plan is another picture", {"--plan"}, "--sheet excludes"},
        {"there is no such composition", {"--comp", "None"}, "no composition is called"},
    };
    const TemporaryFolder folder;
    for (const RefusalCase& one : cases) {
        SCOPED_TRACE(one.why);
        std::vector<std::string> more = one.more;
        more.emplace_back("--sheet");
        const Ran ran = preview(kLantern, folder.path("sheet.png"), more);
        EXPECT_EQ(ran.code, ExitCode::usage);
        EXPECT_NE(ran.err.find(one.said), std::string::npos) << ran.err;
        EXPECT_FALSE(std::filesystem::exists(folder.path("sheet.png")));
    }
}

}  // namespace
