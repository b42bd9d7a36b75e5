#pragma once

#include <string>

struct tagProjectSettings;

/// Prints a whole model, numbers with all their bits, so that two models can be compared.
[[nodiscard]] std::string model_text(const tagProjectSettings& settings);
