#pragma once

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "cli/doctor/diagnosis.h"

namespace cli::doctor {

/// {"generation","end","reason","registered":[{"kind","name","extensions"}],"messages"}
nlohmann::ordered_json trial_json(const Trial& trial);

/// The same on one line with a line break at its end, as one process tells it another; and back, nothing when
/// the text is no such line.
std::string trial_line(const Trial& trial);
std::optional<Trial> read_trial_line(const std::string& line);

}  // namespace cli::doctor
