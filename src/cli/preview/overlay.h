#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "cli/scene/scene_reading.h"
#include "handover/proof/truth.h"
#include "image/image.h"

namespace cli {

/// What may be drawn over a frame.
enum class OverlayPart {
    camera,  ///< the horizon, the aim, and a line of text: name, frame, angle of view
    nulls,   ///< a cross and a name for each
    safe,    ///< the frames within which action and titles are safe
    grid,    ///< the ground, y = 0, and the axes
};

/// The parts that a user names: "camera,nulls". Throws std::invalid_argument for another word.
[[nodiscard]] std::set<OverlayPart> overlay_parts(const std::string& words);

/// Draws what the scene's first camera with keys sees, as vxr proof has it, so that one glance shows whether
/// it agrees with the footage. For one thread.
class Overlay {
  public:
    /// `reading` outlives it. Throws std::invalid_argument if a part needs a camera and no camera
    /// has a key.
    Overlay(const SceneReading& reading, std::set<OverlayPart> parts);

    /// Draws over a picture of frame `frame` of the composition, counted from 0. The picture has the scene's
    /// shape and any size; its colour is straight, and it has one alpha.
    void draw(Texture& picture, std::int64_t frame) const;

  private:
    const tagProjectSettings& settings_;
    std::set<OverlayPart> parts_;
    std::vector<proof::TruthObject> objects_;
    std::optional<std::size_t> camera_;  ///< in `objects_`
};

}  // namespace cli
