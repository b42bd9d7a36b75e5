#pragma once

#include <array>

#include "diagnostic/diagnostic.h"

namespace handover {

/// Where another program differs from the scene. The names are published like those of `vxr check`.
enum class LossCode {
    footage_missing,          ///< a placeholder stands in
    footage_needs_plug_in,    ///< textures
    footage_not_handed_over,  ///< targets without footage
    sequence_elsewhere,       ///< no file has the number of a frame of the scene
    sequence_gap,
    light_kind_changed,
    shadow_kind_lost,
    light_intensity_unit,
    cone_lost,
    aspect_cut,
    name_cut,
    curve_between_keys,
    turn_too_fast,
    view_angle_lost,
    aim_undefined,  ///< a point of interest does not hold the camera's view
    rounded,        ///< by numbers of single precision
    null_orientation_open,
    blend_lost,
    value_not_finite,
    outside_host_range,
};

inline constexpr std::size_t kLossCodes = 20;

[[nodiscard]] const std::array<diagnostic::CodeRow<LossCode>, kLossCodes>& loss_code_table();
[[nodiscard]] const diagnostic::CodeInfo& code_info(LossCode code);

}  // namespace handover
