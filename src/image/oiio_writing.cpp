#include "image/oiio_writing.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <tiffio.hxx>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "imageio/channel_plan.h"
#include "imageio/texture_spec.h"
#include "system/files.h"
#include "system/replacement_file.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_file.h"

namespace image {
namespace {

/// Why the format cannot hold all channels; empty when it can.
std::string channels_without_room(const OIIO::ImageOutput& output, const Texture& texture) {
    const std::string format = output.format_name();
    const std::size_t alphas = texture.alphas.size();
    if (alphas > 0 && output.supports("alpha") == 0) {
        return format + " files have no alpha channel; --alpha none leaves it out";
    }
    const bool grey = texture.mode == Texture::kGrey;
    const std::string choose = ", the texture has " + std::to_string(alphas) + "; --alpha N chooses one";
    if (alphas == 1 && grey && format == "dpx") {
        return "dpx files have an alpha channel beside RGB only; --alpha none leaves it out";
    }
    if (alphas < 2) {
        return {};
    }
    // Other formats have no room, or lose channels without a word. DPX ends the process. SGI and RLA, and
    // OpenImageIO's own writer of TIFF, take three or more channels for colour.
    const bool many =
        format == "openexr" || format == "tiff" || (!grey && (format == "sgi" || format == "rla"));
    if (!many) {
        return format + " files have only one alpha channel" + choose;
    }
    return imageio::refuse_channels(texture.channels() + static_cast<int>(alphas));
}

bool write_rows(OIIO::ImageOutput& output, const Texture& texture, const WriteOptions& options) {
    std::vector<std::uint8_t> row(static_cast<std::size_t>(texture.width_px) *
                                  (static_cast<std::size_t>(texture.channels()) + texture.alphas.size()));
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, row.data());
        if (!output.write_scanline(y, 0, OIIO::TypeUInt8, row.data())) {
            return false;
        }
        options.row_written(y + 1);
    }
    return output.close();
}

/// Reads back the picture that was just written to `path`. Returns what is wrong with it; empty when nothing
/// is.
std::string written_picture_error(const std::string& path, const OIIO::ImageSpec& spec,
                                  const Texture& texture, std::string_view format) {
    OIIO::ImageSpec config;
    config.attribute(kUnassociated, 1);
    const auto input = OIIO::ImageInput::open(path, &config);
    if (input == nullptr) {
        return library_reason(OIIO::geterror());
    }
    const OIIO::ImageSpec& found = input->spec();
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(found.image_pixels()) *
                                     static_cast<std::size_t>(found.nchannels));
    if (!input->read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) {
        return library_reason(input->geterror());
    }
    if (format == "heif" || format == "ico") {
        return {};  // HEIF is lossy and ICO adds a channel; the readers of both notice a truncated file
    }
    bool same = found.width == spec.width && found.height == spec.height && found.nchannels == spec.nchannels;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(spec.width) *
                                  static_cast<std::size_t>(spec.nchannels));
    for (std::int32_t y = 0; same && y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, row.data());
        same =
            std::equal(row.begin(), row.end(), pixels.begin() + y * static_cast<std::ptrdiff_t>(row.size()));
    }
    return same ? std::string() : "the picture was not written completely";
}

/// OpenImageIO takes colour in OpenEXR for linear unless the file has the attribute "oiio:ColorSpace", which
/// it reads but does not write. So the attribute is written under a name of the same length, and renamed
/// here.
constexpr char kWrittenName[] = "oiio_ColorSpace";
constexpr char kReadName[] = "oiio:ColorSpace";
static_assert(sizeof kWrittenName == sizeof kReadName);

void keep_colour_space(OIIO::ImageSpec& spec) {
    if (const std::string space = spec.get_string_attribute(kReadName); !space.empty()) {
        spec.attribute(kWrittenName, space);
    }
}

/// The header is before all pixels, and there the name is followed by a zero and that of its type.
void rename_colour_space(std::vector<unsigned char>& file) {
    constexpr std::string_view kAttribute("oiio_ColorSpace\0string\0", 23);
    const auto at = std::search(file.begin(), file.end(), kAttribute.begin(), kAttribute.end());
    if (at != file.end()) {
        std::copy_n(kReadName, sizeof kReadName - 1, at);
    }
}

/// Writes the image into `file`, by way of memory where the format's writer supports that: not every writer
/// checks whether the disk accepted its data, and one ends the process when it did not. Writers without that
/// support write the file themselves, and the file is read back.
bool encode(OIIO::ImageOutput& output, const OIIO::ImageSpec& spec, const Texture& texture,
            const WriteOptions& options, os::ReplacementFile& file, const Reporter& reporter) {
    OIIO::Filesystem::IOVecOutput memory;
    const bool in_memory = output.supports("ioproxy") != 0 && output.set_ioproxy(&memory);
    if (!output.open(file.temporary_path(), spec)) {
        const bool begun = os::file_state(file.temporary_path()).size_bytes > 0;
        return reporter.fail(begun ? Code::not_written : Code::channels_without_room,
                             library_reason(output.geterror()));
    }
    std::string reason;
    if (!write_rows(output, texture, options)) {
        reason = library_reason(output.geterror());
    } else if (!in_memory) {
        reason = written_picture_error(file.temporary_path(), spec, texture, output.format_name());
    } else if (memory.buffer().empty()) {
        reason = "the image library wrote nothing";
    } else {
        if (spec.find_attribute(kWrittenName) != nullptr) {
            rename_colour_space(memory.buffer());
        }
        file.fill({reinterpret_cast<const char*>(memory.buffer().data()), memory.buffer().size()}, reason);
    }
    return reason.empty() || reporter.fail(Code::not_written, reason);
}

/// OpenImageIO writes three channels or more of a TIFF as RGB, and grey with several alphas has three or
/// more.
bool keeps_grey_apart(const Texture& texture) {
    return texture.mode == Texture::kGrey && texture.alphas.size() > 1;
}

/// Writes grey with several alphas as a TIFF: one channel of colour, and extra samples of which the first is
/// the picture's alpha.
bool encode_grey_tiff(const Texture& texture, const WriteOptions& options, os::ReplacementFile& file,
                      const Reporter& reporter) {
    std::ostringstream bytes;
    const auto close = [](TIFF* tiff) { TIFFClose(tiff); };
    std::unique_ptr<TIFF, decltype(close)> tiff(TIFFStreamOpen("grey.tif", &bytes), close);
    const std::size_t channels = 1 + texture.alphas.size();
    std::vector<std::uint16_t> extra(texture.alphas.size(), EXTRASAMPLE_UNSPECIFIED);
    extra.front() =
        options.alpha.pixels == AlphaPixels::straight ? EXTRASAMPLE_UNASSALPHA : EXTRASAMPLE_ASSOCALPHA;
    bool done =
        tiff != nullptr && TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, texture.width_px) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, texture.height_px) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(channels)) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_EXTRASAMPLES, static_cast<int>(extra.size()), extra.data()) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) != 0 &&
        TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0)) != 0;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(texture.width_px) * channels);
    for (std::int32_t y = 0; done && y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, row.data());
        done = TIFFWriteScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y), 0) == 1;
        options.row_written(y + 1);
    }
    done = done && TIFFFlush(tiff.get()) == 1;
    tiff.reset();  // writes what is left
    std::string reason = "the TIFF library could not write the picture";
    return (done && bytes.good() && file.fill(bytes.str(), reason)) ||
           reporter.fail(Code::not_written, reason);
}

/// Warns of names of alpha channels that the file does not hold. The first alpha is called "A" everywhere.
void warn_of_names(const Texture& texture, std::string_view format, const Reporter& reporter) {
    std::vector<std::string> lost = names_without_room(texture);
    if (format == "openexr" && !lost.empty()) {
        lost.resize(lost.front() == texture.alphas.front().name ? 1 : 0);
    }
    if (!lost.empty()) {
        reporter.warn(Code::names_left_out,
                      "the file has no room for the alpha names " + imageio::list_text(lost));
    }
}

/// How a format stores alpha.
enum class AlphaKind { straight, premultiplied, either };

AlphaKind alpha_kind(std::string_view format) {
    // TIFF marks which of the two it holds, OpenEXR knows no other kind. In all other formats OpenImageIO
    // divides colour by alpha unless it is told that this has been done.
    return format == "tiff"      ? AlphaKind::either
           : format == "openexr" ? AlphaKind::premultiplied
                                 : AlphaKind::straight;
}

/// Whether the file is to say that colour is not multiplied by alpha.
bool marked_straight(AlphaKind kind, const AlphaOptions& alpha) {
    switch (kind) {
        case AlphaKind::premultiplied:
            return false;
        case AlphaKind::either:
            return alpha.pixels == AlphaPixels::straight;
        case AlphaKind::straight:
            break;
    }
    return alpha.bytes == AlphaBytes::kept || alpha.pixels == AlphaPixels::straight;
}

bool write_picture(const char* path, OIIO::ImageOutput& output, const Texture& texture,
                   const WriteOptions& options, const Reporter& reporter) {
    const AlphaKind kind = alpha_kind(output.format_name());
    OIIO::ImageSpec spec = imageio::texture_spec(texture);
    if (marked_straight(kind, options.alpha)) {
        spec.attribute(kUnassociated, 1);
    }
    if (std::string_view(output.format_name()) == "openexr") {
        keep_colour_space(spec);
    } else {
        // Every other format is sRGB unless it says otherwise, and for one that says so OpenImageIO adds Exif
        // tags to a TIFF, which in memory becomes unreadable by that.
        spec.erase_attribute(kReadName);
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        return reporter.fail(Code::cannot_open, error);
    }
    const bool own_writer = kind == AlphaKind::either && keeps_grey_apart(texture);
    if (own_writer ? !encode_grey_tiff(texture, options, *file, reporter)
                   : !encode(output, spec, texture, options, *file, reporter)) {
        return false;
    }
    if (!file->put_in_place(error)) {
        return reporter.fail(Code::not_written, error);
    }
    warn_of_names(texture, output.format_name(), reporter);
    return true;
}

}  // namespace

bool write_with_library(const char* path, const Texture& texture, const WriteOptions& options,
                        const Reporter& reporter) {
    const auto output = OIIO::ImageOutput::create(options.format_name(path));
    if (output == nullptr) {
        return reporter.fail(Code::no_format, library_reason(OIIO::geterror()));
    }
    if (texture.pixel_count() == 0) {
        return reporter.fail(Code::unsupported, no_pixels_text(texture.width_px, texture.height_px));
    }
    if (const std::string reason = channels_without_room(*output, texture); !reason.empty()) {
        return reporter.fail(Code::channels_without_room, reason);
    }
    const bool multiply = alpha_kind(output->format_name()) == AlphaKind::premultiplied &&
                          options.alpha.bytes == AlphaBytes::converted &&
                          options.alpha.pixels == AlphaPixels::straight;
    if (!multiply) {
        return write_picture(path, *output, texture, options, reporter);
    }
    Texture multiplied = texture;
    multiply_by_alpha(multiplied);
    return write_picture(path, *output, multiplied, options, reporter);
}

bool library_has_writer(const char* path) {
    const auto output = OIIO::ImageOutput::create(path);
    if (output == nullptr) {
        (void)OIIO::geterror();  // would otherwise be reported for the next file
        return false;
    }
    // Two writers make no file: one discards everything, the other shows the image in the terminal.
    const std::string_view format = output->format_name();
    return format != "null" && format != "term";
}

}  // namespace image
