#include "handover/proof/after_effects_model.h"

#include <cmath>
#include <utility>

#include "handover/proof/after_effects_motion.h"

namespace proof {
namespace {

using handover::Composition;
using handover::Handover;
using handover::Layer;
using handover::LayerKind;
using handover::Property;

// A layer with the composition that it is in.
struct PlacedLayer {
    const Composition* composition = nullptr;
    const Layer* layer = nullptr;
};

PlacedLayer layer_of_object(const Handover& handover, std::size_t object) {
    for (const Composition& composition : handover.compositions) {
        for (const Layer& layer : composition.layers) {
            if (layer.object == object) {
                return {&composition, &layer};
            }
        }
    }
    return {};
}

// The layer of the root composition that shows `composition`.
const Layer* layer_of_composition(const Handover& handover, const Composition& composition) {
    for (const Layer& layer : handover.compositions.front().layers) {
        if (layer.kind == LayerKind::composition && layer.item == composition.item) {
            return &layer;
        }
    }
    return nullptr;
}

double frame_of_root(const Handover& handover, double frame) {
    const auto from = static_cast<double>(handover.shot.from);
    return frame - from + (handover.shot.local ? from : 0);
}

double aspect_of(const Handover& handover, const Composition& composition, const AfterEffectsRules& rules) {
    return rules.exact_aspect && composition.pixel_aspect != 1 ? handover.shot.pixel_aspect
                                                               : composition.pixel_aspect;
}

LayerValue direction(const LayerValue& from, const LayerValue& to) {
    const LayerValue way{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
    const double length = std::hypot(way[0], way[1], way[2]);
    return {way[0] / length, way[1] / length, way[2] / length};
}

// The columns are the layer's x, y and z. No numbers straight up and down.
TurnMatrix look_at(const LayerValue& from, const LayerValue& to) {
    const LayerValue z = direction(from, to);
    const double level = std::hypot(z[0], z[2]);
    const LayerValue x{z[2] / level, 0, -z[0] / level};
    const LayerValue y{z[1] * x[2] - z[2] * x[1], z[2] * x[0] - z[0] * x[2], z[0] * x[1] - z[1] * x[0]};
    return {{{x[0], y[0], z[0]}, {x[1], y[1], z[1]}, {x[2], y[2], z[2]}}};
}

class CompositionCamera : public Projector {
  public:
    CompositionCamera(const Handover& handover, const PlacedLayer& camera, const Layer* shown_by,
                      const AfterEffectsRules& rules)
        : handover_(handover), camera_(camera), shown_by_(shown_by), rules_(rules) {}

    void land(double frame, std::span<const Point> points, std::span<Landing> landings) const override {
        double time = frame_of_root(handover_, frame);
        const double root_time = time;
        if (shown_by_ != nullptr) {
            time -= shown_by_->start;
        }
        time -= camera_.layer->start;
        const double aspect = aspect_of(handover_, *camera_.composition, rules_);
        const double stretch = rules_.stretches_space ? aspect : 1;
        LayerValue eye = number(Property::position, time, middle(*camera_.composition));
        eye[0] *= stretch;
        const TurnMatrix axes = axes_at(time, eye, stretch);
        const double zoom = number(Property::zoom, time, {NAN, NAN, NAN})[0];
        const Laying laying = laying_at(root_time);
        for (std::size_t i = 0; i < points.size(); ++i) {
            const LayerValue way{points[i].x * stretch - eye[0], -points[i].y - eye[1], points[i].z - eye[2]};
            const LayerValue seen = in_space(axes, way);
            const double x = zoom * seen[0] / seen[2] / stretch;
            const double y = zoom * seen[1] / seen[2];
            landings[i] = laid(laying, camera_.composition->width_px / 2.0 + x,
                               camera_.composition->height_px / 2.0 + y);
            landings[i].seen =
                seen[2] > 0 && std::isfinite(landings[i].x_px) && std::isfinite(landings[i].y_px);
        }
    }

  private:
    // How a layer without three dimensions lies in the root composition.
    struct Laying {
        LayerValue anchor{};
        LayerValue position{};
        double scale_x = 1;
        double scale_y = 1;
        double cosine = 1;
        double sine = 0;
    };

    static LayerValue middle(const Composition& composition) {
        return {composition.width_px / 2.0, composition.height_px / 2.0, 0};
    }

    [[nodiscard]] LayerValue number(Property property, double time, const LayerValue& fallback) const {
        return value_at(track_of(*camera_.layer, property), time, fallback, rules_.curves);
    }

    [[nodiscard]] TurnMatrix axes_at(double time, const LayerValue& eye, double stretch) const {
        TurnMatrix axes =
            orientation_at(track_of(*camera_.layer, Property::orientation), time, rules_.curves);
        const TurnMatrix turns = product(product(turn_about(0, number(Property::rotate_x, time, {})[0]),
                                                 turn_about(1, number(Property::rotate_y, time, {})[0])),
                                         turn_about(2, number(Property::rotate_z, time, {})[0]));
        axes = product(axes, turns);
        if (camera_.layer->aimed && !rules_.bank_clockwise) {
            // Turned the other way about z: mirrored in x before and after.
            for (std::size_t row = 0; row < 3; ++row) {
                for (std::size_t column = 0; column < 3; ++column) {
                    axes[row][column] *= (row == 0) == (column == 0) ? 1 : -1;
                }
            }
        }
        if (camera_.layer->aimed) {
            LayerValue aim = number(Property::anchor, time, middle(*camera_.composition));
            aim[0] *= stretch;
            axes = product(look_at(eye, aim), axes);
        }
        return axes;
    }

    static LayerValue in_space(const TurnMatrix& axes, const LayerValue& way) {
        LayerValue seen{};
        for (std::size_t column = 0; column < 3; ++column) {
            for (std::size_t row = 0; row < 3; ++row) {
                seen[column] += axes[row][column] * way[row];
            }
        }
        return seen;
    }

    [[nodiscard]] Laying laying_at(double root_time) const {
        Laying laying;
        if (shown_by_ == nullptr) {
            return laying;
        }
        const Composition& root = handover_.compositions.front();
        const double time = root_time - shown_by_->start;
        const auto value = [&](Property property, const LayerValue& fallback) {
            return value_at(track_of(*shown_by_, property), time, fallback, rules_.curves);
        };
        const LayerValue scale = value(Property::scale, {100, 100, 100});
        laying.anchor = value(Property::anchor, middle(*camera_.composition));
        laying.position = value(Property::position, middle(root));
        laying.scale_x = scale[0] / 100 * aspect_of(handover_, *camera_.composition, rules_) /
                         aspect_of(handover_, root, rules_);
        laying.scale_y = scale[1] / 100;
        const TurnMatrix turn = turn_about(2, value(Property::rotate_z, {})[0]);
        laying.cosine = turn[0][0];
        laying.sine = turn[1][0];
        return laying;
    }

    [[nodiscard]] Landing laid(const Laying& laying, double x, double y) const {
        if (shown_by_ == nullptr) {
            return {x, y, true};
        }
        const double across = (x - laying.anchor[0]) * laying.scale_x;
        const double down = (y - laying.anchor[1]) * laying.scale_y;
        return {laying.position[0] + across * laying.cosine - down * laying.sine,
                laying.position[1] + across * laying.sine + down * laying.cosine, true};
    }

    const Handover& handover_;
    PlacedLayer camera_;
    const Layer* shown_by_;  ///< null when the camera is in the root composition
    AfterEffectsRules rules_;
};

}  // namespace

AfterEffectsCamera after_effects_camera(const Handover& handover, std::size_t object,
                                        const AfterEffectsRules& rules) {
    const PlacedLayer camera = layer_of_object(handover, object);
    if (camera.layer == nullptr || camera.layer->kind != LayerKind::camera) {
        return {nullptr, "the project has no layer for this camera"};
    }
    const Layer* shown_by = nullptr;
    if (camera.composition != &handover.compositions.front()) {
        shown_by = layer_of_composition(handover, *camera.composition);
        if (shown_by == nullptr) {
            return {nullptr, "the camera's composition is no layer of the root composition"};
        }
    }
    return {std::make_unique<CompositionCamera>(handover, camera, shown_by, rules), {}};
}

std::optional<Point> after_effects_position(const Handover& handover, std::size_t object, double frame,
                                            const AfterEffectsRules& rules) {
    const PlacedLayer placed = layer_of_object(handover, object);
    if (placed.layer == nullptr) {
        return std::nullopt;
    }
    double time = frame_of_root(handover, frame) - placed.layer->start;
    if (placed.composition != &handover.compositions.front()) {
        const Layer* const shown_by = layer_of_composition(handover, *placed.composition);
        if (shown_by == nullptr) {
            return std::nullopt;
        }
        time -= shown_by->start;
    }
    const LayerValue position =
        value_at(track_of(*placed.layer, Property::position), time,
                 {placed.composition->width_px / 2.0, placed.composition->height_px / 2.0, 0}, rules.curves);
    return Point{position[0], -position[1], position[2]};
}

}  // namespace proof
