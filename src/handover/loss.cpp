#include "handover/loss.h"

namespace handover {
namespace {

using diagnostic::Severity;
using enum LossCode;

constexpr std::array<diagnostic::CodeRow<LossCode>, kLossCodes> kLossRows{{
    {footage_missing,
     {"handover-footage-missing", Severity::loss, "A placeholder stands in for missing footage."}},
    {footage_needs_plug_in,
     {"handover-footage-needs-plug-in", Severity::loss,
      "Only the plug-in reads this footage; without it a placeholder stands in.",
      "install the plug-in, or convert the texture with `vxr texture convert` and relink the scene"}},
    {footage_not_handed_over,
     {"handover-footage-not-handed-over", Severity::note, "The file for this program has no footage."}},
    {sequence_elsewhere,
     {"handover-sequence-elsewhere", Severity::loss,
      "No file of the sequence has the number of a frame of the scene; its first file is shown at the "
      "start."}},
    {sequence_gap, {"handover-sequence-gap", Severity::loss, "Files of a sequence are missing."}},
    {light_kind_changed,
     {"handover-light-kind-changed", Severity::loss,
      "The program has no light of this kind; the nearest is taken."}},
    {shadow_kind_lost,
     {"handover-shadow-kind-lost", Severity::loss,
      "The program is not told which kind of shadow the light casts."}},
    {light_intensity_unit,
     {"handover-light-intensity-unit", Severity::warning,
      "The scene's intensities have no unit, and the program measures light; it may look brighter or "
      "darker."}},
    {cone_lost, {"handover-cone-lost", Severity::loss, "The cone angle of a spot light is not handed over."}},
    {aspect_cut, {"handover-aspect-cut", Severity::loss, "The pixel aspect is cut to hundredths."}},
    {name_cut, {"handover-name-cut", Severity::note, "A name is cut."}},
    {curve_between_keys,
     {"handover-curve-between-keys", Severity::loss,
      "Between keys, the program moves the object along another way than the scene."}},
    {turn_too_fast,
     {"handover-turn-too-fast", Severity::loss,
      "An object turns so far from one frame to the next that the program goes another way between them."}},
    {view_angle_lost,
     {"handover-view-angle-lost", Severity::loss,
      "The angle of view changes, and most readers of the file ignore it."}},
    {aim_undefined,
     {"handover-aim-undefined", Severity::loss,
      "A camera that is aimed by a point of interest looks straight up or down, or beyond; its picture is "
      "turned.",
      "hand it over with the correction upright-aim"}},
    {rounded,
     {"handover-rounded", Severity::loss,
      "The file keeps seven digits of each number, and things close to a camera show what is missing.",
      "move the scene closer to its origin, or the cameras less far in a frame"}},
    {null_orientation_open,
     {"handover-null-orientation-open", Severity::note,
      "The scene does not say in which order a null turns about its axes."}},
    {blend_lost, {"handover-blend-lost", Severity::note, "The file for this program has no blend modes."}},
    {value_not_finite,
     {"handover-value-not-finite", Severity::loss, "A number is not finite; it is replaced or left out."}},
    {outside_host_range,
     {"handover-outside-host-range", Severity::loss,
      "A number is outside the range that the program accepts."}},
}};
static_assert(diagnostic::in_order(kLossRows, outside_host_range));

}  // namespace

const std::array<diagnostic::CodeRow<LossCode>, kLossCodes>& loss_code_table() {
    return kLossRows;
}

const diagnostic::CodeInfo& code_info(LossCode code) {
    return kLossRows[static_cast<std::size_t>(code)].info;
}

}  // namespace handover
