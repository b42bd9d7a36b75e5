#include "cli/scene/scene_reading.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/special_files.h"
#include "support/temporary_folder.h"

namespace {

using cli::ExitCode;
using cli::SceneReading;

std::string nested(int levels) {
    std::string text = "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\n";
    for (int i = 0; i < levels; ++i) {
        text += "COMPOSITION NRM \"c\" {\n";
    }
    return text + std::string(static_cast<std::size_t>(levels), '}') + "\n";
}

struct Case {
    const char* name;
    std::string text;
    const char* code;  ///< of the error; empty for a file that is read
    const char* place;
};

const std::string kSettings = "VORTAN XR COMPOSITION\nRESOLUTION 8 8 FROM 0 TO 9 RANGE 10 FPS 25\n";

const Case kCases[] = {
    {"sound", nested(1), "", ""},
    {"deepest allowed", nested(1024), "", ""},
    {"one level deeper", nested(1025), "nesting-too-deep", "1027:1"},
    {"empty", "", "empty-file", "1:1"},
    {"shorter than nine bytes", "VORTAN X", "not-importable", "1:1"},
    {"nine bytes and nothing more", "VORTAN XR", "word-cut-by-end", "1:8"},
    {"lower case", "vortan xr COMPOSITION\n", "not-importable", "1:1"},
    {"two blanks", "VORTAN  XR COMPOSITION\n", "not-importable", "1:1"},
    {"comment before the header", "/ hello\nVORTAN XR COMPOSITION\n", "not-importable", "1:1"},
    {"header that continues", "VORTAN XRX COMPOSITION\n", "bad-header", "1:8"},
    {"word in place of a number", "VORTAN XR COMPOSITION\nFPS abc\n", "expected-number", "2:5"},
    {"value out of range", "VORTAN XR COMPOSITION\nFPS 0\n", "out-of-range", "2:5"},
    {"misspelt keyword", "VORTAN XR COMPOSITION\nFSP 25\n", "unknown-setting", "2:1"},
    {"setting that is missing", "VORTAN XR COMPOSITION\nFPS 25 COMPOSITION NRM \"c\" {}\n", "missing-setting",
     "2:8"},
    {"word of 511 characters is ignored",
     kSettings + "COMPOSITION NRM \"c\" { " + std::string(511, 'a') + " }\n", "", ""},
    {"word of 512 characters", kSettings + "COMPOSITION NRM \"c\" { " + std::string(512, 'a') + " }\n",
     "word-too-long", "3:23"},
    {"name in single quotes", kSettings + "COMPOSITION NRM 'c' { }\n", "expected-name", "3:17"},
    {"text that is never closed", kSettings + "COMPOSITION NRM \"c\n", "unclosed-string", "3:17"},
    {"blend word in quotes", kSettings + "COMPOSITION \"NRM\" \"c\" { }\n", "expected-blend-mode", "3:13"},
    {"footage on the last line without its end",
     kSettings + "COMPOSITION NRM \"c\" {\nFILE NRM PREMUL \"a.tif\"", "unended-path-line", "4:17"},
    {"footage without a closing quote", kSettings + "COMPOSITION NRM \"c\" {\nFILE NRM PREMUL \"a.tif\n}\n",
     "unclosed-path", "4:17"},
    {"block that is never closed", kSettings + "COMPOSITION NRM \"c\" {\n", "unexpected-end", "4:1"},
    {"camera key without its field of view",
     kSettings + "COMPOSITION NRM \"c\" { }\nCAMERA \"c\" { KEY 1 0 0 0 0 0 0 }\n", "expected-number",
     "4:32"},
    {"colour of a null", kSettings + "COMPOSITION NRM \"c\" { }\nNULL \"n\" { COLOR 1 1 1 }\n",
     "unknown-entry", "4:12"},
    {"brace after the composition", kSettings + "COMPOSITION NRM \"c\" { } }\n", "expected-section", "3:25"},
};

TEST(SceneReading, EveryRefusalHasItsCodeAndPlace) {
    const TemporaryFolder folder;
    for (const Case& one : kCases) {
        const SceneReading reading = cli::read_scene(folder.write("shot.aec", one.text));
        const bool refused = *one.code != '\0';
        EXPECT_EQ(reading.code, refused ? ExitCode::refused : ExitCode::fine) << one.name;
        ASSERT_EQ(reading.error.has_value(), refused) << one.name;
        if (refused) {
            EXPECT_STREQ(reading.error->code.name(), one.code) << one.name;
            EXPECT_EQ(
                std::to_string(*reading.error->at.line) + ':' + std::to_string(*reading.error->at.column),
                one.place)
                << one.name;
        }
    }
}

TEST(SceneReading, ErrorFromTheManual) {
    const TemporaryFolder folder;
    const SceneReading reading =
        cli::read_scene(folder.write("shot.aec", "VORTAN XR COMPOSITION\nFPS \"abc\"\n"));
    ASSERT_TRUE(reading.error);
    EXPECT_EQ(reading.error->reason, "expected a number after FPS, found the text \"abc\"");
    EXPECT_EQ(*reading.error->source_line, "FPS \"abc\"");
}

// What a watch throws passes through the plug-in's readers, wherever they are: the sanitizers see what they
// leave behind.
TEST(SceneReading, AWatchEndsTheReadingAnywhere) {
    constexpr int kBlocks = 3000;
    std::string text =
        "VORTAN XR COMPOSITION\nRESOLUTION 4 4\nFROM 0\nTO 9\nRANGE 10\nFPS 25\nCOMPOSITION NRM \"a\" {\n";
    for (int i = 0; i < kBlocks; ++i) {
        text += "WORD FILE NRM STRAIGHT \"a.tif\"\n";
    }
    text += "}\nFILE <-> STRAIGHT \"b.tif\"\nCAMERA \"c\" {\n";
    for (int i = 0; i < kBlocks; ++i) {
        // The second is no plain number, so it takes another way through the readers.
        text += "KEY 0 1 2 3 4 5 6 7\nKEY 1 0x1 2 3 4 5 6 7\n";
    }
    text += "}\n";
    const TemporaryFolder folder;
    const std::string path = folder.write("shot.aec", text);

    std::vector<std::int64_t> places;
    const auto note = [&](std::int64_t read_bytes, std::uint64_t file_bytes) {
        EXPECT_EQ(file_bytes, text.size());
        places.push_back(read_bytes);
    };
    EXPECT_FALSE(cli::read_scene(path, note).error);
    // One event in 1024 of 5 settings, 6000 entries of the composition, one of the top level, and 6000 keys.
    EXPECT_EQ(places.size(), 12U);
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    for (std::size_t stop = 0; stop < places.size(); ++stop) {
        std::size_t told = 0;
        EXPECT_THROW((void)cli::read_scene(path,
                                           [&](std::int64_t read_bytes, std::uint64_t) {
                                               EXPECT_EQ(read_bytes, places[told]);
                                               if (told++ == stop) {
                                                   throw std::runtime_error("enough");
                                               }
                                           }),
                     std::runtime_error);
        EXPECT_EQ(told, stop + 1);
    }
}

TEST(SceneReading, UnreadableFilesAreNotRefused) {
    const TemporaryFolder folder;
    make_pipe(folder.path("pipe"));
    for (const std::string& path : {folder.path("missing.aec"), folder.folder().string(), folder.path("pipe"),
                                    std::string("/dev/null"), std::string()}) {
        const SceneReading reading = cli::read_scene(path);
        EXPECT_EQ(reading.code, ExitCode::cannot_read_or_write) << path;
        ASSERT_TRUE(reading.error) << path;
        EXPECT_STREQ(reading.error->code.name(), "cannot-read") << path;
    }
}

TEST(SceneReading, TwoGigabytesAreTooMuch) {
    const TemporaryFolder folder;
    const std::string path = folder.write("big.aec", "VORTAN XR COMPOSITION\n");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 31);  // sparse: takes no room
    const SceneReading reading = cli::read_scene(path);
    EXPECT_EQ(reading.code, ExitCode::refused);
    ASSERT_TRUE(reading.error);
    EXPECT_STREQ(reading.error->code.name(), "file-too-large");
}

TEST(SceneReading, DeepBlocksKeepTheInnermostNames) {
    const TemporaryFolder folder;
    std::string text = nested(20);
    text.insert(text.find('}'), "EXTRA ");
    const SceneReading reading = cli::read_scene(folder.write("shot.aec", text));
    ASSERT_EQ(reading.facts.passed.size(), 1U);
    ASSERT_EQ(reading.facts.passed[0].within.size(), 9U);
    EXPECT_EQ(reading.facts.passed[0].within.front(), "12 more compositions");
    EXPECT_EQ(reading.facts.passed[0].within.back(), "composition \"c\"");
}

}  // namespace
