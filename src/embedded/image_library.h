#pragma once

// The image library's functions, from a module beside the program. It is loaded when the first of them is
// asked for, and stays: most of what the tools do needs no image, and binding the library takes longer than
// that.

#include <string>

#include "system/dynamic_library.h"

namespace embedded {

/// The function that the module exports as `name`. Null when there is no module, it cannot be loaded or does
/// not have the function; `problem` then says so, and where it was looked for. Safe on any thread.
os::DynamicLibrary::Function find_in_image_library(const char* name, std::string& problem);

/// The same with the function's own type.
template <class Type>
Type* image_library_function(const char* name, std::string& problem) {
    return reinterpret_cast<Type*>(find_in_image_library(name, problem));
}

}  // namespace embedded
