#pragma once

// Which points After Effects is asked for, and where the scene's own camera puts them.

#include <optional>
#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "handover/measuring.h"
#include "handover/proof/landing.h"

namespace proof {

/// The cameras that are measured: the first of the file that have a picture.
inline constexpr std::size_t kMostMeasuredCameras = 8;
/// At least so many test points for each camera.
inline constexpr std::size_t kMeasuredPoints = 200;

/// The same for the same scene, on every machine but for the last digits of points. `scene` is its path.
[[nodiscard]] handover::Measuring measuring_plan(const tagProjectSettings& settings, const std::string& scene,
                                                 const std::optional<handover::TextureTrial>& texture);

/// Where the points of the plan are in the scene's picture: for each camera and moment as many. Points that
/// the comparison leaves out, because they are behind the camera or far outside the frame, are not seen.
[[nodiscard]] std::vector<std::vector<std::vector<Landing>>> true_landings(const tagProjectSettings& settings,
                                                                           const handover::Measuring& plan);

}  // namespace proof
