#pragma once

// Test points projected by the scene's own camera and by what arrives elsewhere, and how far apart they land.

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "handover/proof/landing.h"

namespace proof {

/// What targets that are to say what the scene says may be off by at keys and other whole frames.
inline constexpr double kGoal_px = 0.05;

/// Why points land elsewhere.
enum class Cause {
    stretched_space,  ///< a composition's space is as much wider as its pixels are
    aspect_cut,       ///< the pixel aspect has lost digits
    curve,            ///< positions or points of interest go along curves between keys
    bank_sense,       ///< the camera banks to the other side
    view_angle,       ///< the angle of view does not change with time
    interpolation,    ///< right at the keys, and another way between them
    undefined,        ///< the target's camera has no sound numbers
    rounding,         ///< numbers of single precision
    unexplained,
};

struct CauseInfo {
    Cause cause;
    const char* name;  ///< stable: "curve-between-keys"
    const char* text;  ///< for people, no full stop
};
[[nodiscard]] const CauseInfo& info_of(Cause cause);

/// A program that gets the scene: what it shows, and what it shows when some causes are taken away.
struct ProofTarget {
    std::string name;             ///< "corrected"
    bool judged = false;          ///< it is to say what the scene says, within kGoal_px
    std::vector<Cause> suspects;  ///< what `camera` can take away
    /// Returns the camera of an object with these causes taken away, or null and the reason in `problem`.
    std::function<std::unique_ptr<Projector>(std::size_t object, const std::set<Cause>& without,
                                             std::string& problem)>
        camera;
    /// Where an object is. Nothing if it did not arrive.
    std::function<std::optional<Point>(std::size_t object, double frame)> position;
};

struct ProofOptions {
    int grid_points = 27;  ///< at least so many around each camera's aim; from 1 to 1000
    double cut_angle_degrees = kUsualCutAngle_degrees;
    std::vector<double> listed_frames;  ///< at which CameraResult::listed has every test point
};

/// A test point where it is farthest off.
struct FarthestPoint {
    double px = 0;
    double frame = 0;
    std::string point;  ///< "corner at 2 times the target distance"
    Landing truth;
    Landing landed;
};

/// How far a target's camera puts points from where the scene's camera does.
struct Deviation {
    FarthestPoint largest;
    double mean_px = 0;
    double in_frame_px = 0;  ///< the largest of points within the frame, edges included
    std::int64_t compared = 0;
    std::int64_t lost = 0;         ///< in the scene's picture, and nowhere in the target's
    double at_keys_px = 0;         ///< the largest at keys of the scene
    double at_frames_px = 0;       ///< the largest at other whole frames
    double between_frames_px = 0;  ///< seen only in motion blur, and not judged
};

/// What a cause is worth: the largest distance before and after it is taken away.
struct CauseFound {
    Cause cause = Cause::unexplained;
    double before_px = 0;
    double after_px = 0;
};

struct TargetResult {
    std::string target;
    bool judged = false;
    std::string problem;  ///< why there is no camera to compare; else empty
    Deviation deviation;
    std::vector<CauseFound> causes;  ///< the weightiest first; empty if nothing deviates

    /// The largest distance at whole frames.
    [[nodiscard]] double judged_px() const;
    [[nodiscard]] bool meets_goal() const;
};

/// A few of a camera's points for a picture, at one frame.
struct PicturePoint {
    Landing truth;
    std::vector<Landing> landed;  ///< for each target of the camera
};

/// A test point at one frame, and where everything shows it.
struct ListedPoint {
    std::string label;  ///< "a corner at the target distance"
    Point place;
    Landing truth;                ///< not seen if the point does not count
    std::vector<Landing> landed;  ///< for each target of the camera
};

struct ListedFrame {
    double frame = 0;
    std::vector<ListedPoint> points;  ///< none if the camera has no picture
};

struct CameraResult {
    std::size_t object = 0;  ///< in the order of the file
    std::string name;
    std::int64_t keys = 0;
    std::int64_t keys_compared = 0;
    std::int64_t moments = 0;     ///< at which points were compared
    std::int64_t left_out = 0;    ///< points behind the camera or far outside the frame
    std::int64_t no_picture = 0;  ///< moments without a sound angle of view or position
    std::vector<TargetResult> targets;
    double picture_frame = 0;  ///< where the judged, else the other targets are farthest off
    std::vector<PicturePoint> picture;
    std::vector<ListedFrame> listed;  ///< as ProofOptions::listed_frames
};

struct NullResult {
    std::size_t object = 0;
    std::string name;
    /// For each target the largest distance at whole frames, in the scene's units; nothing if it did not
    /// arrive.
    std::vector<std::optional<double>> distances;
    std::vector<double> frames;  ///< where
};

struct ProofResult {
    std::vector<std::string> targets;
    std::vector<CameraResult> cameras;
    std::vector<NullResult> nulls;
    std::int64_t nulls_in_scene = 0;  ///< if more than were compared
    [[nodiscard]] bool meets_goal() const;
    /// The null that a target, by its index, puts farthest from its place. Null if no null arrives.
    [[nodiscard]] const NullResult* worst_null(std::size_t target) const;
};

/// At most so many keys of a camera, and of the ways between them, are compared: evenly spaced ones.
inline constexpr std::size_t kMostKeys = 400;
/// The most nulls that are compared, the first of the file.
inline constexpr std::size_t kMostNulls = 200;

[[nodiscard]] ProofResult compare(const tagProjectSettings& settings, const std::vector<ProofTarget>& targets,
                                  const ProofOptions& options);

}  // namespace proof
