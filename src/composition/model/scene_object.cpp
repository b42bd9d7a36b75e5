#include "composition/model/scene_object.h"

#include <algorithm>
#include <cstddef>
#include <new>

CSceneObject::~CSceneObject() {
    for (A_long i = 0; i < keyCount; ++i) {
        delete keys[i];
    }
    delete[] keys;
    delete[] name;
}

tagKeyFrame* CSceneObject::AddKeyframe() {
    tagKeyFrame* const key = new (std::nothrow) tagKeyFrame;
    if (key == nullptr) {
        return nullptr;
    }
    const auto old_count = static_cast<std::size_t>(keyCount);
    tagKeyFrame** const grown = new (std::nothrow) tagKeyFrame*[old_count + 1];
    if (grown == nullptr) {
        delete key;
        return nullptr;
    }
    std::copy_n(keys, old_count, grown);
    grown[old_count] = key;
    delete[] keys;
    keys = grown;
    ++keyCount;
    return key;
}
