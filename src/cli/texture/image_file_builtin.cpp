#include "cli/texture/image_file.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "system/replacement_file.h"
#include "system/files.h"
#include "text/ascii.h"

// Without an image library: no image is read, and TGA is written, which is a header and the pixels.

namespace cli {
namespace {

constexpr std::string_view kExtension = ".tga";
constexpr std::size_t kHeader_bytes = 18;
constexpr std::int32_t kLargest_px = 0xFFFF;

ImageWriting not_written(const std::string& path, ExitCode code, const char* error_code, std::string reason) {
    return {fail(error_code, {path}, std::move(reason)), code};
}

std::string header_of(const Texture& texture) {
    constexpr char kColour = 2;
    constexpr char kGrey = 3;
    constexpr char kTopDown = 0x20;
    constexpr char kAlphaBits = 8;
    const std::size_t channels = static_cast<std::size_t>(texture.channels()) + texture.alphas.size();
    std::string header(kHeader_bytes, '\0');
    header[2] = texture.channels() == 1 ? kGrey : kColour;
    header[12] = static_cast<char>(texture.width_px & 0xFF);
    header[13] = static_cast<char>(texture.width_px >> 8);
    header[14] = static_cast<char>(texture.height_px & 0xFF);
    header[15] = static_cast<char>(texture.height_px >> 8);
    header[16] = static_cast<char>(channels * 8);
    header[17] = static_cast<char>(kTopDown | (texture.alphas.empty() ? 0 : kAlphaBits));
    return header;
}

/// All rows from the top, each pixel from blue to red, then alpha.
std::string pixels_of(const Texture& texture) {
    const auto colours = static_cast<std::size_t>(texture.channels());
    std::string bytes;
    bytes.reserve(texture.pixel_count() * (colours + texture.alphas.size()));
    for (std::size_t i = 0; i < texture.pixel_count(); ++i) {
        for (std::size_t channel = colours; channel > 0; --channel) {
            bytes += static_cast<char>(texture.pixels[i * colours + channel - 1]);
        }
        for (const AlphaChannel& alpha : texture.alphas) {
            bytes += static_cast<char>(alpha.values[i]);
        }
    }
    return bytes;
}

}  // namespace

ImageReading read_image_file(const std::string& path, AlphaBytes /*alpha_bytes*/) {
    std::string why_not;
    if (!os::is_regular_file(path, why_not)) {
        return {
            std::nullopt, {fail("cannot-open", {path}, std::move(why_not))}, ExitCode::cannot_read_or_write};
    }
    return {
        std::nullopt,
        {fail("not-an-image", {path}, "this program is built without an image library and reads no images")},
        ExitCode::refused};
}

ImageWriting write_image_file(const std::string& path, const Texture& texture, AlphaBytes /*alpha_bytes*/) {
    if (texture.pixel_count() == 0 || texture.width_px > kLargest_px || texture.height_px > kLargest_px) {
        return not_written(path, ExitCode::refused, "unsupported",
                           "a TGA file has from 1 to 65535 pixels on each side");
    }
    if (texture.alphas.size() > 1) {
        return not_written(path, ExitCode::refused, "channels-without-room",
                           "targa files have one alpha channel, the texture has " +
                               std::to_string(texture.alphas.size()) + "; --alpha N chooses one");
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        return not_written(path, ExitCode::cannot_read_or_write, "cannot-open", error);
    }
    if (!file->fill(header_of(texture) + pixels_of(texture), error) || !file->put_in_place(error)) {
        return not_written(path, ExitCode::cannot_read_or_write, "not-written", error);
    }
    return {};
}

bool writes_image_format(const std::string& path) {
    return text::equal_ignoring_case(os::text_of(os::path_of(path).extension()), kExtension);
}

}  // namespace cli
