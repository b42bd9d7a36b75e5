#pragma once

#include <string>

/// Lists a sound texture file with one line per item: offset, bytes in hexadecimal, meaning. The document of
/// the format shows this listing of the smallest example. Parses the bytes independently of the code under
/// test; throws std::out_of_range if the file ends early.
std::string annotated_dump(const std::string& bytes);
