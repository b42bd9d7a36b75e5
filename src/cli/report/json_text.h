#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace cli {

/// The document as text, indented by two blanks and with a line break at its end. A list of numbers and
/// texts, and a list of such lists, stands on one line: that is how keys are written.
[[nodiscard]] std::string json_text_of(const nlohmann::ordered_json& document);

}  // namespace cli
