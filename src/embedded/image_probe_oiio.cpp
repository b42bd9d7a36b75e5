#include <OpenImageIO/imageio.h>

#include "embedded/image_probe.h"
#include "system/files.h"

namespace embedded {

std::optional<ImageFacts> probe_image(const std::string& path, std::string& error) {
    // Regular files only: opening a pipe would wait for somebody to write into it.
    if (!os::is_regular_file(path, error))
        return std::nullopt;
    // Colour is asked for as it is stored, so that the file says itself whether it is premultiplied.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(path, &config);
    if (!input) {
        error = OIIO::geterror();
        if (error.empty())
            error = "no reader takes the file";
        return std::nullopt;
    }
    const OIIO::ImageSpec& spec = input->spec();
    ImageFacts facts;
    facts.width_px = spec.full_width > 0 ? spec.full_width : spec.width;
    facts.height_px = spec.full_height > 0 ? spec.full_height : spec.height;
    facts.channels = spec.nchannels;
    facts.bits_per_channel =
        spec.get_int_attribute("oiio:BitsPerSample", static_cast<int>(spec.format.size()) * 8);
    facts.is_float = spec.format.is_floating_point();
    facts.has_alpha = spec.alpha_channel >= 0;
    facts.alpha_premultiplied = facts.has_alpha && spec.get_int_attribute("oiio:UnassociatedAlpha", 0) == 0;
    facts.format = input->format_name();
    if (facts.width_px < 1 || facts.height_px < 1 || facts.channels < 1) {
        error = "the picture has no pixels";
        return std::nullopt;
    }
    return facts;
}

std::string image_library_note() {
    return {};
}

}  // namespace embedded
