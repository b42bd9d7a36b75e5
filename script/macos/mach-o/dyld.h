#pragma once

// What src/system/program_place_macintosh.cpp uses of the Macintosh's loader, in our own words: for
// script/check-macintosh.

#include <cstdint>

extern "C" int _NSGetExecutablePath(char* buffer, std::uint32_t* size);
