#include "limit/limit_files.h"

#include <cstdint>
#include <filesystem>
#include <string>

#include "limit/scene_text.h"
#include "texture/txl_builder.h"

namespace {

// Writes the beginning; the rest are zeros that use no space on the disk.
std::string sparse(const TemporaryFolder& folder, const char* name, const std::string& bytes,
                   std::int64_t length_bytes) {
    const std::string path = folder.write(name, bytes);
    std::filesystem::resize_file(path, static_cast<std::uintmax_t>(length_bytes));
    return path;
}

std::string scene(const TemporaryFolder& folder, const std::string& text) {
    return folder.write("scene.aec", text);
}

std::string texture(const TemporaryFolder& folder, const TxlFile& file) {
    return folder.write("texture.txl", file.bytes());
}

int int_of(const limits::Limit& limit) {
    return static_cast<int>(limit.value);
}

// The reader ignores what follows the last object, so a long file is a short one with a tail.
std::string long_scene(const TemporaryFolder& folder, int above) {
    return sparse(folder, "scene.aec", nested_scene(1) + "NULL \"n\" {\nKEY 0 0 0 0 0 0 0\n}\n",
                  limits::kCompositionFile.value + above);
}

std::string long_word(const TemporaryFolder& folder, int above) {
    const std::string word(static_cast<std::size_t>(limits::kWord.value + above), 'w');
    return scene(folder, scene_settings() + "COMPOSITION NRM \"a\" { " + word + " }\n");
}

std::string long_number(const TemporaryFolder& folder, int above) {
    const std::string zeros(static_cast<std::size_t>(limits::kWord.value - 1 + above), '0');
    return scene(folder, scene_settings() + "FROM " + zeros + "1 COMPOSITION NRM \"a\" { }\n");
}

// An unknown chunk with one block that reaches to the end of the file, which may end there.
std::string long_texture(const TemporaryFolder& folder, int above) {
    const std::int64_t length = limits::kTextureFile.value + above;
    TxlFile file;
    file.texture_ended = false;
    const std::string before = file.bytes() + HyperBytes().Start(777, 0).Byte(128).bytes();
    const std::int64_t block_bytes = length - static_cast<std::int64_t>(before.size()) - 4;
    return sparse(folder, "texture.txl", before + HyperBytes().Be32(block_bytes).bytes(), length);
}

std::string many_pixels(const TemporaryFolder& folder, int above) {
    TxlFile file;
    file.width = int_of(limits::kTexturePixels) + above;
    file.height = 1;
    file.with_rows = false;
    return texture(folder, file);
}

// The largest image in RGB uses three quarters of the limit on decoded bytes, an alpha channel the last one.
std::string many_decoded_bytes(const TemporaryFolder& folder, int above) {
    TxlFile file;
    file.width = 1 << 15;
    file.height = 1 << 15;
    file.with_rows = false;
    file.layers.resize(std::size_t{1} + static_cast<std::size_t>(above));
    return texture(folder, file);
}

// One row that repeats the row before, so that nothing is decoded; a tail makes the file long enough for such
// a row.
std::string wide_row(const TemporaryFolder& folder, int above) {
    TxlFile file;
    file.mode = 2;
    file.rows.channels = 1;
    file.rows.count = int_of(limits::kRowBytes) + above;
    file.rows.rows = 1;
    file.rows.blocks = {{9, ""}};
    const std::int64_t tail_bytes = limits::kRowBytes.value / limits::kRowRate.value + 1;
    file.rows.trailing = HyperBytes().Byte(128).Be32(tail_bytes).bytes();
    const std::string head = file.bytes();
    const std::string behind_tail = HyperBytes().End().End().bytes();
    const std::string before_tail = head.substr(0, head.size() - behind_tail.size());
    return folder.write("texture.txl",
                        before_tail + std::string(static_cast<std::size_t>(tail_bytes), '\0') + behind_tail);
}

// The header of rows is followed by the rows and the two end tags.
std::string row_above_the_rate(const TemporaryFolder& folder, int above) {
    TxlFile file;
    file.mode = 2;
    file.rows.channels = 1;
    file.rows.rows = 1;
    file.rows.blocks = {{9, ""}};
    file.rows.trailing = HyperBytes().Block(std::string(100, 'x')).bytes();
    const std::string rest = HyperBytes().UChar(9).Block("").Raw(file.rows.trailing).End().End().bytes();
    const auto left = static_cast<std::int64_t>(rest.size());
    file.rows.count =
        static_cast<std::int32_t>(limits::kRepairedBytes.value + limits::kRowRate.value * (left + 1)) + above;
    return texture(folder, file);
}

// 2,048 rows that repeat the row before. The file's length is a multiple of 32, so that a row of a whole
// number of bytes reaches the limit; with one byte less in the file, the same rows exceed it.
std::string many_repaired_rows(const TemporaryFolder& folder, int above) {
    constexpr std::int32_t kRows = 2048;
    TxlFile file;
    file.mode = 2;
    file.rows.channels = 1;
    file.rows.rows = kRows;
    file.rows.blocks.assign(kRows, {9, ""});
    const std::size_t without_padding = file.bytes().size() + HyperBytes().Block("").bytes().size();
    const std::size_t padding = 64 - without_padding % 32;
    const auto length = static_cast<std::int64_t>(without_padding + padding);
    file.rows.count =
        static_cast<std::int32_t>((limits::kRowRate.value * length + limits::kRepairedBytes.value) / kRows);
    const std::string block(padding - static_cast<std::size_t>(above), 'x');
    file.rows.trailing = HyperBytes().Block(block).bytes();
    return texture(folder, file);
}

std::string many_headers(const TemporaryFolder& folder, int above) {
    TxlFile file;
    for (std::int64_t i = 1; i < limits::kTextureHeaders.value + above; ++i) {
        file.before_header += file.header_bytes();
    }
    return texture(folder, file);
}

std::string nested_alphas(const TemporaryFolder& folder, int above) {
    TxlFile file;
    file.layers.resize(1);
    file.alphas_nesting = int_of(limits::kAlphaNesting) + above;
    return texture(folder, file);
}

}  // namespace

const std::vector<LimitPair>& limit_pairs() {
    static const std::vector<LimitPair> kPairs{
        {"LengthOfACompositionFile", &limits::kCompositionFile, false, "file-too-large", long_scene},
        {"NestingOfCompositions", &limits::kCompositionNesting, false, "nesting-too-deep",
         [](const TemporaryFolder& folder, int above) {
             return scene(folder, nested_scene(int_of(limits::kCompositionNesting) + above));
         }},
        {"LengthOfAWord", &limits::kWord, false, "word-too-long", long_word},
        {"LengthOfANumber", &limits::kWord, false, "word-too-long", long_number},
        {"LengthOfATextureFile", &limits::kTextureFile, true, "over-limit", long_texture},
        {"PixelsOfATexture", &limits::kTexturePixels, true, "over-limit", many_pixels},
        {"PixelsAndAlphasTogether", &limits::kDecodedBytes, true, "over-limit", many_decoded_bytes},
        {"BytesOfARow", &limits::kRowBytes, true, "over-limit", wide_row},
        {"BytesOfARowInTheBytesLeft", &limits::kRowRate, true, "block-too-long", row_above_the_rate},
        {"BytesOfRepairedRows", &limits::kRepairedBytes, true, "over-limit", many_repaired_rows},
        {"TextureHeaders", &limits::kTextureHeaders, true, "over-limit", many_headers},
        {"NestingOfAlphaChannelsChunks", &limits::kAlphaNesting, true, "over-limit", nested_alphas},
    };
    return kPairs;
}
