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

# vxr_joined_tests(NAME SOURCES RESULT): sets RESULT to the SOURCES of the test program NAME, with its *_test.cpp files
# joined. Tests reuse names such as `Case`, so each file is put into a namespace of its own; its includes are read
# before that, at global scope, and `#pragma once` skips them inside. Support files are not joined: other sources link
# against their names.
function(vxr_joined_tests name sources result)
    if(VXR_JOINED)
        set(tests ${sources})
        list(FILTER tests INCLUDE REGEX "_test\\.cpp$")
        list(FILTER sources EXCLUDE REGEX "_test\\.cpp$")
        set(batch 0)
        while(tests)
            list(SUBLIST tests 0 ${VXR_JOINED_SOURCES} joined)
            list(REMOVE_ITEM tests ${joined})
            set(includes "")
            set(bodies "")
            foreach(source IN LISTS joined)
                cmake_path(ABSOLUTE_PATH source)
                set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
                file(STRINGS "${source}" lines REGEX "^ *# *(include|if|elif|else|endif)")
                list(JOIN lines "\n" lines)
                cmake_path(GET source STEM space)
                string(APPEND includes "${lines}\n")
                string(APPEND bodies "namespace joined_${space} {\n#include \"${source}\"\n}\n")
            endforeach()
            set(file "${CMAKE_CURRENT_BINARY_DIR}/${name}_joined_${batch}.cpp")
            file(CONFIGURE OUTPUT "${file}" CONTENT "${includes}${bodies}" @ONLY)
            list(APPEND sources "${file}")
            math(EXPR batch "${batch} + 1")
        endwhile()
    endif()
    set(${result} ${sources} PARENT_SCOPE)
endfunction()
