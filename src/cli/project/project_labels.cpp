#include "cli/project/project_labels.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace cli {
namespace {

std::string range_text(const embedded::FrameRange& range) {
    return range.first == range.last ? std::to_string(range.first)
                                     : std::to_string(range.first) + "-" + std::to_string(range.last);
}

// Point and ambient lights shine in every direction.
bool lacks_aim(const embedded::Layer& layer) {
    const AEGP_LightType type = layer.light_type.value_or(kLightTypePoint);
    const bool directed = type == kLightTypeSpot || type == kLightTypeParallel;
    return directed && !layer.looks_at_point_of_interest();
}

}  // namespace

std::string light_type_label(const embedded::Layer& layer) {
    if (!layer.light_type) {
        return "light";
    }
    switch (*layer.light_type) {
        case kLightTypeParallel:
            return "parallel light";
        case kLightTypeSpot:
            return "spot light";
        case kLightTypePoint:
            return "point light";
        case kLightTypeAmbient:
            return "ambient light";
        default:
            return "light of kind " + std::to_string(*layer.light_type);
    }
}

double seconds_of(const A_Time& time) {
    return time.scale == 0 ? 0 : static_cast<double>(time.value) / static_cast<double>(time.scale);
}

double rate_of(const A_Ratio& rate) {
    return rate.den == 0 ? 0 : static_cast<double>(rate.num) / static_cast<double>(rate.den);
}

std::string frames_text(double seconds, const A_Ratio& rate) {
    const double frames = seconds * rate_of(rate);
    // The divisions round, so a value this close to a whole frame is one.
    constexpr double kRounding = 1e-6;
    const double whole = std::round(frames);
    return std::abs(frames - whole) < kRounding * std::max(1.0, std::abs(frames)) ? plain_number(whole)
                                                                                  : plain_number(frames);
}

std::string frame_count_text(double seconds, const A_Ratio& rate) {
    const std::string count = frames_text(seconds, rate);
    return count + (count == "1" ? " frame" : " frames");
}

std::string blend_label(const AEGP_LayerTransferMode& mode) {
    switch (mode.mode) {
        case kTransferModeNormal:
            return "normal";
        case kTransferModeAdd:
            return "add";
        case kTransferModeMultiply:
            return "multiply";
        default:
            return "mode " + std::to_string(mode.mode);
    }
}

std::string alpha_label(const embedded::Footage& footage) {
    const AEGP_AlphaFlags flags = footage.interpretation.alpha.flags;
    if ((flags & kAlphaFlagIgnore) != 0) {
        return "ignored";
    }
    if (!footage.has_alpha && footage.kind != embedded::FootageKind::placeholder) {
        return "none";
    }
    return (flags & kAlphaFlagPremultiplied) != 0 ? "premultiplied" : "straight";
}

std::string fields_label(const AEGP_FootageInterp& interpretation) {
    if (interpretation.interlace.type == kFieldTypeWholeFrames) {
        return "progressive";
    }
    return interpretation.interlace.order == kFieldOrderUpperFirst ? "upper first" : "lower first";
}

std::string footage_label(embedded::FootageKind kind) {
    switch (kind) {
        case embedded::FootageKind::file:
            return "still";
        case embedded::FootageKind::sequence:
            return "sequence";
        case embedded::FootageKind::module_file:
            return "texture";
        case embedded::FootageKind::placeholder:
            break;
    }
    return "MISSING";
}

std::string layer_label(const embedded::Project& project, const embedded::Layer& layer) {
    switch (layer.kind) {
        case embedded::LayerKind::footage:
            return footage_label(project.footage_of(project.item(layer.source_item).content).kind);
        case embedded::LayerKind::composition:
            return "composition";
        case embedded::LayerKind::camera:
            return layer.looks_at_point_of_interest() ? "camera" : "one-node camera";
        case embedded::LayerKind::light:
            return light_type_label(layer) + (lacks_aim(layer) ? ", not aimed" : "");
        case embedded::LayerKind::null:
            break;
    }
    return "null";
}

std::string channels_label(int channels) {
    static constexpr std::array<const char*, 4> kWords{"grey", "grey+alpha", "RGB", "RGBA"};
    return channels >= 1 && channels <= 4 ? kWords[static_cast<std::size_t>(channels - 1)]
                                          : std::to_string(channels) + " channels";
}

std::string frame_range_text(const embedded::SequenceFrames& frames) {
    constexpr std::size_t kShown = 8;
    std::string text = range_text(frames.range);
    for (std::size_t i = 0; i < frames.gaps.size() && i < kShown; ++i) {
        text += (i == 0 ? " without " : ", ") + range_text(frames.gaps[i]);
    }
    return frames.gaps.size() > kShown ? text + ", ..." : text;
}

}  // namespace cli
