#include "handover/plan/plan_curves.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "handover/plan/plan_style.h"
#include "handover/plan/time_axis.h"
#include "text/plain_number.h"
#include "text/svg.h"

namespace plan {
namespace {

using handover::Handover;
using handover::SceneObject;
using text::svg_name;
using text::svg_text;

constexpr double kColumns = 3;
constexpr double kColumnGap = 34;
// The names and numbers left of a curve.
constexpr double kNames = 76;
constexpr double kStripHeight = 40;
constexpr double kStripGap = 9;
constexpr double kHeading = 26;
constexpr double kAxisHeight = 22;

// What a curve shows of a pose.
using Value = std::function<double(const handover::Pose& pose)>;

struct Channel {
    std::string name;
    Value value;
    bool straight = true;  ///< changes in proportion to the time between moments
};

struct Column {
    std::string title;
    double least_range = 0;  ///< of a scale: less would show rounding as motion
    std::vector<Channel> channels;
};

// Of curve points within half a pixel of each other the first, the least, the largest and the last.
std::vector<Spot> thinned(const std::vector<Spot>& spots) {
    constexpr double kPerPixel = 2;
    std::vector<Spot> kept;
    for (std::size_t begin = 0; begin < spots.size();) {
        const double slot = std::floor(spots[begin].x * kPerPixel);
        std::size_t end = begin;
        std::size_t least = begin;
        std::size_t largest = begin;
        while (end < spots.size() && std::floor(spots[end].x * kPerPixel) == slot) {
            least = spots[end].y < spots[least].y ? end : least;
            largest = spots[end].y > spots[largest].y ? end : largest;
            ++end;
        }
        std::array<std::size_t, 4> which{begin, std::min(least, largest), std::max(least, largest), end - 1};
        const auto last = std::unique(which.begin(), which.end());
        std::transform(which.begin(), last, std::back_inserter(kept),
                       [&](std::size_t i) { return spots[i]; });
        begin = end;
    }
    return kept;
}

// One curve with its name and its scale.
class Strip {
  public:
    Strip(Page& page, const Mover& mover, const TimeAxis& time, double top)
        : page_(page), mover_(mover), time_(time), top_(top) {}

    void draw(const Channel& channel, double least_range, const char* colour) {
        collect(channel);
        page_.open("class=\"curve\" data-channel=\"" + channel.name + '"');
        page_.rectangle({time_.left(), top_, time_.right(), top_ + kStripHeight}, "fill=\"#f6f6f6\"");
        page_.text({time_.left() - kNames, top_ + kStripHeight / 2 + 4}, channel.name, "font-size=\"11\"");
        if (low_ <= high_) {
            draw_scale(least_range);
            draw_values(channel, colour);
        } else {
            page_.text({time_.left() + 6, top_ + kStripHeight / 2 + 4}, "not a number", kSmall);
        }
        page_.close();
    }

  private:
    void collect(const Channel& channel) {
        for (const Stretch& stretch : mover_.stretches) {
            std::vector<Spot>& values = values_.emplace_back();
            for (std::size_t i = 0; i < stretch.moments.size(); ++i) {
                const Moment& moment = stretch.moments[i];
                if (i > 0 && !channel.straight) {
                    add_between(channel, stretch.moments[i - 1], moment, values);
                }
                add(channel, moment.frame, moment.pose, values);
            }
        }
    }

    void add(const Channel& channel, double frame, const handover::Pose& pose, std::vector<Spot>& values) {
        // Beyond this, differences overflow.
        constexpr double kLargest = 1e150;
        const double value = channel.value(pose);
        if (std::abs(value) < kLargest) {
            values.push_back({frame, value});
            low_ = std::min(low_, value);
            high_ = std::max(high_, value);
        }
    }

    void add_between(const Channel& channel, const Moment& a, const Moment& b, std::vector<Spot>& values) {
        constexpr double kMostParts = 64;
        const auto parts = static_cast<int>(std::min(b.frame - a.frame, kMostParts));
        for (int i = 1; i < parts; ++i) {
            const double part = static_cast<double>(i) / parts;
            add(channel, a.frame + (b.frame - a.frame) * part, pose_between(a.pose, b.pose, part), values);
        }
    }

    void draw_scale(double least_range) {
        const std::string right = std::string(kSmall) + " text-anchor=\"end\"";
        const double middle = (low_ + high_) / 2;
        const double half = std::max({(high_ - low_) / 2, least_range / 2, std::abs(middle) * 1e-9, 1e-12});
        scale_ = (kStripHeight - 2 * kInset) / (2 * half);
        middle_ = middle;
        // What is nearly still has one number, without digits that mean nothing.
        constexpr double kStill = 0.05;
        if (high_ - low_ <= least_range * kStill) {
            const double digit = round_step(std::max(least_range * kStill, 1e-12)) / 10;
            const double shown = low_ == high_ ? low_ : std::round(middle / digit) * digit;
            page_.text({time_.left() - 6, y_of(middle) + 3.5}, svg_text(short_number(shown)),
                       right + " class=\"value\"");
            return;
        }
        // Numbers that lie closer than letters are high stand apart.
        const double apart = std::max(0.0, 10 - (y_of(low_) - y_of(high_))) / 2;
        page_.text({time_.left() - 6, y_of(high_) - apart + 3.5}, svg_text(short_number(high_)),
                   right + " class=\"high\"");
        page_.text({time_.left() - 6, y_of(low_) + apart + 3.5}, svg_text(short_number(low_)),
                   right + " class=\"low\"");
    }

    void draw_values(const Channel& channel, const char* colour) {
        const std::string stroke = std::string("stroke=\"") + colour + '"';
        const Area area{time_.left(), top_, time_.right(), top_ + kStripHeight};
        for (std::size_t i = 0; i < values_.size(); ++i) {
            std::vector<Spot> spots;
            for (const Spot& value : values_[i]) {
                spots.push_back({time_.x_of(value.x), y_of(value.y)});
            }
            for (const std::vector<Spot>& part : clipped_line(thinned(spots), area, SIZE_MAX)) {
                page_.line(part, stroke + " class=\"values\" stroke-width=\"1.6\" stroke-linejoin=\"round\"");
            }
            if (spots.size() == 1 && values_.size() < kMostMoments) {
                page_.circle(spots.front(), 1.6, std::string("fill=\"") + colour + '"');
            }
        }
        double last_cut = -1;
        for (const auto& [before, after] : mover_.cuts) {
            const double x = time_.x_of((before + after) / 2);
            if (x - last_cut > 1) {
                page_.line(std::array{Spot{x, area.top}, Spot{x, area.bottom}},
                           "class=\"cut\" stroke=\"#666666\" stroke-width=\"0.8\" stroke-dasharray=\"2 3\"");
                last_cut = x;
            }
        }
        draw_keys(channel, stroke);
    }

    void draw_keys(const Channel& channel, const std::string& stroke) {
        constexpr double kApart_px = 5;
        page_.open("class=\"keys\" fill=\"#ffffff\" " + stroke);
        double last = time_.left() - kApart_px;
        std::size_t next = 0;
        for (const Stretch& stretch : mover_.stretches) {
            for (const Moment& moment : stretch.moments) {
                while (next < mover_.keys.size() && static_cast<double>(mover_.keys[next]) < moment.frame) {
                    ++next;
                }
                const bool is_key =
                    next < mover_.keys.size() && static_cast<double>(mover_.keys[next]) == moment.frame;
                const Spot spot{time_.x_of(moment.frame), y_of(channel.value(moment.pose))};
                if (is_key && is_finite(spot) && spot.x - last >= kApart_px) {
                    page_.circle(spot, 1.7, "");
                    last = spot.x;
                }
            }
        }
        page_.close();
    }

    [[nodiscard]] double y_of(double value) const {
        return top_ + kStripHeight / 2 - (value - middle_) * scale_;
    }

    static constexpr double kInset = 5;

    Page& page_;
    const Mover& mover_;
    const TimeAxis& time_;
    double top_;
    std::vector<std::vector<Spot>> values_;  ///< frames and values, for each stretch
    double low_ = HUGE_VAL;
    double high_ = -HUGE_VAL;
    double middle_ = 0;
    double scale_ = 1;
};

// The largest way of a camera or of its aim along an axis.
double reach_of(const Mover& camera) {
    double reach = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double low = HUGE_VAL;
        double high = -HUGE_VAL;
        for (const Frustum& frustum : camera.frusta) {
            for (const double number : {frustum.eye[axis], frustum.aim[axis]}) {
                low = std::min(low, number);
                high = std::max(high, number);
            }
        }
        reach = std::max(reach, high - low);
    }
    return std::isfinite(reach) ? reach : 0;
}

std::array<Column, 3> columns_of(const Mover& camera) {
    using handover::Pose;
    // Motion of less than a hundredth of the way to the aim is shown as small as it is.
    constexpr double kLeast = 0.01;
    const double least = reach_of(camera) * kLeast;
    std::array<Column, 3> columns{Column{"Position, in the scene's units", least, {}},
                                  Column{"Aim, in the scene's units", least, {}},
                                  Column{"Angles, in degrees", 1, {}}};
    constexpr std::array<const char*, 3> kAxes{"x", "y", "z"};
    for (std::size_t axis = 0; axis < kAxes.size(); ++axis) {
        columns[0].channels.push_back(
            {kAxes[axis], [axis](const Pose& pose) { return pose.position[axis]; }, true});
        columns[1].channels.push_back(
            {kAxes[axis], [axis](const Pose& pose) { return aim_of(pose)[axis]; }, false});
    }
    columns[1].channels.push_back({"distance", [](const Pose& pose) { return pose.target_distance; }, true});
    columns[2].channels = {{"heading", [](const Pose& pose) { return pose.heading; }, true},
                           {"pitch", [](const Pose& pose) { return pose.pitch; }, true},
                           {"bank", [](const Pose& pose) { return pose.bank; }, true},
                           {"view", [](const Pose& pose) { return pose.view_angle; }, true}};
    return columns;
}

double column_left(const Area& columns, std::size_t column) {
    const double width = (columns.width() - (kColumns - 1) * kColumnGap) / kColumns;
    return columns.left + static_cast<double>(column) * (width + kColumnGap);
}

double column_right(const Area& columns, std::size_t column) {
    return column_left(columns, column) + (columns.width() - (kColumns - 1) * kColumnGap) / kColumns;
}

const char* light_kind(const SceneObject& light) {
    static const std::map<std::string_view, const char*> kKinds{
        {"OMNI", "point"},          {"SPOT", "spot"}, {"PAR", "parallel"},
        {"PSPOT", "parallel spot"}, {"TUBE", "tube"}, {"AREA", "area"},
    };
    const auto kind = kKinds.find(light.light_word);
    return kind == kKinds.end() ? "light" : kind->second;
}

}  // namespace

double draw_camera_curves(Page& page, const Handover& handover, const Scene& scene, std::size_t camera,
                          const Area& columns) {
    const Mover& mover = scene.cameras[camera];
    const SceneObject& object = handover.objects[mover.object];
    const char* const colour = camera_colour(camera);
    double bottom = columns.top;
    page.open("class=\"curves\" data-object=\"" + std::to_string(mover.object) + '"');
    page.circle({columns.left + 5, columns.top + 9}, 5, std::string("fill=\"") + colour + '"');
    page.text({columns.left + 16, columns.top + 14},
              svg_name(object.name) +
                  (mover.keys_within == 1 ? ": 1 key" : ": " + std::to_string(mover.keys_within) + " keys") +
                  (mover.cuts.empty()       ? ""
                   : mover.cuts.size() == 1 ? ", 1 cut"
                                            : ", " + std::to_string(mover.cuts.size()) + " cuts"),
              "font-size=\"14\" font-weight=\"bold\"");
    const std::array<Column, 3> all = columns_of(mover);
    for (std::size_t i = 0; i < all.size(); ++i) {
        double top = columns.top + kHeading;
        const double left = column_left(columns, i) + kNames;
        const TimeAxis time(scene, left, column_right(columns, i));
        page.text({left, top + 12}, svg_text(all[i].title), "font-size=\"11\" fill=\"#555555\"");
        top += kStripGap + 10;
        for (const Channel& channel : all[i].channels) {
            Strip(page, mover, time, top).draw(channel, all[i].least_range, colour);
            top += kStripHeight + kStripGap;
        }
        time.draw(page, top - kStripGap);
        bottom = std::max(bottom, top + kAxisHeight);
    }
    page.close();
    return bottom;
}

double draw_light_curves(Page& page, const Handover& handover, const Scene& scene, const Area& columns) {
    constexpr double kHeight = 24;
    constexpr double kRow = 58;
    constexpr double kText = 16;
    const std::size_t count = std::min(scene.lights.size(), kMostLightCurves);
    double brightest = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const double intensity = handover.objects[scene.lights[i].object].intensity;
        brightest = std::isfinite(intensity) ? std::max(brightest, intensity) : brightest;
    }
    page.text({columns.left, columns.top + 14}, "Intensity of lights",
              "font-size=\"14\" font-weight=\"bold\"");
    double bottom = columns.top + kHeading;
    for (std::size_t i = 0; i < count; ++i) {
        const SceneObject& light = handover.objects[scene.lights[i].object];
        const std::size_t column = i % static_cast<std::size_t>(kColumns);
        const std::size_t row = i / static_cast<std::size_t>(kColumns);
        const double top = columns.top + kHeading + static_cast<double>(row) * kRow;
        const Area strip{column_left(columns, column) + kNames, top + kText, column_right(columns, column),
                         top + kText + kHeight};
        page.open("class=\"intensity\" data-object=\"" + std::to_string(scene.lights[i].object) + '"');
        page.circle({strip.left + 5, top + 8}, 4.8, "stroke=\"#333333\" fill=\"" + light_colour(light) + '"');
        std::string shadow;
        if (!light.shadow_word.empty()) {
            shadow = light.shadow_word == "NONE"   ? ", no shadow"
                     : light.shadow_word == "SOFT" ? ", soft shadow"
                     : light.shadow_word == "HARD" ? ", hard shadow"
                                                   : ", area shadow";
        }
        page.text({strip.left + 16, top + 12}, svg_name(light.name, 24) + ": " + light_kind(light) + shadow,
                  "font-size=\"11\"");
        page.rectangle(strip, "fill=\"#f6f6f6\"");
        // The format has no keys of intensity.
        const double part =
            brightest > 0 && light.intensity > 0 ? std::min(light.intensity / brightest, 1.0) : 0;
        const double y = strip.bottom - part * (kHeight - 2);
        page.rectangle({strip.left, y, strip.right, strip.bottom}, "fill=\"#d9d9d9\"");
        page.line(std::array{Spot{strip.left, y}, Spot{strip.right, y}},
                  "class=\"values\" stroke=\"#333333\" stroke-width=\"1.6\"");
        page.text({strip.left - 6, std::min(y + 4, strip.bottom)}, svg_text(short_number(light.intensity)),
                  std::string(kSmall) + " class=\"value\" text-anchor=\"end\"");
        page.close();
        bottom = top + kRow;
    }
    for (std::size_t i = 0; i < std::min<std::size_t>(count, 3); ++i) {
        TimeAxis(scene, column_left(columns, i) + kNames, column_right(columns, i))
            .draw(page, bottom - kRow + kText + kHeight);
    }
    return bottom + (count > 0 ? 6 : 0);
}

}  // namespace plan
