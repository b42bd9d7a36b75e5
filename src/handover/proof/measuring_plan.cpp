#include "handover/proof/measuring_plan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "handover/proof/test_points.h"
#include "handover/proof/truth.h"
#include "handover/stable_id.h"

namespace proof {
namespace {

// Whole frames from FROM to TO at which a camera is measured.
constexpr std::size_t kMeasuredMoments = 6;
// Nulls that are test points, the first of the file.
constexpr std::size_t kMeasuredNulls = 8;
// A grid has so many points along each side at least, and at most.
constexpr int kLeastSide = 3;
constexpr int kMostSide = 6;

// What the questions follow from, as text. Numbers are written so that they read back to the same ones.
class AskedText {
  public:
    template <typename Number>
    void add(Number number) {
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        text_.append(digits.data(), end);
        text_ += ' ';
    }
    void add(const TruthObject& object) {
        add(static_cast<int>(object.kind));
        for (const TruthKey& key : object.keys) {
            add(key.frame);
            for (const double number : {key.position.x, key.position.y, key.position.z, key.angles[0],
                                        key.angles[1], key.angles[2], key.view_angle, key.distance}) {
                add(number);
            }
        }
        text_ += '\n';
    }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_ = "questions 1\n";  // other questions get another number
};

std::vector<double> moments_to_measure(const TruthObject& camera, const TruthCamera& truth,
                                       const tagProjectSettings& settings) {
    std::int64_t keys_taken = 0;
    std::vector<double> frames;
    for (const Moment& moment :
         moments_of(camera, settings.from, settings.to, kMeasuredMoments, keys_taken)) {
        if (moment.kind != MomentKind::between_frames && truth.has_picture(moment.frame)) {
            frames.push_back(moment.frame);
        }
    }
    std::vector<double> chosen;
    const std::size_t taken = std::min(frames.size(), kMeasuredMoments);
    for (std::size_t i = 0; i < taken; ++i) {
        chosen.push_back(frames[taken < 2 ? 0 : i * (frames.size() - 1) / (taken - 1)]);
    }
    return chosen;
}

handover::MeasuredCamera camera_to_measure(const tagProjectSettings& settings,
                                           const std::vector<TruthObject>& objects, std::size_t object,
                                           const std::vector<const TruthObject*>& nulls) {
    handover::MeasuredCamera camera;
    camera.object = object;
    const TruthCamera truth(settings, objects[object], kUsualCutAngle_degrees);
    const std::vector<double> frames = moments_to_measure(objects[object], truth, settings);
    for (int side = kLeastSide; side <= kMostSide; ++side) {
        std::size_t count = 0;
        camera.moments.clear();
        for (const double frame : frames) {
            handover::MeasuredMoment moment;
            moment.frame = frame;
            for (const Point& point : test_points(truth, frame, side * side * side, nulls)) {
                moment.points.push_back({point.x, point.y, point.z});
            }
            count += moment.points.size();
            camera.moments.push_back(std::move(moment));
        }
        if (count >= kMeasuredPoints) {
            break;
        }
    }
    return camera;
}

}  // namespace

handover::Measuring measuring_plan(const tagProjectSettings& settings, const std::string& scene,
                                   const std::optional<handover::TextureTrial>& texture) {
    const std::vector<TruthObject> objects = true_objects(settings);
    std::vector<const TruthObject*> nulls;
    for (const TruthObject& object : objects) {
        if (object.kind == TruthObject::Kind::null && !object.keys.empty() && nulls.size() < kMeasuredNulls) {
            nulls.push_back(&object);
        }
    }
    handover::Measuring plan;
    AskedText asked;
    for (const double setting :
         {static_cast<double>(settings.width), static_cast<double>(settings.height), double{settings.aspect},
          static_cast<double>(settings.from), static_cast<double>(settings.to),
          static_cast<double>(settings.fps), static_cast<double>(settings.local)}) {
        asked.add(setting);
    }
    for (const TruthObject* const null : nulls) {
        asked.add(*null);
    }
    for (std::size_t i = 0; i < objects.size() && plan.cameras.size() < kMostMeasuredCameras; ++i) {
        if (objects[i].kind != TruthObject::Kind::camera || objects[i].keys.empty()) {
            continue;
        }
        handover::MeasuredCamera camera = camera_to_measure(settings, objects, i, nulls);
        if (!camera.moments.empty()) {
            asked.add(objects[i]);
            plan.cameras.push_back(std::move(camera));
        }
    }
    plan.texture = texture;
    if (texture) {
        for (const double number : {texture->x_px, texture->y_px, texture->color[0], texture->color[1],
                                    texture->color[2], texture->alpha}) {
            asked.add(number);
        }
    }
    handover::StableIds ids(scene);
    plan.scene = handover::StableIds::text(ids.root());
    const std::string sum = handover::StableIds::text(ids.next(0, "questions", asked.text()));
    plan.sum = sum.substr(sum.find('-') + 1);
    return plan;
}

std::vector<std::vector<std::vector<Landing>>> true_landings(const tagProjectSettings& settings,
                                                             const handover::Measuring& plan) {
    const std::vector<TruthObject> objects = true_objects(settings);
    std::vector<std::vector<std::vector<Landing>>> landings;
    for (const handover::MeasuredCamera& camera : plan.cameras) {
        const TruthCamera truth(settings, objects[camera.object], kUsualCutAngle_degrees);
        auto& of_camera = landings.emplace_back();
        for (const handover::MeasuredMoment& moment : camera.moments) {
            std::vector<Point> points;
            for (const auto& point : moment.points) {
                points.push_back({point[0], point[1], point[2]});
            }
            auto& of_moment = of_camera.emplace_back(points.size());
            truth.land(moment.frame, points, of_moment);
            for (Landing& landing : of_moment) {
                landing.seen = is_compared(landing, settings.width, settings.height);
            }
        }
    }
    return landings;
}

}  // namespace proof
