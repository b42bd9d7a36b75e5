#pragma once

// What src/system/program_path_macos.cpp uses of the Macintosh's loader, in our own words: for
// script/check-macintosh.

#include <cstdint>

extern "C" int _NSGetExecutablePath(char* buffer, std::uint32_t* size);
