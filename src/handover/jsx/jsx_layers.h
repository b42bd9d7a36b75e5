#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "handover/handover.h"
#include "handover/jsx/jsx_text.h"

namespace handover {

/// Statements in one function of a script: engines limit what a function holds.
inline constexpr std::size_t kJsxThingsOfFunction = 64;

/// Writes the layers of every composition, with their keys, on `threads` threads: turning numbers into text
/// is most of the work. At most `threads` + 1 functions are in memory, each of at most a million numbers;
/// longer ones are written as they come. Adds a sentence to `notes` for every track that is not written
/// whole, up to a thousand.
void write_layers(JsxText& text, const Handover& handover, std::size_t threads,
                  std::vector<std::string>& notes);

}  // namespace handover
