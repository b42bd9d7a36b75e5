#include "image/oiio_reading.h"

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "imageio/channel_plan.h"
#include "imageio/texture_spec.h"
#include "system/files.h"
#include "system/open_regular_file.h"
#include "texture/value/alpha_use.h"

namespace image {
namespace {

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

/// OpenImageIO names the channels of a grey TIFF with several extra samples as if they were RGB.
void name_grey_channels(OIIO::ImageSpec& spec) {
    constexpr int kMinIsBlack = 1;
    if (spec.nchannels < 3 || spec.get_int_attribute("tiff:PhotometricInterpretation", -1) != kMinIsBlack) {
        return;
    }
    spec.channelnames.assign(1, "Y");
    for (int channel = 1; channel < spec.nchannels; ++channel) {
        spec.channelnames.push_back(channel == spec.alpha_channel ? "A"
                                                                  : "channel" + std::to_string(channel));
    }
}

/// Warns of what a texture does not hold.
void warn_of_losses(OIIO::ImageInput& input, const OIIO::ImageSpec& spec, const imageio::ChannelPlan& plan,
                    const Reporter& reporter) {
    if (const std::string guess = imageio::guess_text(spec, plan); !guess.empty()) {
        reporter.warn(Code::channels_guessed, "its channels do not say what they are: " + guess);
    }
    if (spec.format != OIIO::TypeUInt8) {
        reporter.warn(Code::depth_reduced, std::string("its values are ") + spec.format.c_str() +
                                               "; a texture has 8 bits per channel");
    }
    const std::string space = spec.get_string_attribute("oiio:ColorSpace");
    if (plan.mode == Texture::kRgb && OIIO::Strutil::istarts_with(space, "linear")) {
        reporter.warn(Code::colour_not_converted,
                      "its colour is linear; a texture's is taken as sRGB, and values are kept as they are");
    }
    if (const std::vector<std::string> names = imageio::metadata_without_room(spec); !names.empty()) {
        reporter.warn(Code::metadata_left_out, "a texture has no room for " + imageio::list_text(names));
    }
    if (input.seek_subimage(1, 0)) {
        reporter.warn(Code::images_left_out, "the file holds more images; a texture has only one");
    }
}

/// The texture of an image whose pixels are given as they are stored, channels interleaved.
Texture texture_of(const OIIO::ImageSpec& spec, const imageio::ChannelPlan& plan,
                   const std::vector<std::uint8_t>& pixels) {
    const imageio::Placement place = imageio::place_image(spec);
    Texture texture = imageio::make_texture(place.width_px, place.height_px, plan, spec);
    const std::size_t row_bytes =
        static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels);
    for (std::int32_t y = 0; y < spec.height; ++y) {
        imageio::copy_row_in(texture, plan, place.x, place.y + y, spec.width,
                             pixels.data() + static_cast<std::size_t>(y) * row_bytes, spec.nchannels);
    }
    return texture;
}

}  // namespace

bool probe_with_library(const char* path, Header& header, const Reporter& reporter) {
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
        return reporter.fail(Code::not_an_image, no_pixels_text(header.width_px, header.height_px));
    }
    return true;
}

bool read_with_library(const char* path, const AlphaOptions& alpha, Texture& texture,
                       const Reporter& reporter) {
    // Straight pixels of a texture are those of a format with straight alpha, so only others are converted.
    const bool library_converts =
        alpha.bytes == AlphaBytes::converted && alpha.pixels == AlphaPixels::premultiplied;
    OIIO::ImageSpec config;
    if (!library_converts) {
        config.attribute(kUnassociated, 1);
    }
    std::string error;
    const auto input = OpenImage::open(path, config, error);
    if (!input) {
        return input.has_file() ? reporter.fail(Code::not_an_image, library_reason(std::move(error)))
                                : reporter.fail(Code::cannot_open, error);
    }
    OIIO::ImageSpec spec = input->spec();
    name_grey_channels(spec);
    if (const std::string reason = imageio::refuse_image(spec); !reason.empty()) {
        return reporter.fail(Code::unsupported, reason);
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(spec.image_pixels()) *
                                     static_cast<std::size_t>(spec.nchannels));
    if (!input->read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) {
        return reporter.fail(Code::not_an_image, library_reason(input->geterror()));
    }
    const imageio::ChannelPlan plan = imageio::plan_channels(spec);
    texture = texture_of(spec, plan, pixels);
    if (alpha.bytes == AlphaBytes::converted && alpha.pixels == AlphaPixels::straight &&
        spec.alpha_channel >= 0 && spec.get_int_attribute(kUnassociated, 0) == 0) {
        divide_by_alpha(texture);
    }
    warn_of_losses(*input, spec, plan, reporter);
    return true;
}

}  // namespace image
