#include "limit/hostile_files.h"

#include <cstdint>
#include <limits>

#include "limit/scene_text.h"
#include "support/fuzz_inputs.h"
#include "texture/txl_builder.h"

namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TxlFile header_of(std::int32_t width, std::int32_t height, std::int32_t mode) {
    TxlFile file;
    file.width = width;
    file.height = height;
    file.mode = mode;
    file.with_rows = false;
    file.texture_ended = false;
    return file;
}

std::string header(std::int32_t width, std::int32_t height, std::int32_t mode = 4) {
    return header_of(width, height, mode).bytes();
}

/// The header of an image of 2^30 pixels and that of a chunk of rows, followed by `blocks`.
std::string rows(std::int32_t count, std::int32_t rows, std::int32_t channels, std::int32_t mode,
                 const std::vector<std::pair<int, std::string>>& blocks = {}) {
    TxlFile file = header_of(1 << 15, 1 << 15, mode);
    file.with_rows = true;
    file.rows = {.count = count, .rows = rows, .channels = channels, .blocks = blocks, .ended = false};
    return file.bytes();
}

/// `first` consecutive texture headers, all of the largest image.
std::string headers(int count) {
    TxlFile file = header_of(1 << 15, 1 << 15, 4);
    for (int i = 1; i < count; ++i) {
        file.before_header += file.header_bytes();
    }
    return file.bytes();
}

std::string alphas(std::int32_t width, std::int32_t height, std::size_t count) {
    TxlFile file = header_of(width, height, 4);
    TxlLayer layer;
    layer.attributes.clear();
    layer.name.clear();
    layer.rows.count = 0;
    layer.rows.rows = 0;
    layer.rows.blocks.clear();
    file.layers.assign(count, layer);
    return file.bytes();
}

/// Rows of one pixel in an image in which no two rows share a page of memory.
std::string pixel_a_row(std::int32_t count) {
    TxlFile file = header_of(1 << 13, 1 << 17, 2);
    file.with_rows = true;
    file.rows.count = 1;
    file.rows.rows = count;
    file.rows.channels = 1;
    file.rows.ended = false;
    file.rows.blocks.assign(static_cast<std::size_t>(count), {0, ""});
    return file.bytes();
}

std::string many(const std::string& before, const std::string& each, int count, const std::string& after) {
    std::string text = scene_settings() + before;
    for (int i = 0; i < count; ++i) {
        text += each;
    }
    return text + after;
}

}  // namespace

std::vector<HostileFile> hostile_files() {
    const std::string start = HyperBytes().Header().Start(502, 0).bytes();
    const std::string skipped = HyperBytes().Start(777, 0).bytes();
    const std::string settings = "VORTAN XR COMPOSITION RESOLUTION 2147483647 2147483647 FROM -2147483648 ";
    std::string deep = start;
    for (int i = 0; i < 9; ++i) {
        deep += skipped;
    }
    return {
        // At most 100 bytes.
        {"65,535 x 65,535 pixels", ".txl", header(65535, 65535)},
        {"most pixels in a square", ".txl", header(1 << 15, 1 << 15)},
        {"most pixels in grey", ".txl", header(1 << 15, 1 << 15, 2)},
        {"most pixels in a row", ".txl", header(1 << 30, 1)},
        {"most pixels in a column", ".txl", header(1, 1 << 30)},
        {"2^31 - 1 pixels each way", ".txl", header(kMost, kMost)},
        {"negative sizes", ".txl", header(-1, -1)},
        {"most pixels twice", ".txl", headers(2)},
        {"2^31 - 1 rows of 2^31 - 1 pixels", ".txl", rows(kMost, kMost, 3, 4)},
        {"2^31 - 1 rows without pixels", ".txl", rows(0, kMost, 1, 2)},
        {"2^31 - 1 channels", ".txl", rows(1, 1, kMost, 2)},
        {"a row of 2^30 pixels", ".txl", rows(1 << 30, 1, 1, 2)},
        {"wide rows that are cleared", ".txl", rows(1000, kMost, 1, 2, {{0, ""}, {0, ""}})},
        {"a block longer than the file", ".txl",
         rows(1, 1, 1, 2) + HyperBytes().UChar(1).Byte(128).Be32(kMost).bytes()},
        {"a skipped block longer than the file", ".txl",
         start + skipped + HyperBytes().Byte(128).Be32(kMost).bytes()},
        {"a skipped block of negative length", ".txl",
         start + skipped + HyperBytes().Byte(128).Be32(-5).bytes()},
        {"chunks inside one another", ".txl", deep},
        {"chunks of alpha channels inside one another", ".txl",
         HyperBytes()
             .Header()
             .Start(502, 0)
             .Start(599, 0)
             .Start(110100, 0)
             .Start(110100, 0)
             .Start(110100, 0)
             .bytes()},
        {"a resolution of 2^31 - 1", ".aec", settings},
        {"an open text", ".aec",
         "VORTAN XR COMPOSITION RESOLUTION 1 1 FROM 0 TO 9 RANGE 9 FPS 9 COMPOSITION NRM \"a"},
        {"an open comment", ".aec", "VORTAN XR COMPOSITION /" + std::string(70, '/')},
        {"a word that does not end", ".aec", "VORTAN XR COMPOSITION " + std::string(78, 'W')},
        // Larger.
        {"sixteen times the most pixels", ".txl", headers(16)},
        {"an alpha channel of the most pixels", ".txl", alphas(1 << 15, 1 << 15, 1)},
        {"1,000 alpha channels of no pixels", ".txl", alphas(0, 0, 1000)},
        {"1,000 alpha channels of 64 x 64 pixels", ".txl", alphas(64, 64, 1000)},
        {"1,000 alpha channels of 1,024 x 1,024 pixels", ".txl", alphas(1024, 1024, 1000)},
        {"a pixel a row", ".txl", pixel_a_row(20000)},
        {"rows that are cleared, as many as are repaired", ".txl",
         rows(1 << 15, 1 << 9, 1, 2, std::vector<std::pair<int, std::string>>(1 << 9, {0, ""}))},
        {"200,000 chunks inside one another", ".txl", start + std::string(std::size_t{200000} * 9, '\x01')},
        {"1,024 compositions inside one another", ".aec", nested_scene(1024)},
        {"1,025 compositions inside one another", ".aec", nested_scene(1025)},
        {"5,000 empty compositions", ".aec",
         many("COMPOSITION NRM \"\" {", "COMPOSITION NRM \"\";", 5000, "}\n")},
        {"5,000 footage entries", ".aec",
         many("COMPOSITION NRM \"\" {", "FILE NRM PREMUL \"/a\"\n", 5000, "}\n")},
        {"5,000 cameras", ".aec", many("COMPOSITION NRM \"\";", "CAMERA \"\" {}", 5000, "\n")},
        {"20,000 keys", ".aec", many("COMPOSITION NRM \"\"; NULL \"\" {", "KEY. . . . . . .", 20000, "}\n")},
        {"a text of 1 MB", ".aec",
         scene_settings() + "COMPOSITION NRM \"" + std::string(1000000, 't') + "\";\n"},
    };
}

std::vector<HostileFile> former_finds(const std::string& folder) {
    std::vector<HostileFile> files;
    for (const FuzzInput& kept : fuzz_inputs_in(folder)) {
        for (const char* const extension : {".aec", ".txl"}) {
            files.push_back({kept.name, extension, kept.bytes});
        }
    }
    return files;
}
