#pragma once

#include <optional>
#include <string>

struct tagProjectSettings;

/// How far reading a composition file got.
enum class ModelState {
    complete,    ///< read_composition_file returned 1
    broken_off,  ///< it returned 0: whatever was not reached has no name, path or value yet
};

/// Checks the invariants that hold for the model of every file. Returns the first violation with its place,
/// such as "root, entry 2, entry 1: blend mode 7 is not between 0 and 2", or nothing for a valid model. A
/// violation is a defect of the readers.
///
/// Checks every number, follows every link of every list and reads every text to its end. The work is
/// proportional to the size of the model, even if links form a cycle. Dangling pointers and unterminated
/// texts are left to AddressSanitizer. Not part of the bundle.
[[nodiscard]] std::optional<std::string> validate_model(const tagProjectSettings& settings, ModelState state);
