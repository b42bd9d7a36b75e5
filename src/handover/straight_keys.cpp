#include "handover/straight_keys.h"

namespace handover {
namespace {

constexpr double kMissAtFrames_px = 0.01;
// Between frames only motion blur and fields see anything.
constexpr double kMissBetweenFrames_px = 0.02;

// A stretch between two keys of the path, in parts of a frame from the first.
struct Stretch {
    std::int64_t begin;
    std::int64_t end;
};

class Segment {
  public:
    Segment(const PathKey& a, const PathKey& b, std::int64_t parts_of_frame)
        : a_(a), b_(b), parts_of_frame_(parts_of_frame), parts_((b.frame - a.frame) * parts_of_frame) {}

    [[nodiscard]] std::int64_t parts() const { return parts_; }
    [[nodiscard]] Pose pose(std::int64_t part) const {
        return part == 0 ? a_.pose
               : part == parts_
                   ? b_.pose
                   : pose_between(a_.pose, b_.pose, static_cast<double>(part) / static_cast<double>(parts_));
    }
    [[nodiscard]] double frame(std::int64_t part) const {
        return static_cast<double>(a_.frame) +
               static_cast<double>(part) / static_cast<double>(parts_of_frame_);
    }

  private:
    const PathKey& a_;
    const PathKey& b_;
    std::int64_t parts_of_frame_;
    std::int64_t parts_;
};

class KeyLayer {
  public:
    KeyLayer(const PosedProperty& property, std::int64_t most_added, StraightKeys& keys)
        : property_(property), most_added_(most_added), keys_(keys) {}

    void add(const Pose& pose, double frame) {
        keys_.frames.push_back(frame);
        property_.append(pose, keys_.values);
    }

    // The keys of a segment, but for its first.
    void add_segment(const Segment& segment) {
        open_.assign(1, {0, segment.parts()});
        while (!open_.empty()) {
            const Stretch stretch = open_.back();
            open_.pop_back();
            const Pose end = segment.pose(stretch.end);
            if (must_split(segment.pose(stretch.begin), end, stretch.end - stretch.begin)) {
                ++keys_.added;
                open_.push_back({middle(stretch), stretch.end});
                open_.push_back({stretch.begin, middle(stretch)});
            } else {
                add(end, segment.frame(stretch.end));
            }
        }
    }

  private:
    // A whole frame, if there is one.
    [[nodiscard]] std::int64_t middle(const Stretch& stretch) const {
        const std::int64_t length = stretch.end - stretch.begin;
        const std::int64_t frame = property_.parts;
        return stretch.begin + (length > frame ? length / frame / 2 * frame : length / 2);
    }

    bool must_split(const Pose& begin, const Pose& end, std::int64_t parts) {
        const double miss = property_.miss_px(begin, end);
        const bool whole_frames = parts > property_.parts;
        if (miss <= (whole_frames ? kMissAtFrames_px : kMissBetweenFrames_px)) {
            return false;
        }
        if (keys_.added >= most_added_) {
            keys_.exhausted = true;
            return false;
        }
        if (parts == 1) {
            ++keys_.too_fast;
            return false;
        }
        return true;
    }

    const PosedProperty& property_;
    std::int64_t most_added_;
    StraightKeys& keys_;
    std::vector<Stretch> open_;
};

}  // namespace

StraightKeys straight_keys(const MotionPath& path, const PosedProperty& property, std::int64_t most_added) {
    StraightKeys keys;
    const std::vector<PathKey>& path_keys = path.keys();
    keys.frames.reserve(path_keys.size());
    KeyLayer layer(property, most_added, keys);
    for (std::size_t i = 0; i < path_keys.size(); ++i) {
        const PathKey& key = path_keys[i];
        if (i == 0 || path_keys[i - 1].holds) {
            layer.add(key.pose, static_cast<double>(key.frame));
        } else {
            layer.add_segment(Segment(path_keys[i - 1], key, property.parts));
        }
        if (key.holds) {
            keys.holds.push_back(keys.frames.size() - 1);
        }
    }
    return keys;
}

}  // namespace handover
