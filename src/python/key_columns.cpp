#include "python/key_columns.h"

#include <algorithm>

namespace python {

KeyColumns key_columns(const cli::SceneBlock& object) {
    KeyColumns columns;
    columns.is_camera = object.kind == BlockKind::camera;
    const std::size_t count = cli::key_count(object);
    columns.frames.resize(count);
    columns.position.resize(count * 3);
    columns.rotation.resize(count * 3);
    if (columns.is_camera) {
        columns.field_of_view.resize(count);
        columns.target_distance.resize(count);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const tagKeyFrame& key = *object.object->keys[i];
        columns.frames[i] = key.frame;
        std::copy_n(key.position, 3, &columns.position[i * 3]);
        std::copy_n(key.rotation, 3, &columns.rotation[i * 3]);
        if (columns.is_camera) {
            columns.field_of_view[i] = key.fov;
            columns.target_distance[i] = key.targetDistance;
        }
    }
    return columns;
}

}  // namespace python
