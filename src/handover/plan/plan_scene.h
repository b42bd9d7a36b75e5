#pragma once

// What a plan shows, as plain numbers in the scene's axes and units, without a page.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "handover/handover.h"
#include "handover/motion_path.h"

namespace plan {

using handover::Vector;

/// How an object stands at a frame of the scene's timeline.
struct Moment {
    double frame = 0;
    handover::Pose pose;
};

/// What a camera sees at a frame, as far as its point of interest.
struct Frustum {
    double frame = 0;
    Vector eye{};
    Vector aim{};                 ///< the point of interest
    std::vector<Vector> corners;  ///< of the frame at the distance of the aim; none without an angle of view
};

/// A stretch of an object's motion without a cut: `moments` are as many as needed for straight lines between
/// them to be the motion, up to kMostMoments.
struct Stretch {
    std::vector<Moment> moments;
};

/// An object within the frames of the shot.
struct Mover {
    std::size_t object = 0;  ///< index in `Handover::objects`
    std::vector<Stretch> stretches;
    std::vector<std::int64_t> keys;     ///< the frames of keys within the shot, ascending; up to kMostMoments
    std::vector<Vector> key_positions;  ///< for each of `keys`
    std::int64_t keys_within = 0;       ///< all of them
    std::int64_t keys_outside = 0;      ///< before the shot's first frame or after its last
    std::vector<Frustum> frusta;        ///< of cameras: first, last, beside cuts, a few between; ascending
    std::vector<std::array<double, 2>> cuts;  ///< the frames before and after each

    [[nodiscard]] const Moment& first() const { return stretches.front().moments.front(); }
    [[nodiscard]] const Moment& last() const { return stretches.back().moments.back(); }
    [[nodiscard]] bool moves() const;
};

/// The shot with everything that has a key.
struct Scene {
    double begin = 0;  ///< the shot's first and last frame
    double end = 0;
    std::vector<Mover> cameras;  ///< in the order of the file, as the others
    std::vector<Mover> lights;
    std::vector<Mover> nulls;
    std::int64_t without_keys = 0;  ///< objects that are nowhere
    std::string first_without_key;  ///< its name
    std::int64_t not_drawn = 0;     ///< objects beyond the most that a picture can show
};

inline constexpr std::size_t kMostCameras = 8;
inline constexpr std::size_t kMostLights = 60;
inline constexpr std::size_t kMostNulls = 300;
/// Of a motion: more than there are points across the page, twice.
inline constexpr std::size_t kMostMoments = 4000;
/// The most cuts of a camera that have frusta beside them.
inline constexpr std::size_t kMostCutFrusta = 6;

[[nodiscard]] Scene scene_of(const handover::Handover& handover, double cut_angle_degrees);

/// The point of interest.
[[nodiscard]] Vector aim_of(const handover::Pose& pose);

}  // namespace plan
