#pragma once

#include <string>
#include <vector>

#include "handover/build_handover.h"

namespace cli {

class Options;

/// What the user says about what is handed over, for every verb that describes a scene for other programs.
struct CorrectionChoices {
    std::string as = "corrected";
    std::vector<std::string> without;
    std::string cut_angle_degrees = "60";
    std::string rate_fps;
    std::string tolerance = "0";

    [[nodiscard]] handover::Version version() const;
    /// As the handover takes them. They have been checked.
    [[nodiscard]] handover::HandoverOptions handover_options() const;
    /// Which choices exclude each other, for a usage error; empty if none do.
    [[nodiscard]] std::string contradiction() const;
};

/// Adds --as, --without, --cut-angle, --fps and --tolerance.
void add_correction_options(Options& options, CorrectionChoices& choices, const std::string& group);

}  // namespace cli
