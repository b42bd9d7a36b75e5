// OpenImageIO behind the function table: the module vxr_image_library.so. Nothing else in this folder
// includes its headers. Lets no exception out.

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "image/functions.h"
#include "imageio/channel_plan.h"
#include "imageio/texture_spec.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "system/replacement_file.h"

namespace image {
namespace {

constexpr const char* kUnassociated = "oiio:UnassociatedAlpha";

/// Passes errors and warnings on to the caller.
class Reporter {
  public:
    Reporter(Report report, void* reports) : report_(report), reports_(reports) {}

    void warn(Code code, const std::string& reason) const { report_(reports_, code, reason.c_str()); }
    /// False, for functions that return whether they succeeded.
    [[nodiscard]] bool fail(Code code, const std::string& reason) const {
        report_(reports_, code, reason.c_str());
        return false;
    }

  private:
    Report report_;
    void* reports_;
};

/// OpenImageIO's text for what went wrong, on one line.
std::string library_reason(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text.empty() ? "the image library gives no reason" : text;
}

/// OpenImageIO's name of the format with the extension of `path`; empty when it knows none.
std::string format_by_extension(const std::string& path) {
    static const std::map<std::string, std::vector<std::string>> kFormats = OIIO::get_extension_map();
    std::string extension = os::text_of(os::path_of(path).extension());
    if (extension.empty()) {
        return {};
    }
    extension = OIIO::Strutil::lower(extension.substr(1));
    for (const auto& [format, extensions] : kFormats) {
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end()) {
            return format;
        }
    }
    return {};
}

/// An image file that OpenImageIO has opened.
class OpenImage {
  public:
    /// Opens a regular file, with the reader of its extension or else the first that accepts the file.
    /// Without a result `error` says why, in OpenImageIO's words naming `path`.
    ///
    /// Where the system can name an open file, OpenImageIO gets that name instead of `path`: by then there
    /// may be a pipe at `path`, for whose writer OpenImageIO would wait.
    static OpenImage open(const std::string& path, const OIIO::ImageSpec& config, std::string& error) {
        os::InputFile file = os::open_input_file(path);
        if (file == nullptr) {
            if (os::is_regular_file(path, error)) {
                error = "the file may not be read";
            }
            return {};
        }
        const std::string name = os::name_of_open_file(file.get(), path.c_str());
        // That name hides the extension by which OpenImageIO chooses a reader, so the reader is chosen here.
        // Without one, or when it fails, OpenImageIO tries all of them in turn.
        error.clear();
        if (const std::string format = format_by_extension(path); !format.empty()) {
            OIIO::ImageSpec spec;
            if (auto input = OIIO::ImageInput::create(format); input != nullptr) {
                if (input->open(name, spec, config)) {
                    return {std::move(file), std::move(input)};
                }
                error = input->geterror();
            }
            (void)OIIO::geterror();  // would otherwise be reported for the next file
        }
        if (auto input = OIIO::ImageInput::open(name, &config); input != nullptr) {
            return {std::move(file), std::move(input)};
        }
        const std::string last = OIIO::geterror();
        error = OIIO::Strutil::replace(error.empty() ? last : error, name, path, true);
        return {std::move(file), nullptr};
    }

    /// Whether there was a file to read, also when no reader accepted it.
    [[nodiscard]] bool has_file() const { return file_ != nullptr; }
    [[nodiscard]] explicit operator bool() const { return input_ != nullptr; }
    OIIO::ImageInput& operator*() const { return *input_; }
    OIIO::ImageInput* operator->() const { return input_.get(); }

  private:
    OpenImage() = default;
    OpenImage(os::InputFile file, std::unique_ptr<OIIO::ImageInput> input)
        : file_(std::move(file)), input_(std::move(input)) {}

    os::InputFile file_;  // stays open: readers open it again by name for a second image
    std::unique_ptr<OIIO::ImageInput> input_;
};

bool probe_file(const char* path, Header& header, const Reporter& reporter) {
    // Without this OpenImageIO premultiplies on reading and no longer says what the file holds.
    OIIO::ImageSpec config;
    config.attribute(kUnassociated, 1);
    std::string error;
    const auto input = OpenImage::open(path, config, error);
    if (!input) {
        return reporter.fail(input.has_file() ? Code::not_an_image : Code::cannot_open,
                             error.empty() ? "no image reader accepts the file" : error);
    }
    const OIIO::ImageSpec& spec = input->spec();
    header.width_px = spec.full_width > 0 ? spec.full_width : spec.width;
    header.height_px = spec.full_height > 0 ? spec.full_height : spec.height;
    header.channels = spec.nchannels;
    header.bits_per_channel =
        spec.get_int_attribute("oiio:BitsPerSample", static_cast<int>(spec.format.size()) * 8);
    header.has_alpha = spec.alpha_channel >= 0;
    header.alpha_premultiplied = header.has_alpha && spec.get_int_attribute(kUnassociated, 0) == 0;
    if (header.width_px < 1 || header.height_px < 1 || header.channels < 1) {
        return reporter.fail(Code::not_an_image, "the picture has no pixels");
    }
    return true;
}

void warn_of_losses(OIIO::ImageInput& input, const OIIO::ImageSpec& spec, const Reporter& reporter) {
    if (spec.format != OIIO::TypeUInt8) {
        reporter.warn(Code::depth_reduced, std::string("its values are ") + spec.format.c_str() +
                                               "; a texture has 8 bits per channel");
    }
    if (input.seek_subimage(1, 0)) {
        reporter.warn(Code::images_left_out, "the file holds more images; a texture has only one");
    }
}

/// The texture of an image whose pixels are given as they are stored, channels interleaved.
Texture texture_of(const OIIO::ImageSpec& spec, const std::vector<std::uint8_t>& pixels) {
    const imageio::ChannelPlan plan = imageio::plan_channels(spec);
    Texture texture = imageio::make_texture(spec.width, spec.height, plan, spec);
    const std::size_t row_bytes =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
    for (std::int32_t y = 0; y < spec.height; ++y) {
        imageio::copy_row_in(texture, plan, 0, y, spec.width,
                             pixels.data() + static_cast<std::size_t>(y) * row_bytes, spec.nchannels);
    }
    return texture;
}

bool read_file(const char* path, AlphaBytes alpha_bytes, Texture& texture, const Reporter& reporter) {
    OIIO::ImageSpec config;
    if (alpha_bytes == AlphaBytes::kept) {
        config.attribute(kUnassociated, 1);
    }
    std::string error;
    const auto input = OpenImage::open(path, config, error);
    if (!input) {
        return input.has_file() ? reporter.fail(Code::not_an_image, library_reason(std::move(error)))
                                : reporter.fail(Code::cannot_open, error);
    }
    const OIIO::ImageSpec spec = input->spec();
    if (const std::string reason = imageio::refuse_image(spec); !reason.empty()) {
        return reporter.fail(Code::unsupported, reason);
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(spec.image_pixels()) *
                                     static_cast<std::size_t>(spec.nchannels));
    if (!input->read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) {
        return reporter.fail(Code::not_an_image, library_reason(input->geterror()));
    }
    texture = texture_of(spec, pixels);
    warn_of_losses(*input, spec, reporter);
    return true;
}

/// Formats that mark alpha as associated, or know no other kind, store a texture's bytes as they are. For all
/// other formats OpenImageIO divides colour by alpha unless it is told that this has been done.
bool stores_associated_alpha(std::string_view format) {
    return format == "tiff" || format == "openexr";
}

/// Why the format cannot hold all channels; empty when it can.
std::string channels_without_room(const OIIO::ImageOutput& output, const Texture& texture) {
    constexpr int kRgba = 4;
    const std::size_t alphas = texture.alphas.size();
    if (alphas > 0 && output.supports("alpha") == 0) {
        return std::string(output.format_name()) + " files have no alpha channel; --alpha none leaves it out";
    }
    if (texture.channels() + static_cast<int>(alphas) > kRgba && output.supports("nchannels") == 0) {
        return std::string(output.format_name()) + " files have only one alpha channel, the texture has " +
               std::to_string(alphas) + "; --alpha N chooses one";
    }
    return {};
}

bool write_rows(OIIO::ImageOutput& output, const Texture& texture) {
    std::vector<std::uint8_t> row(static_cast<std::size_t>(texture.width_px) *
                                  (static_cast<std::size_t>(texture.channels()) + texture.alphas.size()));
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, row.data());
        if (!output.write_scanline(y, 0, OIIO::TypeUInt8, row.data())) {
            return false;
        }
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

/// Writes the image into `file`, by way of memory where the format's writer supports that: not every writer
/// checks whether the disk accepted its data, and one ends the process when it did not. Writers without that
/// support write the file themselves, and the file is read back.
bool encode(OIIO::ImageOutput& output, const OIIO::ImageSpec& spec, const Texture& texture,
            os::ReplacementFile& file, const Reporter& reporter) {
    OIIO::Filesystem::IOVecOutput memory;
    const bool in_memory = output.supports("ioproxy") != 0 && output.set_ioproxy(&memory);
    if (!output.open(file.temporary_path(), spec)) {
        const bool begun = os::file_state(file.temporary_path()).size_bytes > 0;
        return reporter.fail(begun ? Code::not_written : Code::channels_without_room,
                             library_reason(output.geterror()));
    }
    std::string reason;
    if (!write_rows(output, texture)) {
        reason = library_reason(output.geterror());
    } else if (!in_memory) {
        reason = written_picture_error(file.temporary_path(), spec, texture, output.format_name());
    } else if (memory.buffer().empty()) {
        reason = "the image library wrote nothing";
    } else {
        file.fill({reinterpret_cast<const char*>(memory.buffer().data()), memory.buffer().size()}, reason);
    }
    return reason.empty() || reporter.fail(Code::not_written, reason);
}

bool write_file(const char* path, const Texture& texture, AlphaBytes alpha_bytes, const Reporter& reporter) {
    const auto output = OIIO::ImageOutput::create(path);
    if (output == nullptr) {
        return reporter.fail(Code::no_format, library_reason(OIIO::geterror()));
    }
    if (texture.pixel_count() == 0) {
        return reporter.fail(Code::unsupported, "the texture has no pixels");
    }
    if (const std::string reason = channels_without_room(*output, texture); !reason.empty()) {
        return reporter.fail(Code::channels_without_room, reason);
    }
    OIIO::ImageSpec spec = imageio::texture_spec(texture);
    if (alpha_bytes == AlphaBytes::kept && !stores_associated_alpha(output->format_name())) {
        spec.attribute(kUnassociated, 1);
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        return reporter.fail(Code::cannot_open, error);
    }
    if (!encode(*output, spec, texture, *file, reporter)) {
        return false;
    }
    return file->put_in_place(error) || reporter.fail(Code::not_written, error);
}

bool has_writer(const char* path) {
    const auto output = OIIO::ImageOutput::create(path);
    if (output == nullptr) {
        (void)OIIO::geterror();  // would otherwise be reported for the next file
        return false;
    }
    // Two writers make no file: one discards everything, the other shows the image in the terminal.
    const std::string_view format = output->format_name();
    return format != "null" && format != "term";
}

/// Runs `work` and reports an exception as `gave_up`.
template <typename Work>
bool guarded(const Reporter& reporter, const Work& work) {
    try {
        return work();
    } catch (const std::exception& failure) {
        return reporter.fail(Code::gave_up, failure.what());
    }
}

constexpr Functions kFunctions{
    Functions::kVersion,
    [](const char* path, Header* header, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return probe_file(path, *header, reporter); });
    },
    [](const char* path, AlphaBytes alpha_bytes, Texture* texture, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return read_file(path, alpha_bytes, *texture, reporter); });
    },
    [](const char* path, const Texture* texture, AlphaBytes alpha_bytes, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return write_file(path, *texture, alpha_bytes, reporter); });
    },
    [](const char* path) {
        try {
            return has_writer(path);
        } catch (const std::exception&) {
            return false;
        }
    },
};

}  // namespace
}  // namespace image

OIIO_EXPORT const image::Functions* vxr_image_functions() {
    return &image::kFunctions;
}
