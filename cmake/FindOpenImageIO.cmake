# Defines the target OpenImageIO::OpenImageIO. The configuration file of the Debian package requires files of packages
# that it does not depend on (OpenCV's headers, Imath's Python library), and fails without them.

if(TARGET OpenImageIO::OpenImageIO)
    set(OpenImageIO_FOUND TRUE)
    return()
endif()

find_path(OpenImageIO_INCLUDE_DIR OpenImageIO/imageio.h)
find_library(OpenImageIO_LIBRARY OpenImageIO)
find_library(OpenImageIO_UTIL_LIBRARY OpenImageIO_Util)
if(OpenImageIO_INCLUDE_DIR)
    file(STRINGS "${OpenImageIO_INCLUDE_DIR}/OpenImageIO/oiioversion.h" version_lines
        REGEX "#define OIIO_VERSION_(MAJOR|MINOR|PATCH) +[0-9]+")
    foreach(part MAJOR MINOR PATCH)
        string(REGEX REPLACE ".*OIIO_VERSION_${part} +([0-9]+).*" "\\1" version_${part} "${version_lines}")
    endforeach()
    set(OpenImageIO_VERSION "${version_MAJOR}.${version_MINOR}.${version_PATCH}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenImageIO
    REQUIRED_VARS OpenImageIO_LIBRARY OpenImageIO_UTIL_LIBRARY OpenImageIO_INCLUDE_DIR
    VERSION_VAR OpenImageIO_VERSION)

if(OpenImageIO_FOUND)
    add_library(OpenImageIO::OpenImageIO UNKNOWN IMPORTED GLOBAL)
    set_target_properties(OpenImageIO::OpenImageIO PROPERTIES
        IMPORTED_LOCATION "${OpenImageIO_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${OpenImageIO_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${OpenImageIO_UTIL_LIBRARY}")
endif()
