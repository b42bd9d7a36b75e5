#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "support/file_content.h"
#include "support/temporary_folder.h"
#include "texture/annotated_dump.h"
#include "texture/both_loads.h"

namespace {

const std::string kExample = VXR_EXAMPLES_DIR "/textures/tiny.txl";
const std::string kDocument = VXR_EXAMPLES_DIR "/../docs/texture-format.md";

/// The picture of the example: four grey pixels in each of two rows, with one alpha channel. Of both, the
/// first row is one that packs and the second one that does not.
Texture tiny() {
    constexpr std::array<std::uint8_t, 8> kGrey = {7, 7, 7, 7, 1, 2, 3, 4};
    constexpr std::array<std::uint8_t, 8> kAlpha = {255, 255, 255, 255, 0, 64, 128, 192};
    Texture texture;
    texture.width_px = 4;
    texture.height_px = 2;
    texture.mode = Texture::kGrey;
    texture.pixels = PixelBuffer(kGrey.size());
    std::copy(kGrey.begin(), kGrey.end(), texture.pixels.begin());
    texture.alphas.push_back({"Alpha", PixelBuffer(kAlpha.size())});
    std::copy(kAlpha.begin(), kAlpha.end(), texture.alphas[0].values.begin());
    return texture;
}

TEST(TextureFormatDocument, TheWriterWritesTheExample) {
    const TemporaryFolder folder;
    const std::string path = folder.path("tiny.txl");
    ASSERT_FALSE(write_texture(path, tiny()).has_value());
    EXPECT_EQ(content_of(path), content_of(kExample));
    const BothLoads both(kExample);
    ASSERT_TRUE(both.reading.texture.has_value());
    EXPECT_EQ(*both.reading.texture, tiny());
}

TEST(TextureFormatDocument, ShowsEveryByteOfTheExample) {
    const std::string document = content_of(kDocument);
    const std::string fence = "<!-- every byte of examples/textures/tiny.txl -->\n```text\n";
    const std::size_t begin = document.find(fence);
    ASSERT_NE(begin, std::string::npos);
    const std::size_t first = begin + fence.size();
    const std::string shown = document.substr(first, document.find("```", first) - first);
    EXPECT_EQ(shown, annotated_dump(content_of(kExample)));
}

TEST(TextureFormatDocument, ListsEveryErrorWithItsNumberAndMeaning) {
    const std::string document = content_of(kDocument);
    for (const auto& [fault, info] : texture_faults()) {
        const std::int32_t number = container_code(fault);
        const std::string row = "| `" + std::string(info.name) + "` | " +
                                (number == 0 ? "none" : std::to_string(number)) + " | " + info.meaning +
                                " |\n";
        EXPECT_NE(document.find(row), std::string::npos) << row;
    }
}

TEST(TextureFormatDocument, ListsEveryWarningWithItsMeaningAndEffect) {
    const std::string document = content_of(kDocument);
    for (const auto& [notice, info] : texture_notices()) {
        const std::string row =
            "| `" + std::string(info.name) + "` | " + info.meaning + " | " + info.remedy + " |\n";
        EXPECT_NE(document.find(row), std::string::npos) << row;
    }
}

}  // namespace
