#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "handover/handover.h"

namespace made {

using handover::Handover;
using handover::ObjectKey;
using handover::ObjectKind;
using handover::SceneObject;

/// A shot of 200 x 100 square pixels, frames 0 to 10.
inline Handover shot(std::vector<SceneObject> objects) {
    Handover handover;
    handover.shot.file = "folder/shot.aec";
    handover.shot.width_px = 200;
    handover.shot.height_px = 100;
    handover.shot.pixel_aspect = 1;
    handover.shot.from = 0;
    handover.shot.to = 10;
    handover.shot.rate_fps = 25;
    handover.objects = std::move(objects);
    return handover;
}

/// A key at a place, looking along z with an angle of view of 90 degrees.
inline ObjectKey key(std::int64_t frame, double x, double y, double z) {
    ObjectKey key;
    key.frame = frame;
    key.position = {x, y, z};
    key.view_angle = 90;
    key.target_distance = 100;
    return key;
}

inline SceneObject object(ObjectKind kind, const std::string& name, std::vector<ObjectKey> keys) {
    SceneObject object;
    object.kind = kind;
    object.name = name;
    object.keys = std::move(keys);
    if (kind == ObjectKind::light) {
        object.light_word = "OMNI";
        object.shadow_word = "NONE";
    }
    return object;
}

}  // namespace made
