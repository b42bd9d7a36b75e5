#pragma once

#include <cstddef>
#include <cstdint>

// Strings of the model: terminated byte strings from array-new, deleted by the record that holds them. Short
// memory is an answer here and never an exception: the plug-in runs inside somebody else's process.

/// A new array of `bytes` bytes with undefined contents; null when memory is short. The size is counted in 64
/// bits so that no sum on the way here can have wrapped.
[[nodiscard]] char* new_text(std::uint64_t bytes);

/// Replaces `text` by a new array of `bytes` bytes that begins with its first `used_bytes` bytes. Returns
/// false when memory is short, `text` being unchanged.
[[nodiscard]] bool grow_text(char*& text, std::size_t used_bytes, std::uint64_t bytes);

/// A copy of `text` in a new array of its length and two bytes; null when memory is short.
[[nodiscard]] char* copy_text(const char* text);
