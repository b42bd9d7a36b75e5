#include "scenes.h"

#include <filesystem>
#include <map>

#include "json_scene.h"
#include "support/temporary_folder.h"

namespace {

// A null or light without keys would be no load at all, so growing objects have ten each. "text" is the file
// of the first rows of the document: a million KEY lines in ten thousand objects are 63 MB.
const Scene kScenes[] = {
    {"text/1000", {.objects = 10, .keys_per_object = 100}},
    {"text/10000", {.objects = 100, .keys_per_object = 100}},
    {"text/100000", {.objects = 1000, .keys_per_object = 100}},
    {"text/1000000", {.objects = 10000, .keys_per_object = 100}},
    {"keys_in_100_objects/100000", {.objects = 100, .keys_per_object = 1000}},
    {"keys_in_one_object/100", {.objects = 1, .keys_per_object = 100}},
    {"keys_in_one_object/1000", {.objects = 1, .keys_per_object = 1000}},
    {"keys_in_one_object/10000", {.objects = 1, .keys_per_object = 10000}},
    {"keys_in_one_object/100000", {.objects = 1, .keys_per_object = 100000}},
    {"objects/10", {.objects = 10, .keys_per_object = 10}},
    {"objects/100", {.objects = 100, .keys_per_object = 10}},
    {"objects/1000", {.objects = 1000, .keys_per_object = 10}},
    {"objects/10000", {.objects = 10000, .keys_per_object = 10}},
    {"nesting/1", {.nesting = 1}},
    {"nesting/10", {.nesting = 10}},
    {"nesting/100", {.nesting = 100}},
    {"nesting/1000", {.nesting = 1000}},
    {"layers/10", {.layers = 10}},
    {"layers/100", {.layers = 100}},
    {"layers/1000", {.layers = 1000}},
    {"layers/10000", {.layers = 10000}},
};

const std::string& written_file(std::map<std::string, std::string>& written, const Scene& scene,
                                const char* ending, std::string (*text)(const SceneShape&)) {
    static const TemporaryFolder folder;
    std::string& path = written[scene.name];
    if (path.empty())
        path = folder.write("scene" + std::to_string(written.size()) + ending, text(scene.shape));
    return path;
}

}  // namespace

std::span<const Scene> all_scenes() {
    return kScenes;
}

const std::string& scene_file(const Scene& scene) {
    static std::map<std::string, std::string> written;
    return written_file(written, scene, ".aec", composition_text);
}

const std::string& json_scene_file(const Scene& scene) {
    static std::map<std::string, std::string> written;
    return written_file(written, scene, ".json", json_scene_text);
}

std::size_t file_bytes(const std::string& path) {
    return static_cast<std::size_t>(std::filesystem::file_size(path));
}
