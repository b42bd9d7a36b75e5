#pragma once

#include <optional>

#include "host/host_interface.h"

// StrToReal and StrToVal read numbers as the C library's scan does in the "C" locale, whatever locale the
// host has set. Both return the scan's result: 1 when converted, 0 when the text does not begin with a
// number, -1 when it is blank. The target is written only when the result is 1. Anything after the number is
// ignored.

/// "%f": decimal or hexadecimal, infinity or NaN; rounded once to single precision, beyond its range to
/// infinity or zero. An exponent letter without digits is not part of the number: "7E" is 7. A "0x" without a
/// hexadecimal digit behind it matches nothing, and the target keeps its value.
int StrToReal(const char* text, float& value);

/// "%d": the longest decimal prefix, so "29.97" is 29 and "0x1F" is 0. Out of range gives the nearest 32-bit
/// value.
int StrToVal(const char* text, A_long& value);

/// The value of `text` if all of it is one decimal or hexadecimal number, optionally with a minus sign,
/// within the range of a double; otherwise nothing.
[[nodiscard]] std::optional<double> whole_number(const char* text);
