#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "image/built_in_header.h"
#include "image/functions.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "system/replacement_file.h"
#include "text/ascii.h"

// Headers of common formats are read. TGA, which is a header and the pixels, is written.

namespace image {
namespace {

constexpr std::size_t kTgaHeader_bytes = 18;
constexpr std::int32_t kLargestSide_px = 0xFFFF;

bool probe_file(const char* path, Header* header, Report report, void* reports) {
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        report(reports, Code::cannot_open, "the file may not be read");
        return false;
    }
    const ReadAt read_at = reads_from(file.get());
    std::string error;
    const std::optional<Header> found = read_built_in_header(read_at, path, error);
    if (!found.has_value()) {
        report(reports, Code::not_an_image, error.c_str());
        return false;
    }
    *header = *found;
    return true;
}

bool read_file(const char* /*path*/, const AlphaOptions* /*alpha*/, Texture* /*texture*/, Report report,
               void* reports) {
    report(reports, Code::not_an_image, "this program is built without an image library and reads no images");
    return false;
}

std::string tga_header(const Texture& texture) {
    constexpr char kColour = 2;
    constexpr char kGrey = 3;
    constexpr char kTopDown = 0x20;
    constexpr char kAlphaBits = 8;
    const std::size_t channels = static_cast<std::size_t>(texture.channels()) + texture.alphas.size();
    std::string header(kTgaHeader_bytes, '\0');
    header[2] = texture.channels() == 1 ? kGrey : kColour;
    header[12] = static_cast<char>(texture.width_px & 0xFF);
    header[13] = static_cast<char>(texture.width_px >> 8);
    header[14] = static_cast<char>(texture.height_px & 0xFF);
    header[15] = static_cast<char>(texture.height_px >> 8);
    header[16] = static_cast<char>(channels * 8);
    header[17] = static_cast<char>(kTopDown | (texture.alphas.empty() ? 0 : kAlphaBits));
    return header;
}

/// All rows from top to bottom; each pixel is blue, green, red, alpha, or grey, alpha.
std::string tga_pixels(const Texture& texture) {
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

bool has_writer(const char* path) {
    return text::equal_ignoring_case(os::text_of(os::path_of(path).extension()), ".tga");
}

bool write_file(const char* path, const Texture* texture, const WriteOptions* options, Report report,
                void* reports) {
    const auto fail = [report, reports](Code code, const std::string& reason) {
        report(reports, code, reason.c_str());
        return false;
    };
    if (!has_writer(options->format_name(path).c_str())) {
        return fail(Code::no_format, "this program has no image library and writes TGA files only");
    }
    if (texture->pixel_count() == 0) {
        return fail(Code::unsupported, no_pixels_text(texture->width_px, texture->height_px));
    }
    if (texture->width_px > kLargestSide_px || texture->height_px > kLargestSide_px) {
        return fail(Code::unsupported, "a TGA file has at most 65535 pixels on each side");
    }
    if (texture->alphas.size() > 1) {
        return fail(Code::channels_without_room, "targa files have only one alpha channel, the texture has " +
                                                     std::to_string(texture->alphas.size()) +
                                                     "; --alpha N chooses one");
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        return fail(Code::cannot_open, error);
    }
    if (!file->fill(tga_header(*texture) + tga_pixels(*texture), error) || !file->put_in_place(error)) {
        return fail(Code::not_written, error);
    }
    options->row_written(texture->height_px);
    return true;
}

}  // namespace

const Functions& built_in_functions() {
    static constexpr Functions kFunctions{Functions::kVersion, &probe_file, &read_file,
                                          &write_file,         &has_writer, &os::share_unfinished_files};
    return kFunctions;
}

}  // namespace image
