#include "handover/correction.h"

#include <algorithm>

namespace handover {
namespace {

constexpr std::array<CorrectionInfo, kCorrections> kCorrectionRows{{
    {Correction::square_pixels, "square-pixels",
     "Whether After Effects stretches the 3D space of a composition with other pixels is not proved; with "
     "square pixels the camera is right either way."},
    {Correction::exact_aspect, "exact-aspect",
     "The plug-in gets the pixel aspect to the host in hundredths; the scene has more digits."},
    {Correction::plate_frames, "plate-frames",
     "The plug-in shows the first file of a sequence at the layer's start, whatever its number."},
    {Correction::linear_keys, "linear-keys",
     "After Effects moves layers along curves from key to key; the scene moves them straight."},
    {Correction::turns, "turns",
     "Angles that are written from -180 to 180 jump by a whole turn, and a cut is no turn at all."},
    {Correction::upright_aim, "upright-aim",
     "A camera that is aimed at its point of interest cannot look straight up or down, nor turn very fast."},
    {Correction::spot_cone, "spot-cone",
     "The cone of a spot light does not reach the host through the plug-in."},
    {Correction::whole_names, "whole-names",
     "The plug-in's names for missing footage end after 31 or 32 bytes."},
    {Correction::null_anchors, "null-anchors",
     "Versions of After Effects give a new null different anchor points."},
    {Correction::frame_rate, "frame-rate",
     "Scenes have whole frames a second; the footage may have been made for 29.97 or 23.976."},
    {Correction::key_noise, "key-noise",
     "Keys that lie on the line between their neighbours, to the precision of the scene's numbers, say "
     "nothing."},
}};

consteval bool in_order() {
    for (std::size_t i = 0; i < kCorrectionRows.size(); ++i) {
        if (kCorrectionRows[i].correction != static_cast<Correction>(i)) {
            return false;
        }
    }
    return true;
}
static_assert(in_order());

}  // namespace

const std::array<CorrectionInfo, kCorrections>& correction_table() {
    return kCorrectionRows;
}

std::optional<Correction> correction_named(std::string_view name) {
    const auto* const found = std::find_if(kCorrectionRows.begin(), kCorrectionRows.end(),
                                           [&](const CorrectionInfo& info) { return info.name == name; });
    return found == kCorrectionRows.end() ? std::nullopt : std::optional(found->correction);
}

}  // namespace handover
