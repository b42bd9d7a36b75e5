#pragma once

#include <cstddef>
#include <span>
#include <string>

/// The contents of a composition file made for measuring.
struct SceneShape {
    int objects = 0;          ///< cameras, lights and nulls in turn
    int keys_per_object = 0;  ///< one per frame, from frame 0
    int nesting = 1;          ///< compositions inside each other, including the root
    int layers = 0;           ///< pictures in the innermost composition; none of the files exists
};

/// The text of such a file. The same shape gives the same bytes on every machine.
[[nodiscard]] std::string composition_text(const SceneShape& shape);

/// A composition file to measure with. Its name is "FACTOR/NUMBER": the property that grows from row to row
/// while all others stay the same, and its value.
struct Scene {
    const char* name;
    SceneShape shape;
};

/// Every scene; each factor covers three decades where the format allows it.
[[nodiscard]] std::span<const Scene> all_scenes();

/// The path of the scene's composition file. The first call writes it; the folder is deleted when the program
/// ends.
[[nodiscard]] const std::string& scene_file(const Scene& scene);
/// The path of the same scene as JSON.
[[nodiscard]] const std::string& json_scene_file(const Scene& scene);

[[nodiscard]] std::size_t file_bytes(const std::string& path);
