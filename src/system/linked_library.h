#pragma once

#include <map>
#include <string>

#include "system/dynamic_library.h"

namespace os {

/// For programs that cannot load libraries and contain one instead: DynamicLibrary::open() then gives these
/// functions, by their exported names, for every path, and without this call nothing.
void set_linked_library(std::map<std::string, DynamicLibrary::Function> functions);

}  // namespace os
