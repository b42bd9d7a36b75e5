#include "imageio/texture_spec.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "imageio/channel_plan.h"
#include "limit/limits.h"

namespace imageio {

namespace {

void add_layers(OIIO::ImageSpec& spec, const TextureReading& reading, std::size_t alpha_count) {
    const std::vector<ChunkOutline::Layer>& layers = reading.layers;
    if (layers.size() < alpha_count) {
        return;
    }
    // Only the last layers have alphas: a second texture header drops those of the layers before it.
    const std::size_t dropped = layers.size() - alpha_count;
    for (std::size_t i = 0; i < alpha_count; ++i) {
        const ChunkOutline::Layer& layer = layers[dropped + i];
        const std::string prefix = "txl:layer" + std::to_string(i);
        spec.attribute(prefix + ":name", layer.name);
        spec.attribute(prefix + ":mode", layer.color_mode);
        spec.attribute(prefix + ":attributes",
                       OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(layer.attributes.size())),
                       layer.attributes.data());
    }
}

/// A part of the plane, in 64 bits: a file may name any numbers.
struct Window {
    std::int64_t x, y, width, height;
};

Window data_window(const OIIO::ImageSpec& spec) {
    return {spec.x, spec.y, spec.width, spec.height};
}

/// The data window where the image has no display window.
Window display_window(const OIIO::ImageSpec& spec) {
    const bool given = spec.full_width > 0 && spec.full_height > 0;
    return given ? Window{spec.full_x, spec.full_y, spec.full_width, spec.full_height} : data_window(spec);
}

/// "64 x 48 at -8, 0"
std::string window_text(const Window& window) {
    return OIIO::Strutil::fmt::format("{} x {} at {}, {}", window.width, window.height, window.x, window.y);
}

std::string warnings_text(const std::vector<diagnostic::Diagnostic>& warnings) {
    std::string text;
    for (const diagnostic::Diagnostic& warning : warnings) {
        text += text.empty() ? "" : "; ";
        text += OIIO::Strutil::fmt::format("{} x {} from 0x{:x}: {}", warning.code.name(), warning.count,
                                           warning.at.offset_bytes.value_or(0), warning.reason);
    }
    return text;
}

}  // namespace

std::string refuse_image(const OIIO::ImageSpec& spec) {
    if (spec.deep) {
        return "deep images cannot be stored in a texture";
    }
    if (spec.depth > 1) {
        return "volumes cannot be stored in a texture";
    }
    if (spec.width < 1 || spec.height < 1) {
        return no_pixels_text(spec.width, spec.height);
    }
    if (spec.nchannels < 1) {
        return "the picture has no channels";
    }
    const Window data = data_window(spec);
    const Window display = display_window(spec);
    const std::int64_t pixels = display.width * display.height;
    if (pixels > limits::kTexturePixels.value) {
        return OIIO::Strutil::fmt::format("{} x {} pixels exceed the largest texture, which has 2^30",
                                          display.width, display.height);
    }
    if (data.x < display.x || data.y < display.y || data.x + data.width > display.x + display.width ||
        data.y + data.height > display.y + display.height) {
        return "its pixels, " + window_text(data) + ", extend beyond its display window, " +
               window_text(display) + "; crop the image to that window first";
    }
    if (pixels * spec.nchannels > limits::kDecodedBytes.value) {
        return OIIO::Strutil::fmt::format("{} x {} pixels with {} channels exceed the {} bytes that are read",
                                          display.width, display.height, spec.nchannels,
                                          limits::kDecodedBytes.value);
    }
    return {};
}

Placement place_image(const OIIO::ImageSpec& spec) {
    const Window data = data_window(spec);
    const Window display = display_window(spec);
    return {static_cast<std::int32_t>(display.width), static_cast<std::int32_t>(display.height),
            static_cast<std::int32_t>(data.x - display.x), static_cast<std::int32_t>(data.y - display.y)};
}

std::string refuse_channels(int channels) {
    const int most = OIIO::get_int_attribute("limits:channels", 0);
    if (most < 1 || channels <= most) {
        return {};
    }
    return OIIO::Strutil::fmt::format("{} channels exceed limits:channels, which is {}", channels, most);
}

std::vector<std::string> metadata_without_room(const OIIO::ImageSpec& spec) {
    // How a file stores its pixels, and what programs write into every file.
    constexpr const char* kStorage[] = {"oiio:",        "tiff:",          "png:",
                                        "jpeg:",        "openexr:",       "targa:",
                                        "bmp:",         "webp:",          "heif:",
                                        "pnm:",         "gif:",           "txl:",
                                        "planarconfig", "compression",    "XResolution",
                                        "YResolution",  "ResolutionUnit", "Software",
                                        "screenWindow", "DateTime",       "Exif:ImageHistory"};
    std::vector<std::string> names;
    for (const OIIO::ParamValue& value : spec.extra_attribs) {
        const std::string name = value.name().string();
        const bool storage =
            std::any_of(std::begin(kStorage), std::end(kStorage),
                        [&](const char* beginning) { return OIIO::Strutil::istarts_with(name, beginning); });
        // These two are there in most files, and matter only where they differ from the usual.
        const bool usual = (name == "Orientation" && value.get_int() == 1) ||
                           (name == "PixelAspectRatio" && value.get_float() == 1.0F);
        if (!storage && !usual) {
            names.push_back(name);
        }
    }
    return names;
}

OIIO::ImageSpec texture_spec(const Texture& texture) {
    const std::vector<std::string> names = channel_names(texture);
    OIIO::ImageSpec spec(texture.width_px, texture.height_px, static_cast<int>(names.size()),
                         OIIO::TypeDesc::UINT8);
    spec.channelnames = names;
    spec.alpha_channel = texture.alphas.empty() ? -1 : texture.channels();
    spec.attribute("oiio:BitsPerSample", 8);
    if (texture.mode == Texture::kRgb) {
        spec.attribute("oiio:ColorSpace", "sRGB");
    }
    spec.attribute("txl:mode", texture.mode);
    spec.attribute("txl:alphas", static_cast<int>(texture.alphas.size()));
    return spec;
}

OIIO::ImageSpec texture_spec(const TextureReading& reading) {
    const Texture& texture = reading.texture.value();
    OIIO::ImageSpec spec = texture_spec(texture);
    add_layers(spec, reading, texture.alphas.size());
    if (!reading.warnings.empty()) {
        spec.attribute("txl:warnings", warnings_text(reading.warnings));
    }
    return spec;
}

bool asks_for_memory(const OIIO::ImageSpec& config) {
    const OIIO::ParamValue* const proxy = config.find_attribute("oiio:ioproxy", OIIO::TypeDesc::PTR);
    return proxy != nullptr && *static_cast<void* const*>(proxy->data()) != nullptr;
}

std::string error_text(const diagnostic::Diagnostic& error) {
    std::string text = error.at.file;
    if (error.at.offset_bytes.has_value()) {
        text += OIIO::Strutil::fmt::format("@0x{:x}", *error.at.offset_bytes);
    }
    text += ": " + error.reason;
    if (!error.within.empty()) {
        text += " (in " + chunk_path(error.within) + ")";
    }
    return text;
}

}  // namespace imageio
