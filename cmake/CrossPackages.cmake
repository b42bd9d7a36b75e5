# Packages of this system that a build for another one, or with another C++ library, can use: header libraries, which suit every system, and GoogleTest,
# whose package contains the source. /usr/include itself stays hidden, because it has this system's headers.

# vxr_found(NAME): makes find_package(NAME) succeed with the targets that exist already.
function(vxr_found name)
    string(TOLOWER "${name}" file)
    file(WRITE "${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${file}-config.cmake" "set(${name}_FOUND TRUE)\n")
    file(WRITE "${CMAKE_FIND_PACKAGE_REDIRECTS_DIR}/${file}-config-version.cmake"
        "set(PACKAGE_VERSION_COMPATIBLE TRUE)\n")
endfunction()

# vxr_header_package(NAME TARGET FOLDER): makes TARGET of the headers in /usr/include/FOLDER.
function(vxr_header_package name target folder)
    if(NOT EXISTS "/usr/include/${folder}")
        message(FATAL_ERROR "${name}: there is no /usr/include/${folder}")
    endif()
    set(headers "${CMAKE_BINARY_DIR}/headers/${name}")
    file(MAKE_DIRECTORY "${headers}")
    file(CREATE_LINK "/usr/include/${folder}" "${headers}/${folder}" SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} INTERFACE "${headers}")
    vxr_found(${name})
endfunction()

if(VXR_TOOLS)
    vxr_header_package(CLI11 CLI11::CLI11 CLI)
    vxr_header_package(nlohmann_json nlohmann_json::nlohmann_json nlohmann)
    vxr_header_package(tomlplusplus tomlplusplus::tomlplusplus toml++)
    # The package of pugixml has a library, which suits this system only. OpenImageIO's headers include a copy of it that
    # is compiled where it is included.
    vxr_header_package(pugixml pugixml::pugixml OpenImageIO)
    target_include_directories(pugixml::pugixml INTERFACE /usr/include/OpenImageIO/detail/pugixml)
endif()
if(EMSCRIPTEN)
    # What its C++ library lacks, by two libraries of headers.
    vxr_header_package(fmt fmt::fmt fmt)
    vxr_header_package(fast_float fast_float::fast_float fast_float)
    add_library(vxr_charconv STATIC cmake/emscripten/charconv.cpp)
    target_link_libraries(vxr_charconv PRIVATE fmt::fmt fast_float::fast_float)
    target_compile_definitions(vxr_charconv PRIVATE FMT_HEADER_ONLY)
    target_compile_features(vxr_charconv PRIVATE cxx_std_20)
    target_include_directories(vxr_charconv SYSTEM PRIVATE "${PROJECT_SOURCE_DIR}/cmake/emscripten/include")
    target_include_directories(project_flags SYSTEM INTERFACE "${PROJECT_SOURCE_DIR}/cmake/emscripten/include")
    target_link_libraries(project_flags INTERFACE vxr_charconv)
endif()
if(VXR_TESTS)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
    vxr_found(GTest)
endif()
