# Toolchain: Debian's Emscripten, whose programs run in browsers. script/viewer uses it. Its C++ library is of version 13;
# cmake/emscripten has what that lacks.
include(/usr/share/emscripten/cmake/Modules/Platform/Emscripten.cmake)

# Exceptions of the machine itself, which browsers have had since 2021: those in JavaScript make every call in their reach
# slower, and the program a third larger.
# Vectors, for the loops over rows, since 2023 everywhere.
set(CMAKE_CXX_FLAGS_INIT "-fwasm-exceptions -msimd128")

# Programs come from the build machine, everything else from the target.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
