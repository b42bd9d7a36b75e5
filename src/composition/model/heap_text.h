#pragma once

#include <cstddef>
#include <cstdint>

// Strings of the model: NUL-terminated byte strings from array-new, deleted by the record that holds them.
// Running out of memory is a result here, never an exception: the plug-in runs inside the host's process.

/// A new array of `bytes` bytes with undefined contents; null when out of memory. Callers compute the size in
/// 64 bits, so it cannot have wrapped.
[[nodiscard]] char* new_text(std::uint64_t bytes);

/// Replaces `text` with a new array of `bytes` bytes that begins with its first `used_bytes` bytes. Returns
/// false when out of memory, and then leaves `text` unchanged.
[[nodiscard]] bool grow_text(char*& text, std::size_t used_bytes, std::uint64_t bytes);

/// A copy of `text` in a new array of its length plus two bytes; null when out of memory.
[[nodiscard]] char* copy_text(const char* text);
