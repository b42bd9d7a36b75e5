#include "composition/model/scene_object.h"

#include <cstddef>
#include <cstdlib>
#include <new>

CSceneObject::~CSceneObject() {
    for (A_long i = 0; i < keyCount; ++i) {
        delete keys[i];
    }
    std::free(keys);
    delete[] name;
}

tagKeyFrame* CSceneObject::AddKeyframe() {
    tagKeyFrame* const key = new (std::nothrow) tagKeyFrame;
    if (key == nullptr) {
        return nullptr;
    }
    const auto old_count = static_cast<std::size_t>(keyCount);
    // Not array-new: realloc moves the pages of a long array where a new array copies them.
    void* const grown = std::realloc(keys, (old_count + 1) * sizeof(void*));
    if (grown == nullptr) {
        delete key;
        return nullptr;
    }
    keys = static_cast<tagKeyFrame**>(grown);
    keys[old_count] = key;
    ++keyCount;
    return key;
}
