// `vxr texture info` and `vxr texture check`, with the example textures and with broken ones.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

using nlohmann::json;

const std::string kTextures = VXR_EXAMPLES_DIR "/textures";

ProcessResult texture(const std::string& folder, const std::string& verb,
                      std::vector<std::string> arguments) {
    std::vector<std::string> command{"env", "-C", folder, VXR_PROGRAM, "texture", verb};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run_process(command);
}

/// The smallest example with `bytes` from `offset` on, or cut there.
std::string tiny_cut(std::size_t offset) {
    return content_of(kTextures + "/tiny.txl").substr(0, offset);
}
std::string tiny_with(std::size_t offset, const std::string& bytes) {
    std::string file = content_of(kTextures + "/tiny.txl");
    return file.replace(offset, bytes.size(), bytes);
}

TEST(TextureInfo, ShowsTheTreeOfChunks) {
    const ProcessResult run = texture(kTextures, "info", {"tiny.txl"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(
        run.out,
        "tiny.txl: 4 x 2, grey, 1 alpha channel, 253 bytes\n"
        "  pixels: 16 bytes as 12, 1.33 : 1\n"
        "  alpha:  \"Alpha\"\n"
        "  note:   colour above alpha in 13 % of the pixels: straight; in After Effects choose Interpret "
        "Footage, Straight\n"
        "  chunk                offset  bytes  content\n"
        "  502 v0                  0x8    245\n"
        "    TaTx v1              0x11     25\n"
        "    TaVx v2              0x2a     55  2 rows of 4 pixels, 1 channel\n"
        "      channel 0                       1 raw, 1 packed; 8 bytes as 6, 1.33 : 1\n"
        "    599 v0               0x61    155\n"
        "      110100 v0          0x6a    145\n"
        "        501 v0           0x73    135\n"
        "          TaLy v0        0x7c     70  layer \"Alpha\", colour mode 2, attributes 0 0 0 0 0\n"
        "          TaVx v1        0xc2     55  2 rows of 4 pixels, 1 channel\n"
        "            channel 0                 1 raw, 1 packed; 8 bytes as 6, 1.33 : 1\n");
}

TEST(TextureInfo, CountsEveryWayInWhichARowCanBeCoded) {
    const ProcessResult run = texture(kTextures, "info", {"every_flag.txl", "--json"});
    EXPECT_EQ(run.exit_code, 0);
    const json file = json::parse(run.out).at("files").at(0);
    EXPECT_EQ(file.at("width_px"), 16);
    EXPECT_EQ(file.at("mode"), "rgb");
    EXPECT_EQ(file.at("alphas"), json({"cut-out", "Grünspan"}));
    const json& texture_chunk = file.at("chunks").at(1);
    EXPECT_EQ(texture_chunk.at("chunk"), "502");
    EXPECT_EQ(file.at("chunks").at(0).at("handled"), false);
    const json& rows = texture_chunk.at("chunks").at(3).at("rows");
    EXPECT_EQ(rows.at("channels"), 3);
    EXPECT_EQ(rows.at("coding").at(1), json({{"channel", 1},
                                             {"raw", 2},
                                             {"packed", 4},
                                             {"raw_short", 0},
                                             {"packed_bad", 1},
                                             {"unknown_flag", 1},
                                             {"coded_bytes", 91},
                                             {"decoded_bytes", 128}}));
    const json& layers = texture_chunk.at("chunks").at(4).at("chunks").at(1).at("chunks");
    EXPECT_EQ(layers.at(2).at("chunks").at(0).at("layer"),
              json({{"name", "Grünspan"}, {"color_mode", 3}, {"attributes", {1, 2, 3, 4, 5}}}));
    std::vector<std::string> codes;
    for (const json& diagnostic : file.at("diagnostics")) {
        codes.push_back(diagnostic.at("code"));
    }
    EXPECT_EQ(codes,
              (std::vector<std::string>{"chunk-skipped", "row-repeated", "row-cleared", "rows-missing"}));
}

TEST(TextureInfo, JsonHasItsKeysInOrderAlsoWhenAFileIsRefused) {
    const TemporaryFolder folder;
    folder.write("cut.txl", tiny_cut(0x50));
    const ProcessResult run = texture(folder.folder().string(), "info", {"--json", "cut.txl", "missing.txl"});
    EXPECT_EQ(run.exit_code, 3);
    EXPECT_EQ(run.err, "");
    const auto document = nlohmann::ordered_json::parse(run.out);
    EXPECT_EQ(document.at("schema"), 1);
    EXPECT_EQ(document.at("exit_code"), 3);
    std::vector<std::string> keys;
    for (const auto& [key, value] : document.at("files").at(0).items()) {
        keys.push_back(key);
    }
    EXPECT_EQ(keys,
              (std::vector<std::string>{"file", "verdict", "exit_code", "size_bytes", "width_px", "height_px",
                                        "mode", "color_mode", "alphas", "alpha_use", "decoded_bytes",
                                        "coded_bytes", "compression_ratio", "chunks", "diagnostics"}));
    const auto& cut = document.at("files").at(0);
    EXPECT_EQ(cut.at("verdict"), "refused");
    EXPECT_EQ(cut.at("size_bytes"), 0x50);
    EXPECT_TRUE(cut.at("width_px").is_null());
    EXPECT_TRUE(cut.at("chunks").at(0).at("size_bytes").is_null());
    EXPECT_EQ(cut.at("diagnostics").at(0).at("at").at("offset_bytes"), 0x4e);
    EXPECT_EQ(document.at("files").at(1).at("verdict"), "unreadable");
    EXPECT_TRUE(document.at("files").at(1).at("size_bytes").is_null());
}

TEST(TextureInfo, ARefusedFileIsShownAsFarAsItIsRead) {
    const TemporaryFolder folder;
    folder.write("cut.txl", tiny_cut(0x5b));
    const ProcessResult run = texture(folder.folder().string(), "info", {"cut.txl"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out,
              "cut.txl: refused, 91 bytes\n"
              "  pixels: 4 bytes as 2, 2.00 : 1\n"
              "  chunk          offset  bytes  content\n"
              "  502 v0            0x8      ?  no end\n"
              "    TaTx v1        0x11     25\n"
              "    TaVx v2        0x2a      ?  2 rows of 4 pixels, 1 channel, no end\n"
              "      channel 0                 1 packed; 4 bytes as 2, 2.00 : 1\n");
    EXPECT_EQ(run.err,
              "cut.txl@0x57: error: the file ends inside this value [short-transfer]\n"
              "      in 502 > TaVx\n"
              "      = the file holds 1 of the 2 rows that the chunk announces\n");
}

TEST(TextureCheck, FindsNothingWrongWithTheExamples) {
    const ProcessResult run =
        texture(kTextures, "check",
                {"--strict", "tiny.txl", "flat_rgb.txl", "flat_grey_alpha.txl", "noisy_grey.txl",
                 "noisy_rgb_three_alphas.txl", "photo_rgb_alpha.txl", "photo_rgb_three_alphas.txl",
                 "photo_grey_three_alphas.txl", "../textured/wall.txl", "../textured/label.txl",
                 "../textured/grain.txl"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err.find("error:"), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("loss:"), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("warning:"), std::string::npos) << run.err;
}

/// In tiny.txl one pixel of eight has colour above its alpha, which is 0.
const std::string kTinyNote =
    "a.txl: note: colour above alpha in 13 % of the pixels: straight; in After Effects choose Interpret "
    "Footage, Straight [alpha-straight]\n";

struct Case {
    const char* name;
    std::string bytes;
    int exit_code;
    const char* out;
    std::string err;
};

TEST(TextureCheck, SaysWhereAFileIsWrong) {
    const Case cases[] = {
        {"sound", tiny_cut(1000), 0, "a.txl: ok, 1 note\n", kTinyNote},
        {"empty", "", 1, "a.txl: refused\n", "a.txl: error: the file is empty [empty-file]\n"},
        {"other magic", tiny_with(0, "AVXX"), 1, "a.txl: refused\n",
         "a.txl: error: the file does not begin with the expected magic and ident [not-a-texture]\n"},
        {"a value between chunks", tiny_with(0x11, "\x0f"), 1, "a.txl: refused\n",
         "a.txl@0x11: error: expected the start or end of a chunk, found tag 15 [stray-value]\n      in "
         "502\n"},
        {"signed for unsigned", tiny_with(0x4c, "\x0b"), 1, "a.txl: refused\n",
         "a.txl@0x4c: error: expected a value with tag 12, found tag 11 [wrong-tag]\n"
         "      in 502 > TaVx\n"},
        {"a layer's block ends outside the file", tiny_with(0x8c, "\x7f"), 1, "a.txl: refused\n",
         "a.txl@0x8a: error: a block of 8323073 bytes where the file has 110 left [block-too-long]\n"
         "      in 502 > 599 > 110100 > 501 > TaLy\n"},
        {"five channels", tiny_with(0x48, std::string("\0\0\0\5", 4)), 1, "a.txl: refused\n",
         "a.txl@0x47: error: 5 channels in colour mode 2; mode 2 has 1 and mode 4 has 3 [unsupported]\n"
         "      in 502 > TaVx\n"},
        {"unknown flag", tiny_with(0x4d, "\x09"), 0, "a.txl: ok, 1 loss, 1 note\n",
         "a.txl@0x4e: loss: row 0, channel 0: flag 9 is unknown; the previous row was kept "
         "[row-repeated]\n"
         "      in 502 > TaVx\n"
         "      = this channel of the row repeats the previous row\n" +
             kTinyNote},
        {"ends between two items", tiny_cut(0x61), 0, "a.txl: ok, 1 loss\n",
         "a.txl@0x8: loss: the file ends before chunk 502 does [cut-off]\n"
         "      in 502\n"
         "      = the missing chunks are unknown; the chunks that are there are used\n"},
    };
    for (const Case& one : cases) {
        const TemporaryFolder folder;
        folder.write("a.txl", one.bytes);
        const ProcessResult run = texture(folder.folder().string(), "check", {"a.txl"});
        EXPECT_EQ(run.exit_code, one.exit_code) << one.name;
        EXPECT_EQ(run.out, one.out) << one.name;
        EXPECT_EQ(run.err, one.err) << one.name;

        const ProcessResult quiet = texture(folder.folder().string(), "check", {"a.txl", "--quiet"});
        EXPECT_EQ(quiet.exit_code, one.exit_code) << one.name;
        EXPECT_EQ(quiet.out, one.out) << one.name;
        EXPECT_EQ(quiet.err, "") << one.name;
    }
}

TEST(TextureCheck, CountsWhatOccursSeveralTimes) {
    const ProcessResult run = texture(kTextures, "check", {"every_flag.txl"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_NE(run.err.find("every_flag.txl@0x8: warning: chunk TaZz was skipped [chunk-skipped]\n"
                           "      in TaZz\n"
                           "      = the chunk is skipped with everything in it\n"
                           "      = 8 times in the file; this is the first place\n"),
              std::string::npos)
        << run.err;
}

TEST(TextureCheck, NamesTheChunksAroundAMistakeInALayer) {
    const TemporaryFolder folder;
    folder.write("a.txl", tiny_with(0x8c, "\x7f"));
    const ProcessResult run = texture(folder.folder().string(), "check", {"a.txl"});
    EXPECT_NE(run.err.find("      in 502 > 599 > 110100 > 501 > TaLy\n"), std::string::npos) << run.err;
    const ProcessResult document = texture(folder.folder().string(), "check", {"--json", "a.txl"});
    const json diagnostic = json::parse(document.out).at("files").at(0).at("diagnostics").at(0);
    EXPECT_EQ(diagnostic.at("within"), json({"502", "599", "110100", "501", "TaLy"}));
    EXPECT_EQ(diagnostic.at("code"), "block-too-long");
}

TEST(TextureCheck, WithSeveralFilesTheMostSeriousOutcomeIsTheExitCode) {
    const TemporaryFolder folder;
    folder.write("sound.txl", tiny_cut(1000));
    folder.write("cut.txl", tiny_cut(100));
    folder.write("warned.txl", tiny_with(0x4d, "\x09"));
    const std::string here = folder.folder().string();
    const ProcessResult all =
        texture(here, "check", {"--quiet", "missing.txl", "cut.txl", "warned.txl", "sound.txl"});
    EXPECT_EQ(all.exit_code, 3);
    EXPECT_EQ(
        all.out,
        "missing.txl: unreadable\ncut.txl: refused\nwarned.txl: ok, 1 loss, 1 note\nsound.txl: ok, 1 note\n");
    EXPECT_EQ(texture(here, "check", {"cut.txl", "sound.txl"}).exit_code, 1);
    EXPECT_EQ(texture(here, "check", {"warned.txl", "sound.txl"}).exit_code, 0);
    EXPECT_EQ(texture(here, "check", {"--strict", "warned.txl", "sound.txl"}).exit_code, 1);
    EXPECT_EQ(texture(here, "check", {}).exit_code, 2);

    const ProcessResult document = texture(here, "check", {"--json", "cut.txl", "sound.txl"});
    EXPECT_EQ(document.exit_code, 1);
    const json parsed = json::parse(document.out);
    EXPECT_EQ(parsed.at("schema"), 2);
    EXPECT_EQ(parsed.at("files").at(0).at("exit_code"), 1);
    json sound = parsed.at("files").at(1);
    const json notes = sound.at("diagnostics");
    sound.erase("diagnostics");
    EXPECT_EQ(sound, json({{"file", "sound.txl"}, {"verdict", "ok"}, {"exit_code", 0}}));
    ASSERT_EQ(notes.size(), 1U);
    const json& note = notes.at(0);
    EXPECT_EQ(note.at("severity"), "note");
    EXPECT_EQ(note.at("code"), "alpha-straight");
}

TEST(TextureInfo, SaysWhetherColourIsMultipliedByAlpha) {
    const TemporaryFolder folder;
    folder.write("tiny.txl", tiny_cut(1000));
    const std::string here = folder.folder().string();
    EXPECT_NE(texture(here, "info", {"tiny.txl"})
                  .out.find("  note:   colour above alpha in 13 % of the pixels: straight; in After Effects "
                            "choose Interpret Footage, Straight\n"),
              std::string::npos);
    const json document = json::parse(texture(here, "info", {"--json", "tiny.txl"}).out);
    EXPECT_EQ(document.at("files").at(0).at("alpha_use"),
              json({{"code", "alpha-straight"}, {"pixels_above_alpha", 1}, {"percent", 13}}));
    const json plain = json::parse(texture(kTextures, "info", {"--json", "noisy_grey.txl"}).out);
    EXPECT_TRUE(plain.at("files").at(0).at("alpha_use").is_null());
}

}  // namespace
