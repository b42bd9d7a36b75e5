#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <string>
#include <vector>

#include "cli/handover/handover_run.h"
#include "handover/handover_invariants.h"
#include "support/scene_folder.h"

namespace made {

using namespace handover;

/// The scene as the built bundle imports it. Fails the test, and throws, if it does not arrive.
inline Handover handed_over(const std::string& path, Version version = Version::corrected,
                            const HandoverOptions& options = {}) {
    const cli::SceneReading reading = cli::read_scene(path);
    cli::HandedOver result = cli::hand_over(reading, cli::find_bundle(VXR_BUNDLE_PATH), version, options);
    for (const std::string& problem : result.problems) {
        ADD_FAILURE() << problem;
    }
    for (const auto& diagnostic : result.diagnostics) {
        ADD_FAILURE() << diagnostic.reason;
    }
    if (const auto fault = validate_handover(result.handover.value())) {
        ADD_FAILURE() << *fault;
    }
    return std::move(*result.handover);
}

/// A scene of 720 x 576 pixels; `settings` may override what is written before it.
inline std::string scene_text(const std::string& settings, const std::string& entries,
                              const std::string& objects) {
    return "VORTAN XR COMPOSITION RESOLUTION 720 576 FROM 0 TO 99 RANGE 100 FPS 25 " + settings +
           "\nCOMPOSITION NRM \"Main\" {\n" + entries + "}\n" + objects;
}

inline Handover of_text(const std::string& text, Version version = Version::corrected,
                        const HandoverOptions& options = {}) {
    const SceneFolder folder;
    return handed_over(folder.scene(text), version, options);
}

inline HandoverOptions without(std::initializer_list<Correction> corrections) {
    HandoverOptions options;
    options.left_out = corrections;
    return options;
}

/// The layer with this name; fails the test and throws without one.
inline const Layer& layer_named(const Handover& handover, const std::string& name) {
    for (const Composition& composition : handover.compositions) {
        for (const Layer& layer : composition.layers) {
            if (layer.name == name) {
                return layer;
            }
        }
    }
    throw std::runtime_error("there is no layer " + name);
}

inline const Track* find(const Layer& layer, Property property) {
    const auto found = std::find_if(layer.tracks.begin(), layer.tracks.end(),
                                    [&](const Track& track) { return track.property == property; });
    return found == layer.tracks.end() ? nullptr : &*found;
}

/// The track of a property that the layer must have.
inline const Track& track_of(const Layer& layer, Property property) {
    const Track* const track = find(layer, property);
    if (track == nullptr) {
        throw std::runtime_error(layer.name + " lacks a property");
    }
    return *track;
}

inline std::int64_t count_of(const Handover& handover, Correction correction) {
    for (const AppliedCorrection& applied : handover.corrections) {
        if (applied.correction == correction) {
            return applied.count;
        }
    }
    return 0;
}

inline std::vector<std::string> loss_codes(const Handover& handover) {
    std::vector<std::string> codes;
    for (const Loss& loss : handover.losses) {
        codes.emplace_back(loss.what.code.name());
    }
    return codes;
}

}  // namespace made
