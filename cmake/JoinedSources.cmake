# With VXR_JOINED several sources are compiled at a time: most of the time of each goes into the headers of libraries.

# Twenty-four: with eight the tools took twice as long, as each set has the libraries' templates anew.
set(VXR_JOINED_SOURCES 24)

# vxr_joined(TARGET): for targets whose sources can simply be put behind each other: what stands in their unnamed
# namespaces has different names.
function(vxr_joined target)
    if(VXR_JOINED)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${VXR_JOINED_SOURCES})
    endif()
endfunction()

# vxr_joined_tests(NAME SOURCES RESULT): sets RESULT to the SOURCES of the program NAME, joined where that can be. In
# tests the same names return, `Case` above all, so each gets a namespace of its own. What it includes is read before,
# outside; inside, its include guards keep it from being read again. Sources that others link with keep their names.
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
