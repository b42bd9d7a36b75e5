#include "image_library/image_facts.h"

#include <OpenImageIO/imageio.h>

#include <exception>

#include "image_library/open_image.h"

namespace {

bool probe(const std::string& path, image_library::ImageFacts& facts, std::string& error) {
    // Colour is asked for as it is stored, so that the file says itself whether it is premultiplied.
    OIIO::ImageSpec config;
    config.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = image_library::OpenImage::open(path, config, error);
    if (!input) {
        if (error.empty()) {
            error = "no reader takes the file";
        }
        return false;
    }
    const OIIO::ImageSpec& spec = input->spec();
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
        return false;
    }
    return true;
}

}  // namespace

OIIO_EXPORT bool vxr_probe_image(const std::string& path, image_library::ImageFacts& facts,
                                 std::string& error) {
    try {
        return probe(path, facts, error);
    } catch (const std::exception& failure) {
        error = failure.what();
        return false;
    }
}
