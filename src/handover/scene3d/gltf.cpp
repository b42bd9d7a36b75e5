#include "handover/scene3d/gltf.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string>

#include "handover/loss.h"
#include "handover/scene3d/gltf_data.h"
#include "handover/scene3d/gltf_motion.h"
#include "handover/scene3d/scene3d_values.h"
#include "text/base64.h"
#include "text/plain_number.h"

namespace handover {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kGltfAngleWithoutKeys = 40;
constexpr double kRadiansInDegree = 3.14159265358979323846 / 180;

// A cut lies this much before its frame, so that a reader whose time of a frame is a little early shows it as
// well.
constexpr double kCutBefore_frames = 1.0 / 1024;

// As a float holds it.
double as_float(double number) {
    constexpr double kMostFloat = 3.4028234663852886e38;
    return static_cast<double>(static_cast<float>(std::clamp(number, -kMostFloat, kMostFloat)));
}

// Times and values of one channel.
struct Column {
    std::vector<float> times;
    std::vector<float> values;
    std::size_t components;

    // Of moments that are closer than floats tell apart, the later one holds.
    void add(float time, const Quaternion& value) {
        if (!times.empty() && time <= times.back()) {
            time = times.back();
            times.pop_back();
            values.resize(values.size() - components);
        }
        times.push_back(time);
        for (std::size_t c = 0; c < components; ++c) {
            values.push_back(static_cast<float>(as_float(value[c])));
        }
    }
};

class GltfFile {
  public:
    GltfFile(const Handover& handover, const Scene3dOptions& options)
        : handover_(handover), options_(options), frame_(handover.shot) {
        const std::vector<Motion> motions = gltf_motions(handover, options);
        for (std::size_t i = 0; i < handover.objects.size(); ++i) {
            add_object(handover.objects[i], motions[i]);
        }
    }

    // Everything but where the data is.
    [[nodiscard]] Json document() const {
        const Shot& shot = handover_.shot;
        Json file = {{"asset",
                      {{"version", "2.0"},
                       {"generator", "vxr"},
                       {"extras",
                        {{"scene", shot.file},
                         {"scale", options_.scale},
                         {"frame_rate", shot.rate_fps},
                         {"from", shot.from},
                         {"to", shot.to}}}}}};
        if (uses_lights() || pointer_used_) {
            file["extensionsUsed"] = Json::array();
            if (uses_lights()) {
                file["extensionsUsed"].push_back("KHR_lights_punctual");
                file["extensions"]["KHR_lights_punctual"]["lights"] = lights_;
            }
            if (pointer_used_) {
                file["extensionsUsed"].push_back("KHR_animation_pointer");
            }
        }
        file["scene"] = 0;
        file["scenes"] = Json::array({Json{{"name", "Shot"}}});
        if (!nodes_.empty()) {
            for (std::size_t i = 0; i < nodes_.size(); ++i) {
                file["scenes"][0]["nodes"].push_back(i);
            }
            file["nodes"] = nodes_;
        }
        if (!cameras_.empty()) {
            file["cameras"] = cameras_;
        }
        if (!channels_.empty()) {
            file["animations"] =
                Json::array({{{"name", "Shot"}, {"channels", channels_}, {"samplers", samplers_}}});
        }
        for (const GltfAccessor& accessor : data_.accessors()) {
            file["accessors"].push_back(accessor_json(accessor, file["accessors"].size()));
            file["bufferViews"].push_back(
                {{"buffer", 0},
                 {"byteOffset", accessor.offset_bytes},
                 {"byteLength", accessor.count * accessor.components * sizeof(float)}});
        }
        return file;
    }

    [[nodiscard]] std::string_view data() const { return data_.bytes(); }

  private:
    [[nodiscard]] bool uses_lights() const { return !lights_.empty(); }

    static Json accessor_json(const GltfAccessor& accessor, std::size_t view) {
        static constexpr const char* kTypes[] = {"SCALAR", "VEC2", "VEC3", "VEC4"};
        Json json = {{"bufferView", view},
                     {"componentType", 5126},
                     {"count", accessor.count},
                     {"type", kTypes[accessor.components - 1]}};
        if (accessor.needs_range) {
            for (std::size_t i = 0; i < accessor.components; ++i) {
                json["min"].push_back(accessor.least[i]);
                json["max"].push_back(accessor.most[i]);
            }
        }
        return json;
    }

    void add_object(const SceneObject& object, const Motion& motion) {
        const std::size_t index = nodes_.size();
        Json node = {{"name", object.name}};
        if (!motion.poses.empty()) {
            const auto place = scaled_place(motion.poses.front());
            const Quaternion turn = turn_of(object.kind, motion.poses.front());
            node["translation"] = {as_float(place[0]), as_float(place[1]), as_float(place[2])};
            node["rotation"] = {as_float(turn[0]), as_float(turn[1]), as_float(turn[2]), as_float(turn[3])};
        }
        if (object.kind == ObjectKind::camera) {
            node["camera"] = add_camera(object, motion);
        } else if (object.kind == ObjectKind::light) {
            node["extensions"]["KHR_lights_punctual"]["light"] = lights_.size();
            lights_.push_back(light_json(object));
        }
        node["extras"] = {{"id", object.id}};
        nodes_.push_back(node);
        add_places(index, motion.poses);
        add_turns(index, object.kind, motion.poses);
    }

    std::size_t add_camera(const SceneObject& object, const Motion& motion) {
        const std::size_t index = cameras_.size();
        const double angle = motion.poses.empty() ? kGltfAngleWithoutKeys : motion.poses.front().view_angle;
        const ClippingRange range = clipping_range(handover_);
        cameras_.push_back({{"name", object.name},
                            {"type", "perspective"},
                            {"perspective",
                             {{"aspectRatio", frame_.aspect_ratio},
                              {"yfov", vertical_angle(frame_, angle)},
                              {"znear", range.nearest * options_.scale},
                              {"zfar", range.farthest * options_.scale}}}});
        if (view_angle_changes(motion)) {
            pointer_used_ = true;
            const PictureFrame& frame = frame_;
            add_channel({{"path", "pointer"},
                         {"extensions",
                          {{"KHR_animation_pointer",
                            {{"pointer", "/cameras/" + std::to_string(index) + "/perspective/yfov"}}}}}},
                        motion.poses,
                        needed_poses(motion.poses,
                                     [&frame](const TimedPose& pose) {
                                         return std::array{vertical_angle(frame, pose.view_angle), 0.0, 0.0};
                                     }),
                        1, [&frame](const TimedPose& pose) {
                            return Quaternion{vertical_angle(frame, pose.view_angle), 0, 0, 0};
                        });
        }
        return index;
    }

    static Json light_json(const SceneObject& light) {
        const LightValues values = light_values(light);
        Json json = {{"name", light.name},
                     {"color", {values.color[0], values.color[1], values.color[2]}},
                     {"intensity", std::min(values.intensity, 3e38)}};
        if (light.light_word == "SPOT") {
            json["type"] = "spot";
            // From the middle to the edge, as far as the format goes.
            const double half = std::isfinite(light.cone_angle) ? light.cone_angle / 2 : 0;
            json["spot"] = {{"innerConeAngle", 0},
                            {"outerConeAngle", std::clamp(half, kLeastAngle, 90.0) * kRadiansInDegree}};
        } else {
            json["type"] = light.light_word == "PAR" || light.light_word == "PSPOT" ? "directional" : "point";
        }
        return json;
    }

    void add_places(std::size_t node, const std::vector<TimedPose>& poses) {
        const bool moves = std::any_of(poses.begin(), poses.end(), [&](const TimedPose& pose) {
            return pose.position != poses.front().position;
        });
        if (moves) {
            add_channel({{"node", node}, {"path", "translation"}}, poses, needed_poses(poses, place_of), 3,
                        [this](const TimedPose& pose) {
                            const auto place = scaled_place(pose);
                            return Quaternion{place[0], place[1], place[2], 0};
                        });
        }
    }

    void add_turns(std::size_t node, ObjectKind kind, const std::vector<TimedPose>& poses) {
        const auto same = [](const TimedPose& a, const TimedPose& b) {
            return a.heading == b.heading && a.pitch == b.pitch && a.bank == b.bank;
        };
        std::vector<std::size_t> needed;
        bool turns = false;
        for (std::size_t i = 0; i < poses.size(); ++i) {
            turns = turns || !same(poses[i], poses.front());
            const bool inside = i > 0 && i + 1 < poses.size();
            if (!inside || poses[i].before_cut || !same(poses[i], poses[i - 1]) ||
                !same(poses[i], poses[i + 1])) {
                needed.push_back(i);
            }
        }
        if (!turns) {
            return;
        }
        // Neighbouring quaternions on the same side, so that every reader goes the short way.
        Quaternion last{};
        add_channel({{"node", node}, {"path", "rotation"}}, poses, needed, 4,
                    [kind, last](const TimedPose& pose) mutable {
                        Quaternion turn = turn_of(kind, pose);
                        double cosine = 0;
                        for (std::size_t i = 0; i < turn.size(); ++i) {
                            cosine += turn[i] * last[i];
                        }
                        if (cosine < 0) {
                            for (double& one : turn) {
                                one = -one;
                            }
                        }
                        last = turn;
                        return turn;
                    });
    }

    template <typename ValueOf>
    void add_channel(Json target, const std::vector<TimedPose>& poses, const std::vector<std::size_t>& needed,
                     std::size_t components, ValueOf value_of) {
        Column column{{}, {}, components};
        bool after_cut = false;
        for (const std::size_t i : needed) {
            const Quaternion value = value_of(poses[i]);
            if (poses[i].before_cut) {
                column.add(std::nextafter(seconds_of(poses[i].frame - kCutBefore_frames), 0.0F), value);
            } else if (after_cut) {
                column.add(seconds_of(poses[i].frame - kCutBefore_frames), value);
                column.add(seconds_of(poses[i].frame), value);
            } else {
                column.add(seconds_of(poses[i].frame), value);
            }
            after_cut = poses[i].before_cut;
        }
        const std::size_t input = data_.add(column.times, 1, true);
        const std::size_t output = data_.add(column.values, components, false);
        channels_.push_back({{"sampler", samplers_.size()}, {"target", std::move(target)}});
        samplers_.push_back({{"input", input}, {"output", output}, {"interpolation", "LINEAR"}});
    }

    [[nodiscard]] std::array<double, 3> scaled_place(const TimedPose& pose) const {
        auto place = place_of(pose);
        for (double& one : place) {
            one *= options_.scale;
        }
        return place;
    }

    [[nodiscard]] float seconds_of(double frame) const {
        const double first = static_cast<double>(handover_.shot.from);
        return static_cast<float>((frame - first) / handover_.shot.rate_fps);
    }

    const Handover& handover_;
    const Scene3dOptions& options_;
    PictureFrame frame_;
    GltfData data_;
    Json nodes_ = Json::array();
    Json cameras_ = Json::array();
    Json lights_ = Json::array();
    Json channels_ = Json::array();
    Json samplers_ = Json::array();
    bool pointer_used_ = false;
};

std::string json_text(const Json& document, int indent) {
    // Names are UTF-8; whatever is not is replaced instead of ending the work.
    return document.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string word_of(std::uint64_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(number & 0xFF);
        number >>= 8;
    }
    return bytes;
}

}  // namespace

void write_gltf(const Handover& handover, const Scene3dOptions& options, const Sink& out) {
    const GltfFile file(handover, options);
    Json document = file.document();
    if (!file.data().empty()) {
        document["buffers"] =
            Json::array({{{"byteLength", file.data().size()},
                          {"uri", "data:application/octet-stream;base64," + text::base64_of(file.data())}}});
    }
    out(json_text(document, 2));
    out("\n");
}

void write_glb(const Handover& handover, const Scene3dOptions& options, const Sink& out) {
    const GltfFile file(handover, options);
    Json document = file.document();
    if (!file.data().empty()) {
        document["buffers"] = Json::array({{{"byteLength", file.data().size()}}});
    }
    std::string text = json_text(document, -1);
    text.append((4 - text.size() % 4) % 4, ' ');
    constexpr std::uint64_t kHeads_bytes = 12 + 8 + 8;
    const std::uint64_t length =
        kHeads_bytes - (file.data().empty() ? 8 : 0) + text.size() + file.data().size();
    if (length > 0xFFFFFFFF) {
        throw CannotWrite(
            "the file would be longer than 4 GiB, which glTF cannot say; hand over fewer objects");
    }
    out("glTF" + word_of(2) + word_of(length));
    out(word_of(text.size()) + "JSON");
    out(text);
    if (!file.data().empty()) {
        // Floats only, so the length is a multiple of four.
        out(word_of(file.data().size()) + std::string("BIN\0", 4));
        out(file.data());
    }
}

std::vector<Loss> gltf_losses(const Handover& handover, const Scene3dOptions& options) {
    const std::vector<Motion> motions = gltf_motions(handover, options);
    std::vector<Loss> losses = common_losses(handover, motions, Target::gltf);
    for (std::size_t i = 0; i < handover.objects.size(); ++i) {
        const SceneObject& object = handover.objects[i];
        if (object.kind == ObjectKind::camera && view_angle_changes(motions[i])) {
            losses.push_back(
                {diagnostic::make(LossCode::view_angle_lost, object.at,
                                  "the angle of view of \"" + object.name +
                                      "\" changes, which the file says by KHR_animation_pointer; a program "
                                      "without it shows the angle of the first frame"),
                 Target::gltf});
        }
        const Rounding rounding =
            object.kind == ObjectKind::camera ? rounding_of(handover, motions[i].poses) : Rounding{};
        if (rounding.px > kVisibleRounding_px) {
            losses.push_back(
                {diagnostic::make(LossCode::rounded, object.at,
                                  "at frame " + text::plain_number(rounding.frame) +
                                      " things half as far from \"" + object.name +
                                      "\" as its point of interest may be " +
                                      text::plain_number(std::ceil(rounding.px * 100) / 100) +
                                      " pixels off: the file keeps seven digits of places and times"),
                 Target::gltf});
        }
    }
    return losses;
}

}  // namespace handover
