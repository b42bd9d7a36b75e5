#pragma once

#include <cstdint>

// Texture files are big-endian everywhere. These convert between file and host order, in place; the two
// directions are the same operation. On a big-endian host nothing changes.

/// `count` 32-bit values that follow one another at `values`, which need not be aligned. A count below 1
/// changes nothing.
void LMotor(void* values, std::int32_t count);

/// `count` 16-bit values that follow one another at `values`, which need not be aligned. A count below 1
/// changes nothing.
void WMotor(void* values, std::int32_t count);

/// One 64-bit value at `value`, which need not be aligned.
void DMotor(void* value);
