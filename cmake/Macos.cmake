# Toolchain: macOS 11 on arm64 or x86_64, built on Linux. script/macos-c++ is the compiler and says what it consists of.
# script/macos uses it.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 20)
# Set by the preset.
set(CMAKE_SYSTEM_PROCESSOR "${VXR_MACOS_PROCESSOR}")
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VXR_MACOS_PROCESSOR)
set(CMAKE_CXX_COMPILER "${CMAKE_CURRENT_LIST_DIR}/../script/macos-c++" "${VXR_MACOS_PROCESSOR}")

# As _GLIBCXX_ASSERTIONS elsewhere (cmake/ProjectFlags.cmake), by the name that this version of the library has for it.
set(CMAKE_CXX_FLAGS_RELEASE_INIT -D_LIBCPP_ENABLE_ASSERTIONS=1)

# The compiler brings the system's interface and is given the oldest system by name.
set(CMAKE_OSX_SYSROOT "" CACHE STRING "")
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "")

# LLVM's tools, which know the files of macOS.
set(llvm /usr/lib/llvm-16/bin)
set(CMAKE_AR "${llvm}/llvm-ar" CACHE FILEPATH "")
set(CMAKE_RANLIB "${llvm}/llvm-ranlib" CACHE FILEPATH "")
set(CMAKE_NM "${llvm}/llvm-nm" CACHE FILEPATH "")
set(CMAKE_STRIP "${llvm}/llvm-strip" CACHE FILEPATH "")
set(CMAKE_OTOOL "${llvm}/llvm-otool" CACHE FILEPATH "")
set(CMAKE_INSTALL_NAME_TOOL "${llvm}/llvm-install-name-tool" CACHE FILEPATH "")

# Programs come from the build machine, everything else from the target.
set(CMAKE_FIND_ROOT_PATH "${CMAKE_CURRENT_LIST_DIR}/macos")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
