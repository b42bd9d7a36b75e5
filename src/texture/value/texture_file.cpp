#include "texture/value/texture_file.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <utility>

#include "limit/limits.h"
#include "system/files.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image_filter.h"
#include "texture/value/texture_image.h"
#include "texture/value/texture_recorder.h"

namespace {

diagnostic::Diagnostic error_of(const std::string& path, TextureFault fault, std::string reason) {
    return diagnostic::make(fault, {path}, std::move(reason));
}

TextureReading read(const std::string& path, const TextureReadOptions& options) {
    TextureReading reading;
    Texture texture;
    TextureRecorder recorder(path, options.outline);
    TextureSink sink(texture, recorder, options.limits.decoded_bytes);
    TXLImageFilter filter;
    filter.SetObserver(&recorder);
    const bool loaded = filter.LoadImage(path.c_str(), &sink);
    if (recorder.error().has_value()) {
        reading.error = recorder.error();
        if (reading.error->code == TextureFault::cannot_open &&
            os::file_state(path).kind == os::FileKind::missing) {
            reading.error->reason = "the file does not exist";
        }
    } else if (!loaded) {
        reading.error = error_of(path, TextureFault::short_transfer, "the file could not be read");
    } else {
        recorder.finish();
        sink.finish();
        if (!sink.has_picture()) {
            reading.error = error_of(path, TextureFault::no_picture, "the file has no texture header");
        } else if (texture_channels(texture.mode) == 0) {
            reading.error =
                error_of(path, TextureFault::unsupported,
                         "colour mode " + std::to_string(texture.mode) + "; only 2 and 4 can be read");
        } else if (texture.pixel_count() == 0) {
            reading.error =
                error_of(path, TextureFault::no_picture, no_pixels_text(texture.width_px, texture.height_px));
        } else {
            reading.texture = std::move(texture);
            reading.colour_rows = sink.colour_rows();
        }
    }
    reading.warnings = std::move(recorder.warnings());
    reading.layers = std::move(recorder.layers());
    reading.chunks = std::move(recorder.chunks());
    return reading;
}

std::optional<diagnostic::Diagnostic> write(const std::string& path, const Texture& texture) {
    if (const std::optional<std::string> reason = validate_for_writing(texture); reason.has_value()) {
        const bool empty = texture.width_px == 0 || texture.height_px == 0;
        return error_of(path, empty ? TextureFault::no_picture : TextureFault::bad_value, *reason);
    }
    TextureRecorder recorder(path, false);
    TextureSource source(texture);
    TXLImageFilter filter;
    filter.SetObserver(&recorder);
    if (!filter.SaveImage(path.c_str(), &source)) {
        return recorder.error().has_value()
                   ? recorder.error()
                   : error_of(path, TextureFault::short_transfer, "the file could not be written");
    }
    const std::uint64_t size = os::file_state(path).size_bytes;
    if (size > static_cast<std::uint64_t>(limits::kTextureFile.value)) {
        diagnostic::Diagnostic error =
            error_of(path, TextureFault::over_limit,
                     "the file has " + std::to_string(size) + " bytes; readers accept fewer than 2^31 - 1");
        error.limit = &limits::kTextureFile;
        return error;
    }
    return std::nullopt;
}

}  // namespace

bool begins_as_texture(std::span<const std::uint8_t> first_bytes) {
    constexpr std::array<std::uint8_t, 8> kStart = {'A', 'V', 'X', 'R', 'T', 'e', 'x', 'a'};
    return first_bytes.size() >= kStart.size() &&
           std::equal(kStart.begin(), kStart.end(), first_bytes.begin());
}

TextureReading read_texture(const std::string& path, const TextureReadOptions& options) {
    try {
        return read(path, options);
    } catch (const std::bad_alloc&) {
        TextureReading reading;
        reading.error = error_of(path, TextureFault::out_of_memory, "no memory");
        return reading;
    }
}

std::optional<diagnostic::Diagnostic> write_texture(const std::string& path, const Texture& texture) {
    try {
        return write(path, texture);
    } catch (const std::bad_alloc&) {
        return error_of(path, TextureFault::out_of_memory, "no memory");
    }
}

std::vector<std::string> names_without_room(const Texture& texture) {
    std::vector<std::string> names;
    for (const AlphaChannel& alpha : texture.alphas) {
        const std::size_t last_letter = alpha.name.find_last_not_of(".0123456789");
        const std::string word =
            alpha.name.substr(0, last_letter == std::string::npos ? last_letter : last_letter + 1);
        if (word != "A" && word != "Alpha" && word != "alpha" && word != "channel" && !word.empty()) {
            names.push_back(alpha.name);
        }
    }
    return names;
}

std::optional<std::string> validate_for_writing(const Texture& texture) {
    if (texture_channels(texture.mode) == 0) {
        return "colour mode " + std::to_string(texture.mode) + "; only 2 and 4 can be written";
    }
    if (texture.width_px == 0 || texture.height_px == 0) {
        return no_pixels_text(texture.width_px, texture.height_px);
    }
    const std::int64_t pixel_count = std::int64_t{texture.width_px} * texture.height_px;
    if (texture.width_px < 0 || texture.height_px < 0 || pixel_count > limits::kTexturePixels.value) {
        return std::to_string(texture.width_px) + " x " + std::to_string(texture.height_px) +
               " pixels; sizes must not be negative, and at most 2^30 pixels are written";
    }
    if (texture.pixels.size() != texture.pixel_count() * static_cast<std::size_t>(texture.channels())) {
        return std::to_string(texture.pixels.size()) + " bytes of colour do not fit the size and mode";
    }
    for (const AlphaChannel& alpha : texture.alphas) {
        if (alpha.values.size() != texture.pixel_count()) {
            return std::to_string(alpha.values.size()) + " bytes of alpha '" + alpha.name +
                   "' do not fit the size";
        }
    }
    if (texture.alphas.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        return "more alpha channels than 32 bits can count";
    }
    return std::nullopt;
}
