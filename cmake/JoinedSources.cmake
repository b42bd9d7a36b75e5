# With VXR_JOINED, several sources are compiled as one: most of the compile time of each goes into library headers.

# Sources per joined file. With eight the tools took twice as long, because every joined file instantiates the
# libraries' templates again.
set(VXR_JOINED_SOURCES 24 CACHE STRING "Sources per joined file")

# vxr_joined(TARGET): joins the sources of a library by concatenation, so names in their unnamed namespaces must
# differ within one target.
function(vxr_joined target)
    if(VXR_JOINED)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${VXR_JOINED_SOURCES})
    endif()
endfunction()

# vxr_write_joined(FILE SOURCES): writes FILE, which includes SOURCES. Tests reuse names such as `Case`, so each source is
# put into a namespace of its own; its includes are read before that, at global scope, and `#pragma once` skips them
# inside.
function(vxr_write_joined file sources)
    set(includes "")
    set(bodies "")
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
        file(STRINGS "${source}" lines REGEX "^ *# *(include|if|elif|else|endif)")
        list(JOIN lines "\n" lines)
        cmake_path(GET source PARENT_PATH folder)
        cmake_path(GET folder FILENAME folder)
        cmake_path(GET source STEM stem)
        string(APPEND includes "${lines}\n")
        string(APPEND bodies "namespace joined_${folder}_${stem} {\n#include \"${source}\"\n}\n")
    endforeach()
    file(CONFIGURE OUTPUT "${file}" CONTENT "${includes}${bodies}" @ONLY)
endfunction()

# vxr_joined_tests(NAME SOURCES RESULT): sets RESULT to the SOURCES of the test program NAME, with its *_test.cpp files
# joined. Support files are not joined: other sources link against their names.
function(vxr_joined_tests name sources result)
    if(VXR_JOINED)
        set(tests ${sources})
        list(FILTER tests INCLUDE REGEX "_test\\.cpp$")
        list(FILTER sources EXCLUDE REGEX "_test\\.cpp$")
        set(batch 0)
        while(tests)
            list(SUBLIST tests 0 ${VXR_JOINED_SOURCES} joined)
            list(REMOVE_ITEM tests ${joined})
            set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}_joined_${batch}.cpp")
            vxr_write_joined("${file}" "${joined}")
            list(APPEND sources "${file}")
            math(EXPR batch "${batch} + 1")
        endwhile()
    endif()
    set(${result} ${sources} PARENT_SCOPE)
endfunction()

# vxr_joined_programs(NAME PROGRAMS): with VXR_JOINED_PROGRAMS, compiles the sources of PROGRAMS as one, the object library
# NAME, and no longer lists them alone in compile_commands.json. Nothing links what this makes: it is for clang-tidy.
function(vxr_joined_programs name programs)
    if(NOT VXR_JOINED_PROGRAMS)
        return()
    endif()
    set(all "")
    foreach(program IN LISTS programs)
        get_target_property(folder ${program} SOURCE_DIR)
        get_target_property(sources ${program} SOURCES)
        foreach(source IN LISTS sources)
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${folder}")
            list(APPEND all "${source}")
        endforeach()
        set_target_properties(${program} PROPERTIES EXPORT_COMPILE_COMMANDS OFF)
    endforeach()
    # Support files belong to several programs.
    list(REMOVE_DUPLICATES all)
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${all})
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
    target_link_libraries(${name} PRIVATE project_flags)
    foreach(program IN LISTS programs)
        # With what they take from libraries, which may be known in the folder of the program only.
        target_compile_definitions(${name} PRIVATE $<TARGET_PROPERTY:${program},COMPILE_DEFINITIONS>)
        target_include_directories(${name} PRIVATE $<TARGET_PROPERTY:${program},INCLUDE_DIRECTORIES>)
    endforeach()
endfunction()
