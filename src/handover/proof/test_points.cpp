#include "handover/proof/test_points.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace proof {
namespace {

// Parts of the way between two keys: where curves are farthest from straight ways (at quarters, if they leave
// it to both sides), and others.
constexpr std::array kParts = {1.0 / 7, 1.0 / 4, 1.0 / 3, 1.0 / 2, 2.0 / 3, 3.0 / 4, 6.0 / 7};

// Depths of the frame's corners, in target distances.
constexpr std::array kDepths = {0.5, 1.0, 2.0};

// The grid goes so far from the aim, in target distances.
constexpr double kGridReach = 0.25;

// For a target distance of 0 or of no sound number: that of a camera that has none.
constexpr double kUsualDistance = 1000;

double distance_of(const TruthCamera& camera, double frame) {
    const double distance = std::abs(camera.aim_distance(frame));
    return std::isfinite(distance) && distance > 0 ? distance : kUsualDistance;
}

int grid_side(int grid_points) {
    int side = 1;
    while (side * side * side < grid_points) {
        ++side;
    }
    return side;
}

// From -1 to 1 along a side of the grid; 0 for a side of one point.
double place_on_side(int i, int side) {
    return side == 1 ? 0 : 2.0 * i / (side - 1) - 1;
}

// `count` indices, or fewer if there are no more, evenly from 0 to `all` - 1.
std::vector<std::size_t> evenly(std::size_t all, std::size_t count) {
    std::vector<std::size_t> chosen;
    const std::size_t taken = std::min(all, count);
    for (std::size_t i = 0; i < taken; ++i) {
        chosen.push_back(taken < 2 ? 0 : i * (all - 1) / (taken - 1));
    }
    return chosen;
}

void add_way(std::vector<Moment>& moments, std::int64_t first, std::int64_t last) {
    const auto start = static_cast<double>(first);
    const auto way = static_cast<double>(last) - start;
    const auto add_frame = [&](double frame) {
        if (frame > start && frame < start + way) {
            moments.push_back({frame, MomentKind::frame});
        }
    };
    add_frame(start + 1);
    add_frame(start + way - 1);
    for (const double part : kParts) {
        const double moment = start + part * way;
        add_frame(std::round(moment));
        if (moment != std::round(moment)) {
            moments.push_back({moment, MomentKind::between_frames});
        }
    }
}

}  // namespace

std::vector<Moment> moments_of(const TruthObject& object, std::int64_t from, std::int64_t to,
                               std::size_t most_keys, std::int64_t& keys_taken) {
    std::vector<Moment> moments;
    std::vector<std::int64_t> shown;
    const auto& keys = object.keys;
    for (const TruthKey& key : keys) {
        if (key.frame >= from && key.frame <= to) {
            shown.push_back(key.frame);
        }
    }
    keys_taken = 0;
    for (const std::size_t i : evenly(shown.size(), most_keys)) {
        moments.push_back({static_cast<double>(shown[i]), MomentKind::key});
        ++keys_taken;
    }
    // A way begins or ends at FROM or TO if they are within it.
    for (const std::size_t i : evenly(keys.empty() ? 0 : keys.size() - 1, most_keys)) {
        const std::int64_t first = std::max(keys[i].frame, from);
        const std::int64_t last = std::min(keys[i + 1].frame, to);
        if (first < last) {
            add_way(moments, first, last);
        }
    }
    for (const std::int64_t end : {from, to}) {
        const bool is_key = std::find(shown.begin(), shown.end(), end) != shown.end();
        moments.push_back({static_cast<double>(end), is_key ? MomentKind::key : MomentKind::frame});
    }
    std::stable_sort(moments.begin(), moments.end(),
                     [](const Moment& a, const Moment& b) { return a.frame < b.frame; });
    const auto same = [](const Moment& a, const Moment& b) { return a.frame == b.frame; };
    moments.erase(std::unique(moments.begin(), moments.end(), same), moments.end());
    return moments;
}

std::vector<Point> test_points(const TruthCamera& camera, double frame, int grid_points,
                               const std::vector<const TruthObject*>& nulls) {
    std::vector<Point> points;
    const double distance = distance_of(camera, frame);
    const Point aim = camera.point_of(frame, {0, 0, distance});
    const int side = grid_side(grid_points);
    const double reach = kGridReach * distance;
    for (int x = 0; x < side; ++x) {
        for (int y = 0; y < side; ++y) {
            for (int z = 0; z < side; ++z) {
                points.push_back({aim.x + reach * place_on_side(x, side),
                                  aim.y + reach * place_on_side(y, side),
                                  aim.z + reach * place_on_side(z, side)});
            }
        }
    }
    for (const double depth : kDepths) {
        for (const double across : {-1.0, 1.0}) {
            for (const double up : {-1.0, 1.0}) {
                points.push_back(camera.point_of(frame, {across, up, depth * distance}));
            }
        }
    }
    for (const TruthObject* null : nulls) {
        points.push_back(true_position(*null, frame));
    }
    return points;
}

bool is_compared(const Landing& landing, double width_px, double height_px) {
    constexpr double kFarOutside = 2;
    return landing.seen && std::abs(landing.x_px - width_px / 2) <= (kFarOutside + 0.5) * width_px &&
           std::abs(landing.y_px - height_px / 2) <= (kFarOutside + 0.5) * height_px;
}

std::string point_label(std::size_t index, int grid_points, const std::vector<const TruthObject*>& nulls) {
    const auto side = static_cast<std::size_t>(grid_side(grid_points));
    const std::size_t grid = side * side * side;
    if (index < grid) {
        return "a point around the aim";
    }
    constexpr std::array kAway = {"half the target distance", "the target distance",
                                  "twice the target distance"};
    if (index < grid + 4 * kDepths.size()) {
        return std::string("a corner at ") + kAway[(index - grid) / 4];
    }
    return "null \"" + nulls[index - grid - 4 * kDepths.size()]->name + '"';
}

}  // namespace proof
