#pragma once

#include <string>

/// An interpretation of footage as whole frames, none of it preset by the recording host.
struct Interpretation {
    int alpha;    ///< flags
    int aspect;   ///< hundredths
    int conform;  ///< frames a second; 0 for single images
    int motion;
};

/// The recording host's line for setting it on `item`.
inline std::string set_interpretation(const std::string& item, const Interpretation& i) {
    std::string call = "SetFootageInterpretation(" + item + ", 0, fields 0/0, alpha ";
    call += std::to_string(i.alpha) + ", aspect " + std::to_string(i.aspect) + "/100, native 0, conform ";
    call += std::to_string(i.conform) + ", motion " + std::to_string(i.motion) + ")";
    return call;
}
