#pragma once

// The call log in the notation of expected/*.calls, one call a line:
//
//   AEGP_CreateComp(item:2, "Main", 720, 576, 106/100, 100@25, 2500/100) -> comp:1
//
// Function, arguments in parameter order, what the host gave out. Handles stand as they are, texts in double
// quotes, times as value@scale, ratios as num/den, other records as their members in braces, vectors and
// colours in parentheses. A result other than 0 follows as "!4". `sin` and `cos` give out their value. An
// acquired suite is not repeated; a success that yields none is "-> null". Paths are written from the scene's
// folder, "<folder>/plate.tga".
//
// Of footage interpretations, which have 17 members and go back as the host gave them but for a few, the four
// that the importer always decides are written by name, and after them every other member that is not what
// the host gave.
//
// Calls of today's hosts are written in the spelling of classic ones: the seven suites that have another
// version today with the classic version, and the 49 functions of an input module as the 46. Paths are the
// same text in both logs. So one expected file serves both, and where the two differ nevertheless a test says
// it.
//
// In expected files, lines that are empty or begin with '#' (blanks before it do not count) say nothing, and
// blanks at the beginning of a line only show what belongs together.

#include <string>
#include <string_view>
#include <vector>

/// Log lines (JSON) in the notation. `folder` is what "<folder>" stands for.
std::vector<std::string> calls_in_notation(const std::vector<std::string>& log_lines,
                                           std::string_view folder);

/// Log lines (JSON) of a today's host as a classic host would have written them.
std::vector<std::string> in_classic_spelling(const std::vector<std::string>& log_lines);

/// The calls of an expected file. Throws when it cannot be read or holds none.
std::vector<std::string> read_expected_calls(const std::string& path);

/// Where two lists differ first, with the lines around it; empty when they are equal.
std::string first_difference(const std::vector<std::string>& expected, const std::vector<std::string>& made);
