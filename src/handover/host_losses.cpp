#include "handover/host_losses.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "handover/loss.h"
#include "handover/motion_path.h"
#include "text/ascii.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace handover {
namespace {

// What After Effects accepts of a composition.
constexpr std::int32_t kLeastSide_px = 4;
constexpr std::int32_t kMostSide_px = 30000;
constexpr double kLeastRate_fps = 1;
constexpr double kMostRate_fps = 99;
constexpr double kMostSeconds = 10800;
// A camera's zoom: the least value that its field takes, and more than any lens has.
constexpr double kLeastZoom_px = 1;
constexpr double kMostCone_degrees = 180;

const Track* find_track(const Layer& layer, Property property) {
    const auto found = std::find_if(layer.tracks.begin(), layer.tracks.end(),
                                    [&](const Track& track) { return track.property == property; });
    return found == layer.tracks.end() ? nullptr : &*found;
}

// Whether the host sees something between two keys of different values.
bool moves_between_keys(const Track& track) {
    const std::size_t size = component_count(track.property);
    for (std::size_t i = 1; i < track.frames.size(); ++i) {
        const double* const value = track.values.data() + i * size;
        if (track.frames[i] - track.frames[i - 1] > 1 && !std::equal(value, value + size, value - size)) {
            return true;
        }
    }
    return false;
}

class LossList {
  public:
    LossList(const SceneSource& scene, Handover& handover) : scene_(scene), handover_(handover) {}

    void add_all() {
        settings();
        for (const Item& item : handover_.items) {
            if (item.kind == ItemKind::footage) {
                footage(item, handover_.footage[item.content]);
            }
        }
        layers();
    }

  private:
    void add(LossCode code, const diagnostic::Place& at, std::string reason, std::int64_t count = 1,
             std::string effect = {}) {
        diagnostic::Diagnostic what = diagnostic::make(code, at, std::move(reason));
        what.count = count;
        if (!effect.empty()) {
            what.effects.insert(what.effects.begin(), std::move(effect));
        }
        handover_.losses.push_back({std::move(what), Target::jsx});
    }

    void outside(const char* word, const std::string& reason) {
        add(LossCode::outside_host_range, scene_.place_of_setting(word), reason);
    }

    void settings() {
        const Shot& shot = handover_.shot;
        const Composition& root = handover_.compositions.front();
        if (root.pixel_aspect != shot.pixel_aspect) {
            add(LossCode::aspect_cut, scene_.place_of_setting("ASPECT"),
                "the pixel aspect " + text::plain_number(shot.pixel_aspect) + " is cut to " +
                    text::plain_number(root.pixel_aspect));
        }
        const auto [narrow, wide] = std::minmax(shot.width_px, shot.height_px);
        if (narrow < kLeastSide_px || wide > kMostSide_px) {
            outside("RESOLUTION", "After Effects has compositions from 4 to 30000 pixels wide and high");
        }
        if (shot.rate_fps < kLeastRate_fps || shot.rate_fps > kMostRate_fps) {
            outside("FPS", "After Effects has compositions with 1 to 99 frames a second, and this one has " +
                               text::plain_number(shot.rate_fps));
        } else if (static_cast<double>(shot.range) / shot.rate_fps > kMostSeconds) {
            outside("RANGE", "After Effects has compositions of up to 3 hours");
        }
        if (shot.to < shot.from) {
            outside("TO", "layers that end before they begin, from frame " + std::to_string(shot.from) +
                              " to " + std::to_string(shot.to) + ", have no length");
        }
    }

    void footage(const Item& item, const Footage& made) {
        const std::string name = text::quoted(item.name);
        switch (made.kind) {
            case FootageKind::placeholder: {
                add(LossCode::footage_missing, item.at,
                    "a placeholder stands in for " + text::quoted(made.path));
                const std::string_view whole = text::last_component(made.path, ":\\/");
                if (item.name != whole) {
                    add(LossCode::name_cut, item.at,
                        text::quoted(whole) + " is called " + name + " in the project");
                }
                break;
            }
            case FootageKind::texture:
                add(LossCode::footage_needs_plug_in, item.at, "only the plug-in reads " + name);
                break;
            case FootageKind::sequence:
                if (made.files && made.files->missing > 0) {
                    add(LossCode::sequence_gap, item.at,
                        std::to_string(made.files->missing) + " files of " + name + " are missing",
                        made.files->missing);
                }
                break;
            case FootageKind::still:
                break;
        }
    }

    void layers() {
        for (const Composition& composition : handover_.compositions) {
            for (const Layer& layer : composition.layers) {
                if (layer.object != kNone) {
                    object(layer, handover_.objects[layer.object]);
                }
            }
        }
    }

    void object(const Layer& layer, const SceneObject& object) {
        if (object.kind == ObjectKind::light) {
            light(layer, object);
        }
        if (object.kind == ObjectKind::camera) {
            camera(layer, object);
        }
        if (object.kind == ObjectKind::null && turns(object)) {
            add(LossCode::null_orientation_open, object.at,
                "the order in which " + text::quoted(object.name) + " turns about its axes is not known");
        }
        const auto curved = std::count_if(layer.tracks.begin(), layer.tracks.end(), [](const Track& track) {
            return track.interpolation == Interpolation::host && moves_between_keys(track);
        });
        if (curved > 0) {
            add(LossCode::curve_between_keys, object.at,
                text::quoted(object.name) + " moves along curves between its keys, and straight in the scene",
                curved);
        }
    }

    static bool turns(const SceneObject& object) {
        return std::any_of(object.keys.begin(), object.keys.end(), [](const ObjectKey& key) {
            return key.heading != 0 || key.pitch != 0 || key.bank != 0;
        });
    }

    void light(const Layer& layer, const SceneObject& object) {
        const std::string name = text::quoted(object.name);
        const std::string& kind = object.light_word;
        if (kind == "PSPOT" || kind == "TUBE" || kind == "AREA") {
            add(LossCode::light_kind_changed, object.at,
                name + ", a light of kind " + kind + ", becomes a " +
                    (kind == "PSPOT" ? "parallel" : "point") + " light");
        }
        if (object.shadow_word == "SOFT" || object.shadow_word == "AREA") {
            add(LossCode::shadow_kind_lost, object.at,
                name + " casts shadows of kind " + object.shadow_word + ", and hard ones in After Effects");
        }
        if (layer.light != LightKind::spot) {
            return;
        }
        const Track* const cone = find_track(layer, Property::cone_angle);
        if (cone == nullptr) {
            add(LossCode::cone_lost, object.at,
                name + " keeps the cone that After Effects gives a new light, whatever ANGLE says");
        } else if (object.cone_angle < 0 || object.cone_angle > kMostCone_degrees) {
            add(LossCode::outside_host_range, object.at,
                "After Effects has cones of 0 to 180 degrees, and that of " + name + " has " +
                    text::plain_number(object.cone_angle));
        }
    }

    void camera(const Layer& layer, const SceneObject& object) {
        if (layer.aimed && !can_be_aimed(MotionPath(object, true, HandoverOptions{}.cut_angle_degrees))) {
            add(LossCode::aim_undefined, object.at,
                text::quoted(object.name) +
                    " has a point of interest, which does not tell how the camera is turned where it looks "
                    "straight up or down, or beyond, or where the point is at the camera");
        }
        const Track* const zoom = find_track(layer, Property::zoom);
        if (zoom == nullptr) {
            return;
        }
        const auto outside = std::count_if(zoom->values.begin(), zoom->values.end(), [](double value) {
            return !(std::isfinite(value) && value >= kLeastZoom_px);
        });
        if (outside > 0) {
            add(LossCode::outside_host_range, object.at,
                "After Effects has no zoom for an angle of view that is 0 or not below 180 degrees, as " +
                    text::quoted(object.name) + " has",
                outside);
        }
    }

    const SceneSource& scene_;
    Handover& handover_;
};

}  // namespace

void add_host_losses(const SceneSource& scene, Handover& handover) {
    LossList(scene, handover).add_all();
}

}  // namespace handover
