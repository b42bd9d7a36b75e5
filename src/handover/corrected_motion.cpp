// Corrections of what cameras, lights and nulls do between and at their keys.
//
// A camera that is aimed at its point of interest is LookAt . Orientation . RX . RY . RZ in After Effects,
// whose axes point right, down and away. With orientation 0, its bank is RZ alone, which unlike an
// orientation keeps any number of turns.
//
// A camera that is not aimed carries all of its turning in Orientation . RX . RY . RZ. The scene turns by its
// heading outermost, then by its pitch, then by its bank: R = Ry(-heading) . Rx(pitch) . Rz(bank) takes the
// axes right, down and away to those of the camera. RX . RY . RZ alone has another order. But with Rz(90) in
// front, which takes x to y and y to -x,
//
//     Rz(90) . Rx(a) . Ry(b) . Rz(c) = Ry(a) . Rz(90) . Ry(b) . Rz(c) = Ry(a) . Rx(-b) . Rz(90 + c),
//
// which is R for a = -heading, b = -pitch, c = bank - 90. So with a constant orientation of 0, 0, 90 the
// three rotations are the scene's own angles, and go straight between keys where the scene's do: at any
// pitch, and for any number of turns.

#include <algorithm>
#include <cmath>
#include <limits>

#include "handover/correction_run.h"
#include "handover/loss.h"
#include "handover/motion_path.h"
#include "handover/straight_keys.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace handover {
namespace {

// Added keys of all objects together: one at every frame of an hour.
constexpr std::int64_t kMostAddedKeys = 100'000;

// A zoom changes many times as fast as a small angle of view that closes in. A camera that needs as many keys
// for its view has no point of interest instead.
constexpr std::int64_t kPartsOfZoom = 64;

constexpr double kRightAngle_degrees = 90;

// Zooms beyond this show less than a thousandth of a degree.
constexpr double kMostFocal_px = 1e8;

double zoom_of(const Shot& shot, double view_angle) {
    return shot.width_px * 0.5 / std::tan(radians_of(view_angle) * 0.5);
}

// The scene's y axis points up, and the host's down. No zero is negative.
void append_position(const Pose& pose, std::vector<double>& values) {
    values.insert(values.end(), {pose.position[0] + 0.0, 0.0 - pose.position[1], pose.position[2] + 0.0});
}

void append_aim(const Pose& pose, std::vector<double>& values) {
    const Vector view = view_of(pose);
    const double distance = pose.target_distance;
    values.insert(values.end(),
                  {view[0] * distance + pose.position[0], 0.0 - (view[1] * distance + pose.position[1]),
                   view[2] * distance + pose.position[2]});
}

double length(const Vector& a) {
    return std::hypot(a[0], a[1], a[2]);
}

// The angle between two vectors of any length, in radians; exact also where it is small.
double angle_from(const Vector& a, const Vector& b) {
    const Vector cross{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    return std::atan2(length(cross), a[0] * b[0] + a[1] * b[1] + a[2] * b[2]);
}

// How far apart points are in the picture whose directions differ.
class Picture {
  public:
    Picture(const Shot& shot, ObjectKind kind)
        : shot_(shot),
          is_camera_(kind == ObjectKind::camera),
          corner_px_(std::hypot(shot.width_px * 0.5, shot.height_px * 0.5 / shot.pixel_aspect)) {}

    [[nodiscard]] double corner_px() const { return corner_px_; }

    // Of a turn of the view at this pose: at the corner, where it moves points the most.
    [[nodiscard]] double px_per_radian(const Pose& pose) const {
        if (!is_camera_) {
            return shot_.width_px;  // of lights no picture is seen; this is that of a lens of 53 degrees
        }
        const double focal = std::clamp(std::abs(zoom_of(shot_, pose.view_angle)), 1.0, kMostFocal_px);
        // An aimed camera keeps upright, so near the vertical a small turn of its view rolls it.
        const double level =
            std::max(std::abs(std::cos(radians_of(pose.pitch))), std::sin(radians_of(kVertical_degrees)));
        return focal + corner_px_ * corner_px_ / focal + corner_px_ / level;
    }

  private:
    const Shot& shot_;
    bool is_camera_;
    double corner_px_;
};

// By how much the view misses that goes to the straight line between two points of interest, from the
// straight line between two positions.
double miss_of_aim(const Picture& picture, const Pose& a, const Pose& b) {
    const double turn = std::abs(b.heading - a.heading) + std::abs(b.pitch - a.pitch);
    if (turn == 0) {
        return 0;
    }
    // Samples say nothing about a path that turns more than this.
    constexpr double kMostTurn_degrees = 30;
    if (!(turn <= kMostTurn_degrees)) {
        return std::numeric_limits<double>::infinity();
    }
    const Vector view_a = view_of(a);
    const Vector view_b = view_of(b);
    double worst = 0;
    // The view along a great circle runs ahead and behind most at 0.21 and 0.79; beside it, in the middle.
    for (const double part : {0.21, 0.5, 0.79}) {
        const Pose pose = pose_between(a, b, part);
        Vector straight{};
        for (std::size_t i = 0; i < straight.size(); ++i) {
            straight[i] = view_a[i] * a.target_distance * (1 - part) + view_b[i] * b.target_distance * part;
        }
        const double miss = angle_from(view_of(pose), straight) * picture.px_per_radian(pose);
        worst = std::isnan(miss) ? miss : std::max(worst, miss);
    }
    return worst;
}

double miss_of_zoom(const Shot& shot, const Picture& picture, const Pose& a, const Pose& b) {
    if (a.view_angle == b.view_angle) {
        return 0;
    }
    const double zoom_a = zoom_of(shot, a.view_angle);
    const double zoom_b = zoom_of(shot, b.view_angle);
    double worst = 0;
    for (const double part : {0.3, 0.5, 0.7}) {
        const double zoom = zoom_of(shot, pose_between(a, b, part).view_angle);
        const double miss = std::abs((zoom_a + (zoom_b - zoom_a) * part) / zoom - 1) * picture.corner_px();
        worst = std::isnan(miss) ? miss : std::max(worst, miss);
    }
    return worst;
}

bool varies(const MotionPath& path, double Pose::*angle) {
    const std::vector<PathKey>& keys = path.keys();
    return std::any_of(keys.begin(), keys.end(),
                       [&](const PathKey& key) { return key.pose.*angle != keys.front().pose.*angle; });
}

bool is_motion(Property property) {
    switch (property) {
        case Property::anchor:
        case Property::position:
        case Property::orientation:
        case Property::rotate_x:
        case Property::rotate_y:
        case Property::rotate_z:
        case Property::zoom:
            return true;
        default:
            return false;
    }
}

/// Makes the tracks of one layer anew.
class MotionMaker {
  public:
    MotionMaker(CorrectionRun& run, Layer& layer, const SceneObject& object, std::int64_t& added)
        : run_(run),
          layer_(layer),
          object_(object),
          path_(object, run.wants(Correction::turns), run.options.cut_angle_degrees),
          picture_(run.handover.shot, object.kind),
          straight_(run.wants(Correction::linear_keys)),
          added_before_(added),
          added_(added) {}

    void make() {
        const Track position = keyed(append_position, Property::position);
        made_.push_back(position);
        if (object_.kind == ObjectKind::null) {
            add_rotations_of_null();
        } else {
            add_view();
        }
        if (object_.kind == ObjectKind::camera) {
            add_zoom();
        }
        // What does not move stays behind what does.
        std::erase_if(layer_.tracks, [&](const Track& track) {
            return is_motion(track.property) && !keeps(track.property);
        });
        layer_.tracks.insert(layer_.tracks.begin(), made_.begin(), made_.end());
        note_changes();
    }

  private:
    // A null's anchor is not its motion.
    [[nodiscard]] bool keeps(Property property) const {
        return object_.kind == ObjectKind::null && property == Property::anchor;
    }

    [[nodiscard]] double layer_frame(double frame) const {
        return frame - static_cast<double>(run_.handover.shot.from);
    }

    [[nodiscard]] Track empty_track(Property property) const {
        Track track;
        track.property = property;
        track.interpolation = straight_ ? Interpolation::linear : Interpolation::host;
        return track;
    }

    // A key for each of the path.
    template <class Append>
    [[nodiscard]] Track keyed(const Append& append, Property property) const {
        Track track = empty_track(property);
        track.frames.reserve(path_.keys().size());
        track.values.reserve(path_.keys().size() * component_count(property));
        for (const PathKey& key : path_.keys()) {
            if (key.holds) {
                track.holds.push_back(track.frames.size());
            }
            track.frames.push_back(layer_frame(static_cast<double>(key.frame)));
            append(key.pose, track.values);
        }
        return track;
    }

    void add_angle(Property property, double Pose::*angle, double factor, double offset = 0) {
        made_.push_back(
            keyed([&](const Pose& pose,
                      std::vector<double>& values) { values.push_back(factor * (pose.*angle) + offset); },
                  property));
    }

    void add_constant(Property property, std::vector<double> values) {
        Track track = empty_track(property);
        track.values = std::move(values);
        made_.push_back(std::move(track));
    }

    // As the importer does: a null's heading about x, its pitch about y, its bank about z.
    void add_rotations_of_null() {
        add_angle(Property::rotate_x, &Pose::heading, 1);
        add_angle(Property::rotate_y, &Pose::pitch, -1);
        add_angle(Property::rotate_z, &Pose::bank, 1);
    }

    void add_view() {
        const bool may_turn_freely =
            object_.kind == ObjectKind::camera && run_.wants(Correction::upright_aim);
        if (may_turn_freely && !can_be_aimed(path_)) {
            add_free_view("looks straight up or down, or beyond");
            return;
        }
        StraightKeys aim;
        const bool follows = straight_ && layer_.aimed;
        if (follows) {
            aim = straight_keys(
                path_,
                {append_aim, [&](const Pose& a, const Pose& b) { return miss_of_aim(picture_, a, b); }},
                kMostAddedKeys - added_);
            if (may_turn_freely && aim.too_fast > 0) {
                add_free_view("turns faster than a point of interest can follow");
                return;
            }
        }
        made_.push_back(follows ? track_of(std::move(aim), Property::anchor)
                                : keyed(append_aim, Property::anchor));
        if (!varies(path_, &Pose::bank)) {
            add_constant(Property::orientation, {0, 0, path_.keys().front().pose.bank});
        } else if (run_.wants(Correction::turns) && object_.kind == ObjectKind::camera) {
            // Lights have no rotations, and nobody sees one turn about its own axis.
            add_constant(Property::orientation, {0, 0, 0});
            add_angle(Property::rotate_z, &Pose::bank, 1);
        } else {
            made_.push_back(keyed(
                [](const Pose& pose, std::vector<double>& values) {
                    values.insert(values.end(), {0, 0, pose.bank});
                },
                Property::orientation));
        }
    }

    void add_free_view(const char* why) {
        layer_.aimed = false;
        add_constant(Property::orientation, {0, 0, kRightAngle_degrees});
        add_angle(Property::rotate_x, &Pose::heading, -1);
        add_angle(Property::rotate_y, &Pose::pitch, -1);
        add_angle(Property::rotate_z, &Pose::bank, 1, -kRightAngle_degrees);
        run_.changed(Correction::upright_aim,
                     text::quoted(object_.name) + " has no point of interest, because it " + why);
    }

    void add_zoom() {
        const Shot& shot = run_.handover.shot;
        const PosedProperty zoom{
            [&](const Pose& pose, std::vector<double>& values) {
                values.push_back(zoom_of(shot, pose.view_angle));
            },
            [&](const Pose& a, const Pose& b) { return miss_of_zoom(shot, picture_, a, b); }, kPartsOfZoom};
        made_.push_back(straight_
                            ? track_of(straight_keys(path_, zoom, kMostAddedKeys - added_), Property::zoom)
                            : keyed(zoom.append, Property::zoom));
    }

    Track track_of(StraightKeys keys, Property property) {
        added_ += keys.added;
        if (keys.too_fast > 0) {
            lose(property == Property::zoom ? LossCode::curve_between_keys : LossCode::turn_too_fast,
                 text::quoted(object_.name) + " changes its " +
                     (property == Property::zoom ? "angle of view" : "view") +
                     " too fast for keys between frames",
                 keys.too_fast);
        }
        if (keys.exhausted) {
            lose(LossCode::curve_between_keys,
                 text::quoted(object_.name) + " needs more keys for its way than the " +
                     std::to_string(kMostAddedKeys) + " that are added to a scene",
                 1);
        }
        Track track = empty_track(property);
        track.frames = std::move(keys.frames);
        for (double& frame : track.frames) {
            frame = layer_frame(frame);
        }
        track.values = std::move(keys.values);
        track.holds = std::move(keys.holds);
        return track;
    }

    void lose(LossCode code, const std::string& reason, std::int64_t count) {
        diagnostic::Diagnostic what = diagnostic::make(code, object_.at, reason);
        what.count = count;
        run_.handover.losses.push_back({std::move(what), Target::jsx});
    }

    void note_changes() {
        const std::vector<PathKey>& keys = path_.keys();
        const std::string name = text::quoted(object_.name);
        if (straight_ && keys.size() > 1) {
            const std::int64_t added = added_ - added_before_;
            run_.changed(Correction::linear_keys,
                         name + " goes straight from key to key" +
                             (added > 0 ? "; " + std::to_string(added) + " keys are added for that" : ""));
        }
        std::int64_t turned = 0;
        std::string first;
        for (std::size_t i = 0; i < keys.size(); ++i) {
            const bool turns = keys[i].turned && (i == 0 || !keys[i - 1].turned);
            if (!turns && !keys[i].holds) {
                continue;
            }
            if (++turned == 1) {
                first =
                    name + (keys[i].holds ? " holds still from frame " + std::to_string(keys[i].frame) +
                                                " to the next, a cut"
                                          : " turns the short way to frame " + std::to_string(keys[i].frame));
            }
        }
        if (turned > 0) {
            run_.changed(Correction::turns, first, turned);
        }
    }

    CorrectionRun& run_;
    Layer& layer_;
    const SceneObject& object_;
    MotionPath path_;
    Picture picture_;
    bool straight_;
    std::int64_t added_before_;
    std::int64_t& added_;  // keys of all objects so far
    std::vector<Track> made_;
};

}  // namespace

void correct_motion(CorrectionRun& run) {
    if (!run.wants(Correction::linear_keys) && !run.wants(Correction::turns) &&
        !run.wants(Correction::upright_aim)) {
        return;
    }
    std::int64_t added = 0;
    for (Composition& composition : run.handover.compositions) {
        for (Layer& layer : composition.layers) {
            if (layer.object != kNone && !run.handover.objects[layer.object].keys.empty()) {
                MotionMaker(run, layer, run.handover.objects[layer.object], added).make();
            }
        }
    }
}

}  // namespace handover
