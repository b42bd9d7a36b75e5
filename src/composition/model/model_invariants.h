#pragma once

#include <optional>
#include <string>

struct tagProjectSettings;

/// How far reading a composition file came.
enum class ModelState {
    complete,    ///< ReadCompositionFile returned 1
    broken_off,  ///< it returned 0: what was not reached has no name, path or value yet
};

/// The first thing in `settings` that no file can have brought about, with its place: "root, entry 2, entry
/// 1: blend mode 7 is none of 0 to 2"; nothing for a sound model. Such a thing is a defect of the readers.
///
/// Looks at every number, follows every link of every list and walks every text to its end. The work grows
/// with the model alone, also when links lead in circles; where a pointer leads to freed memory or a text
/// has no end, that is for AddressSanitizer to find. Not part of the bundle.
[[nodiscard]] std::optional<std::string> validate_model(const tagProjectSettings& settings, ModelState state);
