#pragma once

#include <string>

struct tagProjectSettings;

/// Everything that a model says, so that two can be compared; numbers with all their bits.
[[nodiscard]] std::string model_text(const tagProjectSettings& settings);
