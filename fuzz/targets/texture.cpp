// Reads a texture file into the tools' value. It must be sound, show the same picture as the plug-in's, and
// survive being written and read again.

#include <algorithm>

#include "check.h"
#include "input.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_file.h"
#include "texture/value/texture_invariants.h"

const std::size_t kOptionBytes = 0;

namespace {

/// Small enough to compare every pixel, and for the plug-in's picture, at six or more bytes a pixel, to fit
/// into one allocation.
constexpr std::uint64_t kMostDecodedBytes = std::uint64_t{1} << 20;

/// Rows are written one channel at a time. More rows than this take a second under the sanitizers, which
/// would count as a find.
constexpr std::int64_t kMostRowsWritten = std::int64_t{1} << 14;

bool started_over(const TextureReading& reading) {
    return std::any_of(
        reading.warnings.begin(), reading.warnings.end(),
        [](const diagnostic::Diagnostic& warning) { return warning.code == TextureNotice::second_header; });
}

void check_picture(const std::string& path, const TextureReading& reading) {
    const Texture& texture = *reading.texture;
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    if (!TXLImageFilter().LoadImage(path.c_str(), &image)) {
        // A second header drops the first picture, which may have been too large for one allocation: the
        // plug-in reserves six bytes a pixel before it reads any of them.
        require(started_over(reading), "the plug-in reads every texture that the tools read");
        return;
    }
    require(bitmap.width() == texture.width_px && bitmap.height() == texture.height_px,
            "both pictures have the same size");
    require(bitmap.GetChannelCount() == (texture.alphas.empty() ? 0 : 1),
            "the plug-in's picture has the first alpha channel");
    const std::int64_t channels = texture.channels();
    const std::uint8_t* pixel = texture.pixels.data();
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        const std::uint16_t* const row = bitmap.PixelRow(y);
        for (std::int64_t x = 0; x < texture.width_px; ++x, pixel += channels) {
            for (std::int64_t c = 0; c < 3; ++c) {
                require(row[3 * x + c] == pixel[c % channels] * 256, "both pictures have the same colours");
            }
        }
    }
}

void check_alpha_use(const TextureReading& reading) {
    if (reading.texture->alphas.empty()) {
        return;
    }
    const AlphaFinding quick = find_alpha_use(*reading.texture, reading.colour_rows);
    const AlphaFinding whole = find_alpha_use(*reading.texture);
    require(quick.use == whole.use && quick.pixels_above == whole.pixels_above,
            "rows that are not in the file have no colour above alpha");
}

void check_round_trip(const Texture& texture) {
    const auto channels = static_cast<std::int64_t>(texture.alphas.size()) + texture.channels();
    if (channels * texture.height_px > kMostRowsWritten) {
        return;
    }
    const std::string path = scratch().path("written.txl");
    require(!write_texture(path, texture).has_value(), "a texture that was read can be written");
    const TextureReading again = read_texture(path);
    require(again.texture.has_value() && again.warnings.empty(),
            "a texture that was written can be read again");
    require(again.texture->pixels == texture.pixels && again.texture->mode == texture.mode &&
                again.texture->alphas.size() == texture.alphas.size(),
            "a texture that was written has the same pixels");
    for (std::size_t i = 0; i < texture.alphas.size(); ++i) {
        require(again.texture->alphas[i].values == texture.alphas[i].values,
                "a texture that was written has the same alpha");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = scratch().write("texture.txl", Input(data, size).rest_text());
    TextureReadOptions options;
    options.limits.decoded_bytes = kMostDecodedBytes;
    options.outline = true;
    const TextureReading reading = read_texture(path, options);
    require(reading.texture.has_value() != reading.error.has_value(), "a texture or an error");
    if (!reading.texture) {
        require(!reading.error->reason.empty(), "an error has a reason");
        return 0;
    }
    require_sound(validate_texture(*reading.texture));
    require(reading.colour_rows.count() <= reading.texture->height_px,
            "rows that are there are in the picture");
    check_alpha_use(reading);
    check_picture(path, reading);
    check_round_trip(*reading.texture);
    return 0;
}
