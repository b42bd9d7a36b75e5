#include "cli/scene/value_effect.h"

#include <cmath>
#include <cstddef>
#include <iterator>

#include "cli/scene/scene_reading.h"
#include "cli/scene/written_number.h"

namespace cli {
namespace {

std::string count_of_frames(double frames) {
    return measured_text(frames) + (frames == 1 ? " frame" : " frames");
}

// Whole frames at a whole rate stand for a rate with a fraction, so everything lasts longer than what was
// rendered or recorded at the rate as written.
std::string rate_effect(const SceneChange& change, const tagProjectSettings& settings) {
    const double range = settings.range;
    if (change.kept <= 0 || range <= 0) {
        return {};
    }
    const std::string rate = shortest_text(change.kept);
    std::string seconds = count_of_frames(range) + " of a composition last " +
                          measured_text(range / change.kept) + " s at " + rate + " frames a second";
    if (!change.written || *change.written <= 0) {
        return seconds;
    }
    // In frames of the composition, which are those of the rate that is kept.
    const double early = range * (1 - change.kept / *change.written);
    return seconds + "; a clip of " + count_of_frames(range) + " at " + change.first.text + " ends " +
           count_of_frames(std::abs(early)) + (early >= 0 ? " early" : " late");
}

std::string frame_effect(const SceneChange& change) {
    std::string effect = "the key is set at frame " + shortest_text(change.kept);
    if (!change.written) {
        return effect;
    }
    const double early = *change.written - change.kept;
    return effect + ", which is " + count_of_frames(std::abs(early)) + (early >= 0 ? " early" : " late");
}

std::string number_effect(const std::string& what, double kept) {
    if (!std::isfinite(kept)) {
        return what + " becomes infinite, which After Effects cannot show";
    }
    return what + " is " + shortest_text(kept) + " in After Effects";
}

std::string key_effect(const SceneChange& change) {
    // Beside the frame, in the order of a KEY line.
    constexpr const char* kNumbers[] = {"x of the position", "y of the position",  "z of the position",
                                        "the first angle",   "the second angle",   "the third angle",
                                        "the field of view", "the target distance"};
    const auto number = static_cast<std::size_t>(change.index);
    if (change.index == 0) {
        return frame_effect(change);
    }
    return number <= std::size(kNumbers)
               ? number_effect(std::string(kNumbers[number - 1]) + " at this key", change.kept)
               : std::string();
}

std::string light_effect(const SceneChange& change) {
    constexpr const char* kColours[] = {"the red of the light", "the green of the light",
                                        "the blue of the light"};
    if (change.keyword == "INTENSITY") {
        return number_effect("the intensity of the light in per cent", change.kept * 100);
    }
    if (change.keyword == "ANGLE") {
        return "nothing differs, because no cone angle reaches After Effects";
    }
    const auto number = static_cast<std::size_t>(change.index);
    return change.keyword == "COLOR" && number < std::size(kColours)
               ? number_effect(kColours[number], change.kept)
               : std::string();
}

}  // namespace

std::string change_effect(const SceneChange& change, const tagProjectSettings& settings) {
    const std::string kept = shortest_text(change.kept);
    if (change.keyword == "FPS") {
        return rate_effect(change, settings);
    }
    if (change.keyword == "RESOLUTION") {
        return "every composition and placeholder is " + kept +
               (change.index == 0 ? " pixels wide" : " pixels high");
    }
    if (change.keyword == "RANGE") {
        return "every composition has " + count_of_frames(change.kept);
    }
    if (change.keyword == "FROM") {
        return "layers begin with frame " + kept + " of the scene, and keys move with it";
    }
    if (change.keyword == "TO") {
        return "layers last " + std::to_string(layer_length(settings)) + " frames, up to frame " + kept;
    }
    if (change.keyword == "ASPECT") {
        return "compositions and footage get the pixel aspect " + kept;
    }
    return change.keyword == "KEY" ? key_effect(change) : light_effect(change);
}

}  // namespace cli
