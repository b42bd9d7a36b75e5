#include "imageio/texture_spec.h"

#include <cstddef>
#include <cstdint>
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
    if (spec.width < 1 || spec.height < 1 || spec.nchannels < 1) {
        return OIIO::Strutil::fmt::format("an image of {} x {} pixels with {} channels has nothing to store",
                                          spec.width, spec.height, spec.nchannels);
    }
    if (std::int64_t{spec.width} * spec.height > limits::kTexturePixels.value) {
        return OIIO::Strutil::fmt::format("{} x {} pixels exceed the largest texture, which has 2^30",
                                          spec.width, spec.height);
    }
    return {};
}

OIIO::ImageSpec texture_spec(const Texture& texture) {
    const std::vector<std::string> names = channel_names(texture);
    OIIO::ImageSpec spec(texture.width_px, texture.height_px, static_cast<int>(names.size()),
                         OIIO::TypeDesc::UINT8);
    spec.channelnames = names;
    spec.alpha_channel = texture.alphas.empty() ? -1 : texture.channels();
    spec.attribute("oiio:BitsPerSample", 8);
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
