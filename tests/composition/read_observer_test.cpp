#include "composition/read/read_observer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "composition/parsed_text.h"
#include "composition/recording_observer.h"
#include "limit/limits.h"

namespace {

struct Failure {
    const char* why;
    std::string text;
    const char* event;  // the recorded on_failure
};

void expect_failures(std::initializer_list<Failure> cases) {
    for (const Failure& c : cases) {
        SCOPED_TRACE(c.why);
        RecordingObserver observer;
        EXPECT_EQ(ReadText(c.text, &observer).result, 0);
        ASSERT_FALSE(observer.events.empty());
        EXPECT_EQ(observer.events.back(), std::string("failure ") + c.event) << "the last event of all";
        EXPECT_EQ(observer.errors.size(), 1U);
        EXPECT_EQ(ReadText(c.text).result, 0) << "with or without an observer";
    }
}

// The header is 22 bytes and the settings one line of 49, so a root composition begins at 3:1@71.
constexpr const char* kRoot = "COMPOSITION NRM \"Main\" {\n";
std::string in_root(const std::string& rest) {
    return file_with(kRoot + rest);
}

TEST(ReadObserver, FailuresInHeaderAndSettings) {
    ASSERT_EQ(file_with("").size(), 71U);
    const std::string header = kHeader;
    expect_failures({
        {"header", "/ x\n VORTAM XR ",
         "2:2@5 bad-header: expected VORTAN at the beginning of the file, found \"VORTAM\""},
        {"second word", "VORTAN 5 ", "1:8@7 bad-header: expected XR after VORTAN, found the number \"5\""},
        {"third word", "VORTAN XR { ",
         "1:11@10 bad-header: expected COMPOSITION after VORTAN XR, found \"{\""},
        {"number missing", header + "RANGE 1\r\nFPS abc\r\n",
         "3:5@35 expected-number: expected a number after FPS, found \"abc\""},
        {"second number missing", header + "RESOLUTION 1 \"x\" ",
         "2:14@35 expected-number: expected a second number after RESOLUTION, found the text \"x\""},
        {"number out of range, directly followed by a line end", header + "FROM -1\n",
         "2:6@27 out-of-range: expected a number of 0 or more after FROM, found the number \"-1\""},
        {"aspect out of range", header + "ASPECT 100.5 ",
         "2:8@29 out-of-range: expected a number from 0.01 to 100 after ASPECT, found the number \"100.5\""},
        {"wrong word", header + "FIELDS BOTH ",
         "2:8@29 expected-word: expected NONE, EVEN or ODD after FIELDS, found \"BOTH\""},
        {"wrong word in quotes", header + "FIELDS 'ODD' ",
         "2:8@29 expected-word: expected NONE, EVEN or ODD after FIELDS, found the text \"ODD\" in single "
         "quotes"},
        {"unknown setting", header + "FPS 5 DEPTH ",
         "2:7@28 unknown-setting: expected a setting or COMPOSITION, found \"DEPTH\""},
        {"no setting", header + "FPS 5 6 ",
         "2:7@28 expected-setting: expected a setting or COMPOSITION, found the number \"6\""},
        {"settings missing", header + "FPS 5 TO 5 COMPOSITION NRM ",
         "2:12@33 missing-setting: expected RESOLUTION, FROM, RANGE before COMPOSITION, found "
         "\"COMPOSITION\""},
        {"end of the file after a line end", header + "FPS\n",
         "3:1@26 unexpected-end: expected a number after FPS, found the end of the file"},
        {"end of the file after a blank", header + "FPS ",
         "2:5@26 unexpected-end: expected a number after FPS, found the end of the file"},
        {"number cut off by the end", header + "FPS 25",
         "2:5@26 word-cut-by-end: expected a number after FPS, found a word cut off by the end of the file"},
        {"long word", header + "FPS " + std::string(600, 'x') + "\n",
         "2:5@26 word-too-long: expected a number after FPS, found a word of more than 511 characters"},
        {"byte that would be an empty text", header + "FPS " + std::string(1, '\0') + "\n",
         "2:5@26 expected-number: expected a number after FPS, found a NUL byte"},
        {"long text is quoted in part", header + "FPS \"" + std::string(100, 'x') + "\"\n",
         "2:5@26 expected-number: expected a number after FPS, found the text "
         "\"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx...\""},
    });
}

TEST(ReadObserver, FailuresInCompositions) {
    const std::string main = " in composition \"Main\"";
    expect_failures({
        {"blend word", file_with("COMPOSITION SUB \"a\" {"),
         "3:13@83 expected-blend-mode: expected NRM, ADD or MUL, found \"SUB\" in composition"},
        {"name", file_with("COMPOSITION NRM 'a' {"),
         "3:17@87 expected-name: expected a name in double quotes, found the text \"a\" in single quotes in "
         "composition"},
        {"name never closed", file_with("COMPOSITION NRM \"a\n\n {"),
         "3:17@87 unclosed-string: expected a name in double quotes, found a text without its closing quote "
         "in "
         "composition"},
        {"entry", in_root(" SOLID 5 }"),
         "4:8@103 expected-entry: expected FILE, FSEQ, COMPOSITION or \"}\", found the number \"5\" in "
         "composition "
         "\"Main\""},
        {"block never closed", in_root("}}").erase(in_root("").size()),
         "4:1@96 unexpected-end: expected FILE, FSEQ, COMPOSITION or \"}\", found the end of the file in "
         "composition "
         "\"Main\""},
        {"inside a nested one",
         in_root("COMPOSITION ADD \"Shadow\" {\nFILE NRM LEFT"
                 " "),
         "5:10@132 expected-alpha-mode: expected PREMUL or STRAIGHT, found \"LEFT\" in composition \"Main\" "
         "in "
         "composition \"Shadow\""},
        {"after a nested one", in_root("COMPOSITION ADD \"Shadow\" { }\nFILE 5 "),
         "5:6@130 expected-blend-mode: expected NRM, ADD or MUL, found the number \"5\" in composition "
         "\"Main\""},
        {"path missing", in_root("FILE NRM PREMUL x.tif\n"),
         "4:16@111 missing-path: expected a footage path in double quotes, found no double quote up to the "
         "end of the "
         "file in composition \"Main\""},
        {"path not closed", in_root("FILE NRM PREMUL \"x.tif\n\"\n"),
         "4:17@112 unclosed-path: expected a closing double quote on the line of the footage path, found the "
         "end of "
         "the line in composition \"Main\""},
        {"path empty", in_root("FILE NRM PREMUL\n \"\"\n"),
         "5:2@113 empty-path: expected a footage path in double quotes, found an empty path in composition "
         "\"Main\""},
        {"line of the path not ended", in_root("FILE NRM PREMUL \"x.tif\""),
         "4:17@112 unended-path-line: expected a line end after the footage path, found the end of the file "
         "in "
         "composition \"Main\""},
    });
}

TEST(ReadObserver, FailuresAfterTheRootComposition) {
    const std::string sections = "expected FILE, FSEQ, CAMERA, LIGHT, NULL or the end of the file, found ";
    const std::string mark = "expected <-> between FILE or FSEQ and the alpha word, found ";
    ASSERT_EQ(file_with_objects("").size(), 98U) << "what is appended begins at 5:1@98";
    const std::string word = "5:1@98 expected-section: " + sections + "\"SOLID\"";
    const std::string brace = "5:1@98 expected-section: " + sections + "\"}\"";
    const std::string no_mark = "5:6@103 expected-footage-mark: " + mark + "\"NRM\"";
    const std::string half_mark = "5:8@105 expected-footage-mark: " + mark + "\"=\"";
    expect_failures({
        {"word", file_with_objects("SOLID "), word.c_str()},
        {"brace", file_with_objects("}"), brace.c_str()},
        {"mark", file_with_objects("FILE NRM PREMUL \"x\"\n"), no_mark.c_str()},
        {"half a mark", file_with_objects("FILE <-="), half_mark.c_str()},
        {"camera without a brace", file_with_objects("CAMERA \"Camera\" KEY "),
         "5:17@114 expected-block: expected \"{\" after the name, found \"KEY\" in camera \"Camera\""},
        {"camera key too short", file_with_objects("CAMERA \"Camera\" {\nKEY 0 0 0 0 0 0 0\n}"),
         "7:1@134 expected-number: expected an eighth number after KEY, found \"}\" in camera \"Camera\""},
        {"camera entry", file_with_objects("CAMERA \"\" { ZOOM 5 }"),
         "5:13@110 unknown-entry: expected KEY or \"}\", found \"ZOOM\" in camera"},
        {"ten values", file_with_objects("CAMERA \"c\" { KEY 0 0 0 0 0 0 0 0 0 10 }"),
         "5:36@133 expected-entry: expected KEY or \"}\", found the number \"10\" in camera \"c\""},
        {"null entry", file_with_objects("NULL \"n\" { COLOR 1 1 1 }"),
         "5:12@109 unknown-entry: expected KEY or \"}\", found \"COLOR\" in null \"n\""},
        {"light entry", file_with_objects("LIGHT \"l\" { FALLOFF 5 }"),
         "5:13@110 unknown-entry: expected TYPE, SHADOW, COLOR, INTENSITY, ANGLE, KEY or \"}\", found "
         "\"FALLOFF\" in "
         "light \"l\""},
        {"light word", file_with_objects("LIGHT \"l\" { SHADOW spot }"),
         "5:20@117 expected-word: expected NONE, SOFT, HARD or AREA after SHADOW, found \"spot\" in light "
         "\"l\""},
        {"colour too short", file_with_objects("LIGHT \"l\" { COLOR 1 0.5 }"),
         "5:25@122 expected-number: expected a third number after COLOR, found \"}\" in light \"l\""},
        {"second object, the first being over", file_with_objects("NULL \"a\" { }\nNULL \"b\" { 5 }"),
         "6:12@122 expected-entry: expected KEY or \"}\", found the number \"5\" in null \"b\""},
    });
}

TEST(ReadObserver, FailuresOfOpening) {
    const TemporaryFolder folder;
    const std::pair<std::string, const char*> cases[] = {
        {folder.path("missing"), "cannot-open"},
        {folder.folder().string(), "cannot-open"},
        {folder.write("empty", ""), "empty-file"},
        {[&] {
             std::string path = folder.write("huge", "");
             std::filesystem::resize_file(path, std::uintmax_t{1} << 31);
             return path;
         }(),
         "file-too-large"},
    };
    for (const auto& [path, name] : cases) {
        RecordingObserver observer;
        ASCIIParser p;
        p.SetObserver(&observer);
        EXPECT_EQ(p.Init(Filename(path.c_str()), 1, 0), 4);
        ASSERT_EQ(observer.errors.size(), 1U) << name;
        EXPECT_STREQ(observer.errors[0].code.name(), name);
        EXPECT_EQ(place(observer.errors[0].at), "1:1@0");
        EXPECT_EQ(observer.errors[0].limit, observer.errors[0].code == ReadErrorCode::file_too_large
                                                ? &limits::kCompositionFile
                                                : nullptr);
    }
}

// The file is cut to 5000 bytes after its first token was read.
TEST(ReadObserver, FailuresWhileReading) {
    const std::string root = "COMPOSITION NRM \"a\" {";
    const std::pair<std::string, const char*> cases[] = {
        {file_with(root) + std::string(9000, ' ') + "}", "found a part of the file that cannot be read"},
        {file_with(root) + "FILE NRM PREMUL \"" + std::string(9000, 'x') + "\"\n}",
         "expected a footage path in double quotes, found a part of the file that cannot be read"},
        {file_with_objects("NULL \"n\" { }") + std::string(9000, ' '),
         "expected the rest of the file, found a part of the file that cannot be read"},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(message);
        RecordingObserver observer;
        ParsedText parsed(text, 0, &observer);
        ASSERT_EQ(parsed.init, 0);
        std::filesystem::resize_file(parsed.folder.path("shot.aec"), 5000);
        tagProjectSettings settings;
        EXPECT_EQ(read_composition_file(parsed.p, settings), 0);
        ASSERT_EQ(observer.errors.size(), 1U);
        EXPECT_EQ(observer.errors[0].code, ReadErrorCode::read_failed);
        EXPECT_THAT(observer.errors[0].reason, testing::EndsWith(message));
        EXPECT_LE(observer.errors[0].at.offset_bytes.value(), 5000);
    }
}

TEST(ReadObserver, FootageWithoutAFolderToLookIn) {
    const TemporaryFolder folder;
    folder.write("bare.aec", in_root("FILE NRM PREMUL \"/no/such/x.tif\"\n}\n"));
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.folder());
    RecordingObserver observer;
    ASCIIParser p;
    p.SetObserver(&observer);
    const A_long init = p.Init(Filename("bare.aec"), 1, 0);
    tagProjectSettings settings;
    const int result = read_composition_file(p, settings);
    std::filesystem::current_path(before);
    EXPECT_EQ(init, 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(observer.events.back(),
              "failure 4:17@112 path-without-folder: expected footage that opens, or a composition file "
              "named with its "
              "folder, found \"/no/such/x.tif\" in composition \"Main\"");
}

TEST(ReadObserver, EveryEventHasADefault) {
    ReadObserver whole;
    EXPECT_EQ(ReadText(in_root("FILE NRM PREMUL \"x\"\nSOLID }\nNULL \"n\" { KEY 0 0 0 0 0 0 0 }\n"), &whole)
                  .result,
              1);
    ReadObserver broken;
    EXPECT_EQ(ReadText(in_root("5"), &broken).result, 0);
}

TEST(ReadObserver, LineEndsAreNamedWhenTheyAreTokens) {
    RecordingObserver observer;
    ParsedText parsed("COMPOSITION NRM\n\"a\"\n", 1, &observer);
    CComposition composition;
    EXPECT_EQ(composition.ReadComposition(parsed.p), 0);
    EXPECT_EQ(observer.events.back(),
              "failure 1:16@15 expected-name: expected a name in double quotes, found the end of the line in "
              "composition");
}

TEST(ReadObserver, NestingTooDeep) {
    std::string text = file_with("");
    for (int i = 0; i < 1025; ++i) {
        text += "COMPOSITION NRM \"\" {\n";
    }
    RecordingObserver observer;
    EXPECT_EQ(ReadText(text, &observer).result, 0);
    ASSERT_EQ(observer.errors.size(), 1U);
    EXPECT_EQ(observer.errors[0].code, ReadErrorCode::nesting_too_deep);
    EXPECT_EQ(observer.errors[0].at.line, 3 + 1024);
    EXPECT_EQ(observer.errors[0].within.size(), 1024U);
    EXPECT_EQ(observer.errors[0].limit, &limits::kCompositionNesting);
}

TEST(ReadObserver, WordTooLongNamesItsLimitAndNoOther) {
    RecordingObserver too_long;
    EXPECT_EQ(
        ReadText(file_with("COMPOSITION NRM \"a\" { " + std::string(512, 'a') + " }"), &too_long).result, 0);
    ASSERT_EQ(too_long.errors.size(), 1U);
    EXPECT_EQ(too_long.errors[0].code, ReadErrorCode::word_too_long);
    EXPECT_EQ(too_long.errors[0].limit, &limits::kWord);

    RecordingObserver unknown;
    EXPECT_EQ(ReadText(file_with("SPEED 3"), &unknown).result, 0);
    ASSERT_EQ(unknown.errors.size(), 1U);
    EXPECT_EQ(unknown.errors[0].limit, nullptr);
}

TEST(ReadObserver, ReportsEveryElementOfAFile) {
    const TemporaryFolder footage;
    const std::string there = footage.write("there.tif", "x");
    const std::string text =
        std::string("VORTAN XR COMPOSITION\nRESOLUTION 720 576\r\nFROM 5\nTO 9\nRANGE 5 FPS 29.97\n") +
        "FIELDS ODD LOCAL ASPECT 0.5\n" + "COMPOSITION NRM \"Main\" {\n" + "  FILE ADD PREMUL \"" + there +
        "\" / old\n" + "  SOLID COMPOSITION MUL \"No block\" FSEQ\n" + "}\n" +
        "FSEQ <-> STRAIGHT \"x:pass0001.tif\"\n" + "FILE <-> STRAIGHT \"unclosed\n" +
        "CAMERA \"Cam\" { KEY 5 1 2 3 4 5 6 0 }\n" + "LIGHT \"Key\" { ANGLE 45 SHADOW SOFT }\n" + "trailing";
    RecordingObserver observer;
    ReadText file(text, &observer);
    ASSERT_EQ(file.result, 1);
    const std::size_t shift = there.size();
    const auto at = [&](const char* line_and_column, std::size_t offset) {
        return std::string(line_and_column) + "@" + std::to_string(offset);
    };
    const auto offset_of = [&](std::string_view part) { return text.find(part); };
    const std::vector<std::string> expected = {
        "keyword 2:1@22 RESOLUTION",
        "value 2:12@33 RESOLUTION[0] 720 = 720.000000",
        "value 2:16@37 RESOLUTION[1] 576 = 576.000000",
        "keyword 3:1@42 FROM",
        "value 3:6@47 FROM[0] 5 = 5.000000",
        "keyword 4:1@49 TO",
        "value 4:4@52 TO[0] 9 = 9.000000",
        "keyword 5:1@54 RANGE",
        "value 5:7@60 RANGE[0] 5 = 5.000000",
        "keyword 5:9@62 FPS",
        "value 5:13@66 FPS[0] 29.97 = 29.000000",
        "keyword 6:1@72 FIELDS",
        "value 6:8@79 FIELDS[0] ODD = 0.000000",
        "keyword 6:12@83 LOCAL",
        "keyword 6:18@89 ASPECT",
        "value 6:25@96 ASPECT[0] 0.5 = 0.500000",
        "begin 7:1@100 composition 7:17@116 Main depth 1",
        "footage 8:3@127 file 8:19@143 " + there + " opens",
        "ignored " + at("9:3", 127 + 16 + shift + 2 + 7 + 2) + " SOLID",
        "begin " + at("9:9", offset_of("COMPOSITION MUL")) + " composition " +
            at("9:25", offset_of("\"No block")) + " No block depth 2",
        "end " + at("9:36", offset_of("FSEQ\n}")) + " composition No block",
        "ignored " + at("9:36", offset_of("FSEQ\n}")) + " FSEQ",
        "end " + at("10:1", offset_of("}\nFSEQ")) + " composition Main",
        "footage " + at("11:1", offset_of("FSEQ <->")) + " sequence top " +
            at("11:19", offset_of("\"x:pass")) + " x:pass0001.tif",
        "footage " + at("12:1", offset_of("FILE <->")) + " file top " + at("12:19", offset_of("\"unclosed")) +
            "  unclosed-path",
        "begin " + at("13:1", offset_of("CAMERA")) + " camera " + at("13:8", offset_of("\"Cam\"")) +
            " Cam depth 1",
        "keyword " + at("13:16", offset_of("KEY 5")) + " KEY",
        "value " + at("13:20", offset_of("5 1 2")) + " KEY[0] 5 = 5.000000",
        "value " + at("13:22", offset_of("1 2 3")) + " KEY[1] 1 = 1.000000",
        "value " + at("13:24", offset_of("2 3 4")) + " KEY[2] 2 = 2.000000",
        "value " + at("13:26", offset_of("3 4 5")) + " KEY[3] 3 = 3.000000",
        "value " + at("13:28", offset_of("4 5 6")) + " KEY[4] 4 = 4.000000",
        "value " + at("13:30", offset_of("5 6 0 }")) + " KEY[5] 5 = 5.000000",
        "value " + at("13:32", offset_of("6 0 }")) + " KEY[6] 6 = 6.000000",
        "value " + at("13:34", offset_of("0 }")) + " KEY[7] 0 = 0.000000",
        "end " + at("13:36", offset_of("}\nLIGHT")) + " camera Cam",
        "begin " + at("14:1", offset_of("LIGHT")) + " light " + at("14:7", offset_of("\"Key\"")) +
            " Key depth 1",
        "keyword " + at("14:15", offset_of("ANGLE")) + " ANGLE",
        "value " + at("14:21", offset_of("45 SHADOW")) + " ANGLE[0] 45 = 45.000000",
        "keyword " + at("14:24", offset_of("SHADOW")) + " SHADOW",
        "value " + at("14:31", offset_of("SOFT")) + " SHADOW[0] SOFT = 0.000000",
        "end " + at("14:36", offset_of("}\ntrailing")) + " light Key",
        "done " + at("15:1", offset_of("trailing")) + " text follows",
    };
    EXPECT_EQ(observer.events, expected);
    EXPECT_EQ(observer.resolved,
              (std::vector<std::string>{there, file.parsed.folder.path("pass0001.tif"), "(null)"}));
    EXPECT_TRUE(observer.blocks().empty());
}

TEST(ReadObserver, ReportsTheEndOfAFileWithoutMoreText) {
    RecordingObserver observer;
    ASSERT_EQ(ReadText(file_with_objects("NULL \"n\" { }\n"), &observer).result, 1);
    EXPECT_EQ(observer.events.back(), "done 6:1@111 end of file");
}

TEST(ReadObserver, ReportsPositionsForEveryStyleOfLineEnd) {
    for (const std::string end : {"\n", "\r", "\r\n", "\n\r"}) {
        RecordingObserver observer;
        std::string text = "VORTAN";
        text.append(end).append(end).append("XR").append(end).append("  BAD ");
        EXPECT_EQ(ReadText(text, &observer).result, 0);
        ASSERT_EQ(observer.errors.size(), 1U);
        EXPECT_EQ(observer.errors[0].at.line, 4);
        EXPECT_EQ(observer.errors[0].at.column, 3);
        EXPECT_EQ(observer.errors[0].at.offset_bytes, static_cast<std::int64_t>(10 + 3 * end.size()));
    }
}

/// Lower-case words with hyphens between them.
bool is_hyphenated(std::string_view name) {
    return name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == std::string_view::npos && !name.empty() &&
           name.front() != '-' && name.back() != '-' && name.find("--") == std::string_view::npos;
}

TEST(ReadErrorTable, EveryCodeHasItsOwnName) {
    std::set<std::string> names;
    for (const auto& [code, info] : read_error_table()) {
        EXPECT_TRUE(names.insert(info.name).second) << info.name;
        EXPECT_TRUE(is_hyphenated(info.name)) << info.name;
        EXPECT_EQ(info.severity, diagnostic::Severity::error) << info.name;
        EXPECT_THAT(info.meaning, testing::EndsWith("."));
        EXPECT_EQ(&code_info(code), &info);
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(ReadErrorCode::expected_section) + 1);
}

}  // namespace
