#pragma once

// Scenes and handovers made by hand, for the tests of the proof.

#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "handover/handover.h"

namespace made {

/// The numbers of a KEY line.
struct Key {
    int frame = 0;
    double x = 0;
    double y = 0;
    double z = 0;
    double heading = 0;
    double pitch = 0;
    double bank = 0;
    double view_angle = 90;
    double distance = 1000;
};

inline void add_keys(CSceneObject& object, const std::vector<Key>& keys) {
    for (const Key& key : keys) {
        tagKeyFrame& one = *object.AddKeyframe();
        one.frame = key.frame;
        one.position[0] = static_cast<float>(key.x);
        one.position[1] = static_cast<float>(key.y);
        one.position[2] = static_cast<float>(key.z);
        one.rotation[0] = static_cast<float>(key.heading);
        one.rotation[1] = static_cast<float>(key.pitch);
        one.rotation[2] = static_cast<float>(key.bank);
        one.fov = static_cast<float>(key.view_angle);
        one.targetDistance = static_cast<float>(key.distance);
    }
}

/// Fills settings of a scene from frame 0 to `to`; objects are added in the order of a file.
struct Scene {
    explicit Scene(int width, int height, double aspect = 1, int to = 100) {
        settings.width = width;
        settings.height = height;
        settings.aspect = static_cast<float>(aspect);
        settings.to = to;
        settings.range = to + 1;
        settings.fps = 25;
    }

    Scene& camera(const std::vector<Key>& keys) { return add(new CCamera, keys, "Camera"); }
    Scene& null(const std::vector<Key>& keys) { return add(new CNull, keys, "Null"); }

    Scene& add(CSceneObject* object, const std::vector<Key>& keys, const std::string& name) {
        object->name = new char[name.size() + 1];
        name.copy(object->name, name.size());
        object->name[name.size()] = 0;
        settings.objects.AddAtHead(object);
        add_keys(*object, keys);
        return *this;
    }

    tagProjectSettings settings;
};

inline handover::Track track(handover::Property property, handover::Interpolation interpolation) {
    handover::Track one;
    one.property = property;
    one.interpolation = interpolation;
    return one;
}

/// A layer as the importer makes it of a camera: position, point of interest, bank, zoom; one key for each of
/// the scene's, whose numbers are those of the file in single precision. `from` is subtracted from the
/// frames.
inline handover::Layer camera_layer(const std::vector<Key>& keys, int width, std::size_t object,
                                    handover::Interpolation interpolation, double from = 0) {
    using handover::Property;
    handover::Layer layer;
    layer.kind = handover::LayerKind::camera;
    layer.object = object;
    layer.aimed = true;
    handover::Track position = track(Property::position, interpolation);
    handover::Track aim = track(Property::anchor, interpolation);
    handover::Track orientation = track(Property::orientation, interpolation);
    handover::Track zoom = track(Property::zoom, interpolation);
    const double degree = std::numbers::pi / 180;
    for (const Key& key : keys) {
        const double h = static_cast<float>(key.heading) * degree;
        const double p = static_cast<float>(key.pitch) * degree;
        const double x = static_cast<float>(key.x);
        const double y = static_cast<float>(key.y);
        const double z = static_cast<float>(key.z);
        const double d = static_cast<float>(key.distance);
        for (handover::Track* one : {&position, &aim, &orientation, &zoom}) {
            one->frames.push_back(key.frame - from);
        }
        position.values.insert(position.values.end(), {x, -y, z});
        aim.values.insert(aim.values.end(), {x - std::cos(p) * std::sin(h) * d, -(y + std::sin(p) * d),
                                             z + std::cos(p) * std::cos(h) * d});
        orientation.values.insert(orientation.values.end(), {0, 0, double{static_cast<float>(key.bank)}});
        zoom.values.push_back(width / 2.0 / std::tan(static_cast<float>(key.view_angle) * degree / 2));
    }
    layer.tracks = {position, aim, orientation, zoom};
    return layer;
}

inline handover::Composition composition(std::size_t item, int width, int height, double aspect) {
    handover::Composition one;
    one.item = item;
    one.width_px = width;
    one.height_px = height;
    one.pixel_aspect = aspect;
    return one;
}

/// A handover of a scene of `width` by `height` pixels with a root composition of this aspect, without
/// layers.
inline handover::Handover project(int width, int height, double scene_aspect, double root_aspect) {
    handover::Handover one;
    one.version = handover::Version::imported;
    one.shot.width_px = width;
    one.shot.height_px = height;
    one.shot.pixel_aspect = scene_aspect;
    one.compositions.push_back(composition(0, width, height, root_aspect));
    return one;
}

/// Lays a composition of this size and aspect, with one camera, into the root at a scale in percent.
inline void nest(handover::Handover& project, const handover::Layer& camera, int width, int height,
                 double aspect, double scale_x, double scale_y) {
    project.compositions.push_back(composition(1, width, height, aspect));
    project.compositions.back().layers.push_back(camera);
    handover::Layer shown;
    shown.kind = handover::LayerKind::composition;
    shown.item = 1;
    handover::Track scale = track(handover::Property::scale, handover::Interpolation::linear);
    scale.values = {scale_x, scale_y, 100};
    shown.tracks = {scale};
    project.compositions.front().layers.push_back(shown);
}

}  // namespace made
