#pragma once

#include <string>

/// The beginning of a composition file: every required setting, up to the word COMPOSITION.
inline std::string scene_settings() {
    return "VORTAN XR COMPOSITION\nRESOLUTION 64 48\nFROM 0\nTO 9\nRANGE 10\nFPS 25\n";
}

/// A root composition with `levels` - 1 nested ones.
inline std::string nested_scene(int levels) {
    std::string text = scene_settings();
    for (int level = 1; level <= levels; ++level) {
        text += "COMPOSITION NRM \"" + std::to_string(level) + "\" {\n";
    }
    for (int level = 1; level <= levels; ++level) {
        text += "}\n";
    }
    return text;
}
