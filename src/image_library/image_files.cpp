#include "image_library/image_files.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>

#include "image_library/open_image.h"
#include "imageio/channel_plan.h"
#include "system/replacement_file.h"
#include "imageio/texture_spec.h"
#include "system/files.h"

namespace {

using image_library::AlphaBytes;
using image_library::Outcome;
using image_library::Reading;
using image_library::Remark;
using image_library::Writing;

constexpr const char* kUnassociated = "oiio:UnassociatedAlpha";

Reading refused(Outcome outcome, const char* code, std::string reason) {
    return {outcome, {code, std::move(reason)}, std::nullopt, {}};
}

Writing not_written(Outcome outcome, const char* code, std::string reason) {
    return {outcome, {code, std::move(reason)}};
}

/// The library's text for what went wrong, on one line.
std::string library_reason(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text.empty() ? "the image library does not say why" : text;
}

std::vector<Remark> losses(OIIO::ImageInput& input, const OIIO::ImageSpec& spec) {
    std::vector<Remark> warnings;
    if (spec.format != OIIO::TypeUInt8) {
        warnings.push_back({"depth-reduced", std::string("its values are ") + spec.format.c_str() +
                                                 ", a texture has 8 bits a channel"});
    }
    if (input.seek_subimage(1, 0)) {
        warnings.push_back({"images-left-out", "there are further images in it, a texture has one"});
    }
    return warnings;
}

Texture sorted(const OIIO::ImageSpec& spec, const std::vector<std::uint8_t>& pixels) {
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

/// Formats that mark associated alpha, or have no other, get a texture's bytes as they are. All others divide
/// unless they are told that it has been done.
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
        return std::string(output.format_name()) + " files have one alpha channel, the texture has " +
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

/// What is wrong with the picture that was just written to `path`; empty when nothing is.
std::string wrong_picture(const std::string& path, const OIIO::ImageSpec& spec, const Texture& texture,
                          std::string_view format) {
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
        return {};  // the one loses, the other adds a channel; both tell of a file that is cut off
    }
    bool same = found.width == spec.width && found.height == spec.height && found.nchannels == spec.nchannels;
    std::vector<std::uint8_t> row(static_cast<std::size_t>(spec.width) *
                                  static_cast<std::size_t>(spec.nchannels));
    for (std::int32_t y = 0; same && y < texture.height_px; ++y) {
        imageio::copy_row_out(texture, y, row.data());
        same =
            std::equal(row.begin(), row.end(), pixels.begin() + y * static_cast<std::ptrdiff_t>(row.size()));
    }
    return same ? std::string() : "not all of it was written";
}

/// Writes the image into `file`: into memory first where its format can be, because not every writer of the
/// library looks whether the disk has taken what it was given, and one ends the process when it has not. The
/// others write the file themselves, and what they wrote is read again.
Writing encode(OIIO::ImageOutput& output, const OIIO::ImageSpec& spec, const Texture& texture,
               os::ReplacementFile& file) {
    OIIO::Filesystem::IOVecOutput memory;
    const bool in_memory = output.supports("ioproxy") != 0 && output.set_ioproxy(&memory);
    if (!output.open(file.temporary_path(), spec)) {
        const bool begun = os::file_state(file.temporary_path()).size_bytes > 0;
        return not_written(begun ? Outcome::cannot_open_or_write : Outcome::refused,
                           begun ? "not-written" : "channels-without-room",
                           library_reason(output.geterror()));
    }
    std::string reason;
    if (!write_rows(output, texture)) {
        reason = library_reason(output.geterror());
    } else if (!in_memory) {
        reason = wrong_picture(file.temporary_path(), spec, texture, output.format_name());
    } else if (memory.buffer().empty()) {
        reason = "the image library wrote nothing";
    } else {
        file.fill({reinterpret_cast<const char*>(memory.buffer().data()), memory.buffer().size()}, reason);
    }
    return reason.empty() ? Writing{}
                          : not_written(Outcome::cannot_open_or_write, "not-written", std::move(reason));
}

Reading read_file(const std::string& path, AlphaBytes alpha_bytes) {
    OIIO::ImageSpec config;
    if (alpha_bytes == AlphaBytes::kept) {
        config.attribute(kUnassociated, 1);
    }
    std::string error;
    const auto input = image_library::OpenImage::open(path, config, error);
    if (!input) {
        return input.has_file() ? refused(Outcome::refused, "not-an-image", library_reason(std::move(error)))
                                : refused(Outcome::cannot_open_or_write, "cannot-open", std::move(error));
    }
    const OIIO::ImageSpec spec = input->spec();
    if (std::string reason = imageio::refuse_image(spec); !reason.empty()) {
        return refused(Outcome::refused, "unsupported", std::move(reason));
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(spec.image_pixels()) *
                                     static_cast<std::size_t>(spec.nchannels));
    if (!input->read_image(0, 0, 0, -1, OIIO::TypeUInt8, pixels.data())) {
        return refused(Outcome::refused, "not-an-image", library_reason(input->geterror()));
    }
    return {Outcome::done, {}, sorted(spec, pixels), losses(*input, spec)};
}

Writing write_file(const std::string& path, const Texture& texture, AlphaBytes alpha_bytes) {
    const auto output = OIIO::ImageOutput::create(path);
    if (output == nullptr) {
        return not_written(Outcome::refused, "no-format", library_reason(OIIO::geterror()));
    }
    if (texture.pixel_count() == 0) {
        return not_written(Outcome::refused, "unsupported", "the texture has no pixels");
    }
    if (std::string reason = channels_without_room(*output, texture); !reason.empty()) {
        return not_written(Outcome::refused, "channels-without-room", std::move(reason));
    }
    OIIO::ImageSpec spec = imageio::texture_spec(texture);
    if (alpha_bytes == AlphaBytes::kept && !stores_associated_alpha(output->format_name())) {
        spec.attribute(kUnassociated, 1);
    }
    std::string error;
    std::optional<os::ReplacementFile> file = os::ReplacementFile::create(path, error);
    if (!file.has_value()) {
        return not_written(Outcome::cannot_open_or_write, "cannot-open", error);
    }
    Writing encoded = encode(*output, spec, texture, *file);
    if (encoded.outcome != Outcome::done) {
        return encoded;
    }
    if (!file->put_in_place(error)) {
        return not_written(Outcome::cannot_open_or_write, "not-written", error);
    }
    return {};
}

bool writes(const std::string& path) {
    const auto output = OIIO::ImageOutput::create(path);
    if (output == nullptr) {
        (void)OIIO::geterror();  // so that it is not told for the next file
        return false;
    }
    // Two that make no file: the one throws everything away, the other shows the image in the terminal.
    const std::string_view format = output->format_name();
    return format != "null" && format != "term";
}

}  // namespace

OIIO_EXPORT void vxr_read_image(const std::string& path, AlphaBytes alpha_bytes, Reading& reading) {
    try {
        reading = read_file(path, alpha_bytes);
    } catch (const std::exception& failure) {
        reading = refused(Outcome::gave_up, "gave-up", failure.what());
    }
}

OIIO_EXPORT void vxr_write_image(const std::string& path, const Texture& texture, AlphaBytes alpha_bytes,
                                 Writing& writing) {
    try {
        writing = write_file(path, texture, alpha_bytes);
    } catch (const std::exception& failure) {
        writing = not_written(Outcome::gave_up, "gave-up", failure.what());
    }
}

OIIO_EXPORT bool vxr_writes_image(const std::string& path) {
    try {
        return writes(path);
    } catch (const std::exception&) {
        return false;
    }
}
