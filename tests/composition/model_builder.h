#pragma once

#include <cstring>
#include <initializer_list>
#include <string>

#include "composition/model/composition.h"
#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"

// The project model as reading a file would leave it, built by hand for the tests of the builders.

/// A text that a record can own: from array-new.
inline char* owned_text(const std::string& text) {
    char* copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

/// Sets what a footage entry reads from its line.
inline CFileItem& fill(CFileItem* file, const std::string& path, A_long blend = kBlendNormal,
                       A_long alpha = kAlphaStraight, A_long is_sequence = 0) {
    file->path = owned_text(path);
    file->blendMode = blend;
    file->alphaMode = alpha;
    file->isSequence = is_sequence;
    return *file;
}

inline CComposition& fill(CComposition* composition, const std::string& name, A_long blend = kBlendNormal) {
    composition->name = owned_text(name);
    composition->blendMode = blend;
    return *composition;
}

/// One KEY line: frame, position, rotation, and for cameras field of view and target distance.
struct Key {
    A_long frame = 0;
    float position[3] = {};
    float rotation[3] = {};
    float fov = 0;
    float target_distance = kDefaultTargetDistance;
};

inline void add_keys(CSceneObject& object, std::initializer_list<Key> keys) {
    for (const Key& key : keys) {
        tagKeyFrame* added = object.AddKeyframe();
        added->frame = key.frame;
        std::memcpy(added->position, key.position, sizeof key.position);
        std::memcpy(added->rotation, key.rotation, sizeof key.rotation);
        added->fov = key.fov;
        added->targetDistance = key.target_distance;
    }
}
