# The interface target from which every target of this project takes its language level and flags, and the functions with
# which the folders declare what they build.

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# The suffix of source files that exist once for each platform.
if(WIN32)
    set(VXR_PLATFORM windows)
else()
    set(VXR_PLATFORM posix)
endif()

add_library(project_flags INTERFACE)
target_compile_features(project_flags INTERFACE cxx_std_20)
target_include_directories(project_flags INTERFACE "${PROJECT_SOURCE_DIR}/src")
# -ffp-contract=off: the conversions of cameras and nulls are evaluated as written, operation by operation; a fused
# multiply-add would change the last bit of what reaches the host.
target_compile_options(project_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow $<$<BOOL:${VXR_WERROR}>:-Werror> -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # When it optimises, this compiler reports an overlap in std::string's own copying (GCC bug 105651, fixed in 13).
    target_compile_options(project_flags INTERFACE -Wno-restrict)
endif()

if(WIN32)
    # _FILE_OFFSET_BITS: positions in files have 64 bits, as they have by default elsewhere.
    target_compile_definitions(project_flags INTERFACE
        _FILE_OFFSET_BITS=64
        NOMINMAX
        UNICODE
        WIN32_LEAN_AND_MEAN
        _WIN32_WINNT=0x0A00)
    # Users do not debug, so released files carry no symbols. They carry no time either, so that two builds are the same.
    target_link_options(project_flags INTERFACE
        $<$<CONFIG:Release>:LINKER:--strip-all> $<$<CONFIG:Release>:LINKER:--no-insert-timestamp>)
endif()

# Joined sources arrive in the bundle whole. Each function gets a section of its own, so that the linker leaves out those
# that only the tools use (vxr_without_unused).
target_compile_options(project_flags INTERFACE $<$<CONFIG:Release>:-ffunction-sections> $<$<CONFIG:Release>:-fdata-sections>)

# vxr_without_unused(TARGET): links TARGET without the functions that nothing in it reaches.
function(vxr_without_unused target)
    if(APPLE)
        target_link_options(${target} PRIVATE $<$<CONFIG:Release>:LINKER:-dead_strip>)
    else()
        target_link_options(${target} PRIVATE $<$<CONFIG:Release>:LINKER:--gc-sections>)
    endif()
endfunction()

# A sanitizer's runtime is in the program that loads a library, not in the library.
set(VXR_INSTRUMENTED OFF)
if(VXR_SANITIZE OR VXR_THREADS OR VXR_FUZZ)
    set(VXR_INSTRUMENTED ON)
endif()

# The bundle runs inside somebody's unsaved project, so it stops at the first sign of damaged memory: the C++ library's
# containers are checked, a guard word stands before the return address, and the C library's copying checks lengths. Not
# together with sanitizers, which find more without it, nor in debug builds, where fortifying has no effect. Windows gets
# only the first: the others would make the bundle need two more libraries. In browsers return addresses are out of reach.
if(NOT VXR_INSTRUMENTED)
    target_compile_definitions(project_flags INTERFACE $<$<CONFIG:Release>:_GLIBCXX_ASSERTIONS>)
    if(NOT WIN32 AND NOT EMSCRIPTEN)
        target_compile_options(project_flags INTERFACE $<$<CONFIG:Release>:-fstack-protector-strong>)
        target_compile_definitions(project_flags INTERFACE $<$<CONFIG:Release>:_FORTIFY_SOURCE=3>)
    endif()
endif()

# Not -fsanitize=function, which only clang has: it compares addresses of type descriptions, and the bundle and the host
# that calls it have their own.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    set(no_function -fno-sanitize=function)
endif()
if(VXR_SANITIZE)
    target_compile_options(project_flags INTERFACE
        -fsanitize=address,undefined ${no_function} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_flags INTERFACE -fsanitize=address,undefined ${no_function})
endif()
if(VXR_FUZZ)
    target_compile_options(project_flags INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined ${no_function} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_flags INTERFACE -fsanitize=address,undefined ${no_function})
endif()
if(VXR_THREADS)
    target_compile_options(project_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
    target_link_options(project_flags INTERFACE -fsanitize=thread)
endif()
if(VXR_COVERAGE)
    target_compile_options(project_flags INTERFACE --coverage -fprofile-update=atomic -O0)
    target_link_options(project_flags INTERFACE --coverage)
endif()
# Not for joined sources: they change as a whole, so a cache would hardly ever hit, and filling it takes a sixth of the
# time of a build.
find_program(VXR_CCACHE ccache)
if(VXR_CCACHE AND NOT VXR_JOINED)
    set(CMAKE_CXX_COMPILER_LAUNCHER "${VXR_CCACHE}")
endif()

# vxr_quick_to_build(TARGET): for what only the tools use. Optimising it further doubles its compile time, and no user
# notices the difference.
function(vxr_quick_to_build target)
    target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-O1>)
endfunction()

# vxr_library(NAME [TOOL] SOURCES ... [LINKS ...]): the static library of one folder. TOOL: no part of the bundle.
function(vxr_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "TOOL" "" "SOURCES;LINKS")
    add_library(${name} STATIC ${arg_SOURCES})
    target_link_libraries(${name} PUBLIC project_flags ${arg_LINKS})
    vxr_joined(${name})
    if(arg_TOOL)
        vxr_quick_to_build(${name})
    else()
        target_compile_options(${name} PRIVATE ${VXR_BUNDLE_FLAGS})
    endif()
endfunction()

# vxr_checks_leaks(TARGET): sets up the leak checker in a program, if it is built with one.
function(vxr_checks_leaks target)
    if(VXR_SANITIZE)
        target_sources(${target} PRIVATE "${PROJECT_SOURCE_DIR}/cmake/leak_check.cpp")
        set_source_files_properties("${PROJECT_SOURCE_DIR}/cmake/leak_check.cpp" PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
    endif()
endfunction()

# vxr_test(NAME SOURCES ... [LINKS ...] [RUNS ...] [COST ...]): one GoogleTest program, run by ctest under its own name, or
# with RUNS several times as NAME.RUN; the caller sets what differs. COST is the approximate running time in seconds
# under the sanitizers, given for long tests: they start first, so that none runs alone at the end.
function(vxr_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "COST" "SOURCES;LINKS;RUNS")
    vxr_joined_tests(${name} "${arg_SOURCES}" sources)
    add_executable(${name} ${sources})
    set_property(GLOBAL APPEND PROPERTY vxr_test_programs ${name})
    vxr_checks_leaks(${name})
    target_link_libraries(${name} PRIVATE project_flags ${arg_LINKS} GTest::gmock GTest::gtest_main)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
    target_compile_definitions(${name} PRIVATE
        VXR_EXAMPLES_DIR="${PROJECT_SOURCE_DIR}/examples"
        VXR_TEST_DATA_DIR="${PROJECT_SOURCE_DIR}/tests/data")
    # A compiler cache does not know precompiled headers unless it is configured for them.
    if(NOT CMAKE_CXX_COMPILER_LAUNCHER)
        target_precompile_headers(${name} REUSE_FROM vxr_test_headers)
    endif()
    if(arg_RUNS)
        list(TRANSFORM arg_RUNS PREPEND "${name}." OUTPUT_VARIABLE tests)
    else()
        set(tests ${name})
    endif()
    set(cost "")
    if(arg_COST)
        set(cost COST ${arg_COST})
    endif()
    foreach(test IN LISTS tests)
        add_test(NAME ${test} COMMAND ${name})
        set_tests_properties(${test} PROPERTIES TIMEOUT 1800 ${cost})
    endforeach()
endfunction()
