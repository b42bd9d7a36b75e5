#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace cli {

/// The document as text, indented by two blanks and with a line break at its end. A list of numbers and
/// texts, or of such lists, is written on one line, as keys are.
[[nodiscard]] std::string json_text_of(const nlohmann::ordered_json& document);

/// The bytes that embedded::json_text() wrote as `json`. Throws std::runtime_error for any other value.
[[nodiscard]] std::string bytes_of_json_text(const nlohmann::ordered_json& json);

}  // namespace cli
