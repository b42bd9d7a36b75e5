#include "scenes.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <map>
#include <random>

#include "json_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::uint32_t kSeed = 20240607;

/// Appends a number as exporters write it: three decimals, within +-`limit`. Made from integers, because the
/// standard distributions differ between implementations.
void append_number(std::string& text, std::mt19937& random, std::uint32_t limit) {
    const auto thousandths = static_cast<std::uint32_t>(random() % (2 * limit * 1000 + 1));
    char number[32];
    std::snprintf(number, sizeof number, " %.3f", thousandths / 1000.0 - limit);
    text += number;
}

void append_key(std::string& text, std::mt19937& random, int frame, bool camera) {
    constexpr std::uint32_t kPlaces = 1000;
    constexpr std::uint32_t kDegrees = 180;
    text += "  KEY " + std::to_string(frame);
    for (const std::uint32_t limit : {kPlaces, kPlaces, kPlaces, kDegrees, kDegrees, kDegrees}) {
        append_number(text, random, limit);
    }
    if (camera) {
        text += " 45.000 622.013";  // field of view and distance
    }
    text += "\n";
}

void append_object(std::string& text, std::mt19937& random, const SceneShape& shape, int index) {
    static constexpr const char* kKinds[] = {"CAMERA", "LIGHT", "NULL"};
    const auto kind = static_cast<std::size_t>(index) % std::size(kKinds);
    text += std::string(kKinds[kind]) + " \"Object " + std::to_string(index) + "\" {\n";
    for (int frame = 0; frame < shape.keys_per_object; ++frame) {
        append_key(text, random, frame, kind == 0);
    }
    text += "}\n";
}

// A null or light without keys would be no load at all, so the growing objects have ten keys each. "text" is
// the file of the first rows of the document: a million KEY lines in ten thousand objects take 63 MB.
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
    if (path.empty()) {
        path = folder.write("scene" + std::to_string(written.size()) + ending, text(scene.shape));
    }
    return path;
}

}  // namespace

std::string composition_text(const SceneShape& shape) {
    std::mt19937 random(kSeed);
    const int frames = std::max(shape.keys_per_object, 1);
    std::string text = "VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO " + std::to_string(frames - 1) +
                       "\nRANGE " + std::to_string(frames) + "\nFPS 25\n";
    for (int level = 0; level < shape.nesting; ++level) {
        text += "COMPOSITION NRM \"Level " + std::to_string(level) + "\" {\n";
    }
    for (int layer = 0; layer < shape.layers; ++layer) {
        text += "FILE NRM STRAIGHT \"missing_" + std::to_string(layer) + ".tif\"\n";
    }
    for (int level = 0; level < shape.nesting; ++level) {
        text += "}\n";
    }
    for (int object = 0; object < shape.objects; ++object) {
        append_object(text, random, shape, object);
    }
    return text;
}

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
