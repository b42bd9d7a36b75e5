#pragma once

// The call log in the notation of expected/*.calls, one call a line:
//
//   AEGP_CreateComp(item:2, "Main", 720, 576, 106/100, 100@25, 2500/100) -> comp:1
//
// The function, its arguments in parameter order, and what the host yields. Handles are written as they are,
// texts in double quotes, times as value@scale, ratios as num/den, other records as their members in braces,
// vectors and colours in parentheses. A result other than 0 follows as "!4". `sin` and `cos` yield their
// value. An acquired suite is not repeated; a success without a suite is "-> null". Paths are relative to the
// scene's folder, "<folder>/plate.tga".
//
// A footage interpretation has 17 members, most of which the importer returns as the host gave them. The four
// that the importer always sets are written by name, followed by every other member that differs from what
// the host gave.
//
// Calls into current hosts are written as in a classic host: the suites with their classic versions, and the
// 49 functions of an input module as 46. Paths and names are the same text in both logs. What the bridge adds
// in a current host is left out: AEGP_SetLayerFlag that aims a camera or light, AEGP_SetItemName, and the
// acquisition and release around each. So one expected file serves both generations; where they still differ,
// a test says so.
//
// Expected files may contain empty lines and lines that begin with '#' after any blanks. Blanks at the
// beginning of a line only show what belongs together.

#include <string>
#include <string_view>
#include <vector>

/// Converts log lines (JSON) to the notation. "<folder>" stands for `folder`.
std::vector<std::string> calls_in_notation(const std::vector<std::string>& log_lines,
                                           std::string_view folder);

/// The same with the calls that the bridge adds.
std::vector<std::string> all_calls_in_notation(const std::vector<std::string>& log_lines,
                                               std::string_view folder);

/// Converts the log lines (JSON) of a current host to those of a classic host.
std::vector<std::string> in_classic_spelling(const std::vector<std::string>& log_lines);

/// The calls of an expected file. Throws if it cannot be read or contains none.
std::vector<std::string> read_expected_calls(const std::string& path);

/// The first difference of two lists, with the lines around it; empty if they are equal.
std::string first_difference(const std::vector<std::string>& expected, const std::vector<std::string>& made);
