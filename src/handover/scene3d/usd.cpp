#include "handover/scene3d/usd.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "handover/loss.h"
#include "handover/scene3d/motion.h"
#include "handover/scene3d/scene3d_values.h"

namespace handover {
namespace {

// The width of the film, in tenths of the scene's units as the format counts it; the angle of view is what
// matters.
constexpr double kAperture = 36;
constexpr double kAngleWithoutKeys = 40;
// The last moment before a cut, in frames. Time codes are doubles, and texts stay short.
constexpr double kInstant_frames = 1e-6;

double usd_focal_length(double view_angle) {
    constexpr double kRadians = 3.14159265358979323846 / 180;
    return kAperture / (2 * std::tan(clamped_angle(view_angle) * kRadians / 2));
}

// Angles go straight in this format as in the scene, because it turns by angles. The focal length does, too,
// where the scene's angle of view does.
IsClose usd_closeness(const PictureFrame& frame) {
    return [frame](const TimedPose& a, const TimedPose& b) {
        if (a.view_angle == b.view_angle) {
            return true;
        }
        const double from = usd_focal_length(a.view_angle);
        const double to = usd_focal_length(b.view_angle);
        for (const double part : {0.25, 0.5, 0.75}) {
            const double truth = usd_focal_length(between(a, b, part).view_angle);
            if (!(std::abs((from + part * (to - from)) / truth - 1) * frame.corner <= kClose_px)) {
                return false;
            }
        }
        return true;
    };
}

std::vector<Motion> usd_motions(const Handover& handover, const Scene3dOptions& options) {
    const PictureFrame frame(handover.shot);
    const IsClose always = [](const TimedPose&, const TimedPose&) { return true; };
    std::vector<Motion> motions;
    for (const SceneObject& object : handover.objects) {
        motions.push_back(motion_of(object, options.cut_angle_degrees,
                                    object.kind == ObjectKind::camera ? usd_closeness(frame) : always));
    }
    return motions;
}

// The angles of "rotateZXY" and "rotateZYX", about x, y and z, for a camera or light and for a null.
std::array<double, 3> usd_angles(ObjectKind kind, const TimedPose& pose) {
    if (kind == ObjectKind::null) {
        return {pose.heading, pose.pitch, 0 - pose.bank};
    }
    return {pose.pitch, pose.heading, 0 - pose.bank};
}

class UsdText {
  public:
    UsdText(const Handover& handover, const Scene3dOptions& options, const Sink& out)
        : handover_(handover), options_(options), out_(out), frame_(handover.shot) {}

    void write() {
        const Shot& shot = handover_.shot;
        put("#usda 1.0\n(\n    defaultPrim = \"Shot\"\n    doc = ");
        put_string("Cameras, lights and nulls of " + shot.file + ", written by vxr");
        put("\n    endTimeCode = ");
        put_number(static_cast<double>(shot.to));
        put("\n    framesPerSecond = ");
        put_number(shot.rate_fps);
        put("\n    metersPerUnit = ");
        put_number(options_.scale);
        put("\n    startTimeCode = ");
        put_number(static_cast<double>(shot.from));
        put("\n    timeCodesPerSecond = ");
        put_number(shot.rate_fps);
        put("\n    upAxis = \"Y\"\n)\n\ndef Xform \"Shot\"\n{\n");
        const std::vector<Motion> motions = usd_motions(handover_, options_);
        for (std::size_t i = 0; i < handover_.objects.size(); ++i) {
            put_object(handover_.objects[i], motions[i].poses);
        }
        put("}\n");
        out_(text_);
    }

  private:
    void put_object(const SceneObject& object, const std::vector<TimedPose>& poses) {
        put("    def ");
        put(type_of(object));
        put(" \"");
        put(unique_identifier(object.name));
        put("\"");
        if (object.light_word == "SPOT") {
            put(" (\n        prepend apiSchemas = [\"ShapingAPI\"]\n    )");
        }
        put("\n    {\n        custom string vxr:id = ");
        put_string(object.id);
        put("\n        custom string vxr:name = ");
        put_string(object.name);
        put("\n");
        if (object.kind == ObjectKind::camera) {
            put_camera(poses);
        } else if (object.kind == ObjectKind::light) {
            put_light(object);
        }
        const ObjectKind kind = object.kind;
        put_values("double3 xformOp:translate", poses, 3, {}, place_of);
        const std::string turn = kind == ObjectKind::null ? "xformOp:rotateZYX" : "xformOp:rotateZXY";
        put_values("double3 " + turn, poses, 3, {},
                   [kind](const TimedPose& pose) { return usd_angles(kind, pose); });
        put("        uniform token[] xformOpOrder = [\"xformOp:translate\", \"" + turn + "\"]\n    }\n");
    }

    static const char* type_of(const SceneObject& object) {
        if (object.kind == ObjectKind::camera) {
            return "Camera";
        }
        if (object.kind == ObjectKind::null) {
            return "Xform";
        }
        return object.light_word == "PAR" || object.light_word == "PSPOT" ? "DistantLight" : "SphereLight";
    }

    void put_camera(const std::vector<TimedPose>& poses) {
        const ClippingRange range = clipping_range(handover_);
        put("        float2 clippingRange = (");
        put_number(range.nearest);
        put(", ");
        put_number(range.farthest);
        put(")\n");
        put_values("float focalLength", poses, 1, {usd_focal_length(kAngleWithoutKeys), 0, 0},
                   [](const TimedPose& pose) {
                       return std::array{usd_focal_length(pose.view_angle), 0.0, 0.0};
                   });
        put("        float horizontalAperture = ");
        put_number(kAperture);
        put("\n        token projection = \"perspective\"\n        float verticalAperture = ");
        put_number(kAperture / frame_.aspect_ratio);
        put("\n");
    }

    void put_light(const SceneObject& light) {
        const LightValues values = light_values(light);
        put("        color3f inputs:color = (");
        put_number(values.color[0]);
        put(", ");
        put_number(values.color[1]);
        put(", ");
        put_number(values.color[2]);
        put(")\n        float inputs:intensity = ");
        put_number(values.intensity);
        put("\n");
        if (std::string_view(type_of(light)) == "SphereLight") {
            put("        bool treatAsPoint = 1\n");
        }
        if (light.light_word == "SPOT") {
            put("        float inputs:shaping:cone:angle = ");
            // From the middle to the edge.
            put_number(std::isfinite(light.cone_angle) ? light.cone_angle / 2 : 0);
            put("\n");
        }
    }

    // An attribute with a default beside its samples, because some readers take no samples.
    void put_values(const std::string& attribute, const std::vector<TimedPose>& poses, std::size_t count,
                    const std::array<double, 3>& without_keys, const PoseNumbers& numbers_of) {
        put("        " + attribute + " = ");
        put_tuple(poses.empty() ? without_keys : numbers_of(poses.front()), count);
        put("\n");
        const std::vector<std::size_t> needed = needed_poses(poses, numbers_of);
        bool changes = false;
        for (const std::size_t i : needed) {
            changes = changes || numbers_of(poses[i]) != numbers_of(poses.front());
        }
        if (!changes) {
            return;
        }
        put("        " + attribute + ".timeSamples = {\n");
        for (const std::size_t i : needed) {
            put("            ");
            put_number(poses[i].before_cut ? poses[i].frame - kInstant_frames : poses[i].frame);
            put(": ");
            put_tuple(numbers_of(poses[i]), count);
            put(",\n");
        }
        put("        }\n");
    }

    void put_tuple(const std::array<double, 3>& numbers, std::size_t count) {
        if (count == 1) {
            put_number(numbers[0]);
            return;
        }
        put("(");
        put_number(numbers[0]);
        put(", ");
        put_number(numbers[1]);
        put(", ");
        put_number(numbers[2]);
        put(")");
    }

    void put_number(double number) {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.data(), text.data() + text.size(), number);
        put({text.data(), static_cast<std::size_t>(end.ptr - text.data())});
    }

    // A quoted string. Bytes below space have no other way into one line.
    void put_string(std::string_view value) {
        static constexpr char kDigits[] = "0123456789abcdef";
        std::string quoted = "\"";
        for (const char c : value) {
            const auto byte = static_cast<unsigned char>(c);
            if (c == '"' || c == '\\') {
                quoted += '\\';
                quoted += c;
            } else if (c == '\n') {
                quoted += "\\n";
            } else if (byte < 0x20 || byte == 0x7f) {
                quoted += "\\x";
                quoted += kDigits[byte >> 4];
                quoted += kDigits[byte & 15];
            } else {
                quoted += c;
            }
        }
        put(quoted + '"');
    }

    // Identifiers have letters, digits and underscores of ASCII.
    std::string unique_identifier(std::string_view name) {
        std::string identifier;
        for (const char c : name) {
            const bool plain =
                (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
            // One underscore for a run of others.
            if (plain || identifier.empty() || identifier.back() != '_') {
                identifier += plain ? c : '_';
            }
        }
        if (identifier.empty() || (identifier.front() >= '0' && identifier.front() <= '9')) {
            identifier.insert(0, "_");
        }
        std::string unique = identifier;
        // Where the last one of this name ended: many objects may have one name.
        std::size_t& number = numbers_[identifier];
        while (!identifiers_.insert(unique).second) {
            unique = identifier + "_" + std::to_string(++number + 1);
        }
        return unique;
    }

    void put(std::string_view piece) {
        constexpr std::size_t kPiece_bytes = std::size_t{1} << 16;
        text_ += piece;
        if (text_.size() >= kPiece_bytes) {
            out_(text_);
            text_.clear();
        }
    }

    const Handover& handover_;
    const Scene3dOptions& options_;
    const Sink& out_;
    PictureFrame frame_;
    std::string text_;
    std::unordered_set<std::string> identifiers_;
    std::unordered_map<std::string, std::size_t> numbers_;
};

}  // namespace

void write_usda(const Handover& handover, const Scene3dOptions& options, const Sink& out) {
    UsdText(handover, options, out).write();
}

std::vector<Loss> usda_losses(const Handover& handover, const Scene3dOptions& options) {
    return common_losses(handover, usd_motions(handover, options), Target::usda);
}

}  // namespace handover
