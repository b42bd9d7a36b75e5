#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "composition_text.h"

/// A composition file to measure with. The name is read as "FACTOR/NUMBER": what grows from row to row, the
/// rest being held.
struct Scene {
    const char* name;
    SceneShape shape;
};

/// Every scene, each factor over three decades where the format allows it.
[[nodiscard]] std::span<const Scene> all_scenes();

/// The path of the scene's composition file, written at the first call. The folder goes at the end of the
/// program.
[[nodiscard]] const std::string& scene_file(const Scene& scene);
/// The path of the same scene as JSON.
[[nodiscard]] const std::string& json_scene_file(const Scene& scene);

[[nodiscard]] std::size_t file_bytes(const std::string& path);
