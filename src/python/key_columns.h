#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/scene/scene_facts.h"

namespace python {

/// The keys of one camera, light or null as columns, in the order of the file. Each column is contiguous, so
/// that NumPy shows it as it is.
struct KeyColumns {
    std::vector<std::int32_t> frames;
    std::vector<float> position;         ///< x, y, z of each key
    std::vector<float> rotation;         ///< three degrees of each key
    std::vector<float> field_of_view;    ///< degrees; cameras only
    std::vector<float> target_distance;  ///< scene units; cameras only
    bool is_camera = false;

    [[nodiscard]] std::size_t size() const { return frames.size(); }
};

[[nodiscard]] KeyColumns key_columns(const cli::SceneBlock& object);

}  // namespace python
