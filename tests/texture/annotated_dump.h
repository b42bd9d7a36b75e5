#pragma once

#include <string>

/// A sound texture file, one line an item: offset, bytes in hexadecimal, meaning. The document of the format
/// shows what this makes of the smallest example. Reads the bytes by itself, without the code under test;
/// throws std::out_of_range where the file ends too early.
std::string annotated_dump(const std::string& bytes);
