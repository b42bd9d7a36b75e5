#pragma once

// What After Effects itself is asked by a script: where the cameras of a scene put points, in the imported
// and in the corrected project, and what a few trials give that do not depend on the scene.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "handover/handover.h"

namespace handover {

/// Points in the scene's axes and units, to be seen at a frame of the scene's timeline.
struct MeasuredMoment {
    double frame = 0;
    std::vector<std::array<double, 3>> points;
};

/// A camera of the scene, by its index in Handover::objects.
struct MeasuredCamera {
    std::size_t object = 0;
    std::vector<MeasuredMoment> moments;
};

/// A pixel of a texture that is neither opaque nor transparent, in a neighbourhood that is the same.
struct TextureTrial {
    std::string path;  ///< absolute
    double x_px = 0;   ///< the middle of the pixel, from the texture's top left corner
    double y_px = 0;
    std::array<double, 3> color{};  ///< as stored, from 0 to 1
    double alpha = 0;               ///< from 0 to 1
};

/// All of it. The same scene gives the same questions, so that answers can be judged later.
struct Measuring {
    std::string scene;  ///< the scene's stable id
    std::string sum;    ///< of what is asked: 16 hexadecimal digits
    std::vector<MeasuredCamera> cameras;
    std::optional<TextureTrial> texture;
};

/// One way in which a camera arrives.
struct MeasuredView {
    Version version = Version::corrected;
    std::size_t camera = 0;        ///< index in Measuring::cameras
    std::size_t item = kNone;      ///< of the composition with the camera
    std::size_t layer = kNone;     ///< the camera in that composition
    std::size_t root = kNone;      ///< the item of the root composition
    std::size_t shown_by = kNone;  ///< the root composition's layer that shows `item`; kNone: it is the root
};

/// Both versions of a scene's project in folders of their own, and only what its cameras need: the
/// compositions with cameras and the root, cameras and nulls. Ids are others than those of the project that a
/// scene is handed over as, so that nothing of it is found or changed.
struct MeasuredProject {
    Handover project;
    std::vector<MeasuredView> views;
    std::vector<std::string> absent;  ///< cameras that a version does not have, one sentence each
};
[[nodiscard]] MeasuredProject measured_project(const Handover& imported, const Handover& corrected,
                                               const Measuring& measuring);

}  // namespace handover
