#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

#include "cli/scene/key_track.h"
#include "cli/scene/scene_check.h"
#include "cli/scene/scene_geometry.h"
#include "cli/scene/written_number.h"
#include "composition/build/host_values.h"

namespace cli {
namespace {

// What every camera of the scene has in common.
struct CameraFrame {
    double width_px;
    double height_px;
    double scene_aspect;  ///< as the scene says it: the scale of the layer "Camera+Light"
    double comp_aspect;   ///< in hundredths: the pixel aspect of the composition "Camera+Light"
};

// The axes of a view aimed along `direction`, without bank. No numbers for a view straight up or down.
ViewAxes aimed_axes(const Vec3& direction) {
    const Vec3 view = (1 / length(direction)) * direction;
    const Vec3 right = (1 / std::hypot(view.x, view.z)) * Vec3{view.z, 0, -view.x};
    return {right, cross(view, right), view};
}

// Where the right edge of a camera's frame is in its own space, at depth 1; the top edge is that times height
// over width and aspect.
double right_edge(const tagKeyFrame& key) {
    return std::tan(radians_from_degrees(double{key.fov}) * 0.5);
}

// How far, in pixels of the root composition, the corners of the frame move if the space of a composition is
// as much wider as its pixels are: everything in it is then stretched along x, the camera's position and
// point of interest too, and what the camera sees is narrowed by as much. A camera that looks along z shows
// the same either way; one that is turned or banked does not. Infinite when a corner gets behind the camera.
double largest_shift(const tagKeyFrame& key, const CameraFrame& frame) {
    const auto stretched = [&](const Vec3& way) { return Vec3{frame.comp_aspect * way.x, way.y, way.z}; };
    const ViewAxes truth = axes_of(key);
    const ViewAxes shown = banked(aimed_axes(stretched(truth.view)), double{key.rotation[2]});
    const double edge = right_edge(key);
    const double top = edge * frame.height_px / (frame.width_px * frame.scene_aspect);
    const double zoom = zoom_px(frame.width_px, double{key.fov});
    double largest = 0;
    for (const double x : {-1.0, 1.0}) {
        for (const double y : {-1.0, 1.0}) {
            const Vec3 corner = stretched(truth.view + x * edge * truth.right + y * top * truth.up);
            const double depth = dot(corner, shown.view);
            const double x_px = zoom * dot(corner, shown.right) / depth / frame.comp_aspect;
            const double y_px = zoom * dot(corner, shown.up) / depth * frame.scene_aspect;
            const double shift =
                depth <= 0 ? HUGE_VAL
                           : std::hypot(x_px - x * frame.width_px / 2, y_px - y * frame.height_px / 2);
            // NaN compares as false, so it never counts.
            largest = shift > largest ? shift : largest;
        }
    }
    return largest;
}

bool is_visible_angle(const tagKeyFrame& key) {
    return key.fov > 0 && key.fov < 180;
}

void check_camera(const SceneBlock& camera, const CameraFrame& frame, WarningList& warnings) {
    const KeyTrack keys(camera);
    double largest = 0;
    std::size_t at = 0;
    std::int64_t count = 0;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const double shift = is_visible_angle(keys[i]) ? largest_shift(keys[i], frame) : 0;
        count += shift >= kVisible_px ? 1 : 0;
        if (shift > largest) {
            largest = shift;
            at = i;
        }
    }
    if (count == 0) {
        return;
    }
    // Beyond the width the number says nothing.
    const std::string shift = largest <= frame.width_px ? "up to " + measured_text(largest) + " pixels"
                                                        : "more than the width of the picture";
    Diagnostic& warning = warnings.add(
        ToolCode::aspect_turns_camera, keys.written(at).at(),
        "a turned camera among pixels of aspect " + measured_text(frame.comp_aspect) + ": at frame " +
            std::to_string(keys[at].frame) + " the corners of the picture can be off by " + shift,
        camera.within);
    warning.count = count;
    warning.effects.insert(warning.effects.begin(),
                           {"the camera is in the composition \"Camera+Light\", which has this pixel aspect; "
                            "the corners are off if After Effects stretches the space of such a composition",
                            "right in either case: square pixels for \"Camera+Light\", and a scale of " +
                                measured_text(frame.comp_aspect * 100) + " % by " +
                                shortest_text(frame.scene_aspect * 100) + " % for its layer"});
}

}  // namespace

void check_pixel_aspect(const SceneReading& reading, WarningList& warnings) {
    const tagProjectSettings& settings = *reading.settings;
    // Cameras are in the root composition otherwise; an aspect out of range is an error already.
    if (settings.aspect == 1.0F || !(settings.aspect >= 0.01F && settings.aspect <= 100.0F)) {
        return;
    }
    const A_Ratio cut = pixel_aspect_ratio(settings.aspect);
    const CameraFrame frame{static_cast<double>(settings.width), static_cast<double>(settings.height),
                            double{settings.aspect}, static_cast<double>(cut.num) / cut.den};
    if (settings.width < 1 || settings.height < 1 || cut.num < 1) {
        return;
    }
    for (const SceneBlock& object : reading.facts.objects) {
        if (object.kind == BlockKind::camera) {
            check_camera(object, frame, warnings);
        }
    }
}

}  // namespace cli
