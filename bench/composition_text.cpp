#include "composition_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <random>

namespace {

constexpr std::uint32_t kSeed = 20240607;

/// A number as exporters write them: three decimals, within +-`limit`. Made from integers, because the
/// library's distributions differ between implementations.
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
    for (const std::uint32_t limit : {kPlaces, kPlaces, kPlaces, kDegrees, kDegrees, kDegrees})
        append_number(text, random, limit);
    if (camera)
        text += " 45.000 622.013";  // field of view and distance
    text += "\n";
}

void append_object(std::string& text, std::mt19937& random, const SceneShape& shape, int index) {
    static constexpr const char* kKinds[] = {"CAMERA", "LIGHT", "NULL"};
    const auto kind = static_cast<std::size_t>(index) % std::size(kKinds);
    text += std::string(kKinds[kind]) + " \"Object " + std::to_string(index) + "\" {\n";
    for (int frame = 0; frame < shape.keys_per_object; ++frame)
        append_key(text, random, frame, kind == 0);
    text += "}\n";
}

}  // namespace

std::string composition_text(const SceneShape& shape) {
    std::mt19937 random(kSeed);
    const int frames = std::max(shape.keys_per_object, 1);
    std::string text = "VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO " + std::to_string(frames - 1) +
                       "\nRANGE " + std::to_string(frames) + "\nFPS 25\n";
    for (int level = 0; level < shape.nesting; ++level)
        text += "COMPOSITION NRM \"Level " + std::to_string(level) + "\" {\n";
    for (int layer = 0; layer < shape.layers; ++layer)
        text += "FILE NRM STRAIGHT \"missing_" + std::to_string(layer) + ".tif\"\n";
    for (int level = 0; level < shape.nesting; ++level)
        text += "}\n";
    for (int object = 0; object < shape.objects; ++object)
        append_object(text, random, shape, object);
    return text;
}
