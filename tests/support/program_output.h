#pragma once

#include <string>
#include <vector>

/// Told of every program that a test has run: its words, the program's name among them, and its standard
/// output. Null in test programs that do not look at them as a whole.
inline void (*program_output_listener)(const std::vector<std::string>& command,
                                       const std::string& out) = nullptr;
