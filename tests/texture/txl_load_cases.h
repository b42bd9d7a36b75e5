#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "texture/both_loads.h"
#include "texture/txl_builder.h"

/// The pixels of a TxlFile that no case has changed.
const std::string kSoundPixels = "\x01\x11\x21\x02\x12\x22\x03\x13\x23\x04\x14\x24";
const std::string kNoPixels(12, '\0');

/// A sound file with one change, and the picture that must come of it.
struct LoadCase {
    const char* name;
    std::function<void(TxlFile&)> change;
    std::string pixels;               // of the texture
    std::vector<std::string> alphas;  // values of each channel
};

inline void PrintTo(const LoadCase& load, std::ostream* out) {
    *out << load.name;
}

/// Loads the case both ways and compares.
void expect_picture(const LoadCase& load);

inline TxlLayer layer_of_mode(std::int32_t mode, std::int32_t channels,
                              const std::vector<std::string>& planes) {
    TxlLayer layer;
    layer.mode = mode;
    layer.rows.channels = channels;
    layer.rows.rows = static_cast<std::int32_t>(planes.size()) / channels;
    layer.rows.blocks.clear();
    for (const std::string& plane : planes) {
        layer.rows.blocks.emplace_back(0, plane);
    }
    return layer;
}
