# What CPack makes of an installation: five packages for Debian here, and archives for other systems by script/package.
# What is installed without naming a component belongs to the program's package.

set(VXR_PACKAGE_CONTACT "the VORTANXR_AE maintainers <maintainers@vortanxr.example.org>" CACHE STRING
    "Whom a package names as its maintainer; whoever gives packages to others puts an address of their own here")

include(GNUInstallDirs)
# Where links of the README lead to the documents, and those of the documents to the schemas.
set(documents "${CMAKE_INSTALL_DATADIR}/doc/vortanxr")
install(FILES README.md CHANGELOG.md LICENSE DESTINATION "${documents}")
install(DIRECTORY docs DESTINATION "${documents}" FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.json")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vortanxr)
set(CPACK_PACKAGE_VENDOR "the VORTANXR_AE maintainers")
set(CPACK_PACKAGE_CONTACT "${VXR_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
# CPack would put any other summary of the project before the one of each package; this one it takes for none.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${CMAKE_PROJECT_NAME} built using CMake")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/finish_folders.cmake")
set(CPACK_VXR_SOURCE_FOLDER "${PROJECT_SOURCE_DIR}")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENTS_ALL vortanxr library development python imageio)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE vortanxr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(same_version "= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

# vxr_debian_package(COMPONENT NAME SECTION DEPENDS SUMMARY TEXT): the package of a component. Paragraphs of the text are
# separated by a line with a full stop.
macro(vxr_debian_package component name section depends summary text)
    string(TOUPPER "${component}" upper)
    set(CPACK_DEBIAN_${upper}_PACKAGE_NAME "${name}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION "${section}")
    set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${depends}")
    set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}")
endmacro()

vxr_debian_package(vortanxr vortanxr graphics ""
    "VORTAN XR scenes and Texalon textures on the command line"
    "The program vxr imports, checks, relinks, collects, exports, proves and draws
composition files of VORTAN XR (.aec), and converts layered textures of
Texalon (.txl). It runs the plug-in VORTANXR_AE, which the package contains, in
a host of its own, so what it shows is what After Effects builds.")
vxr_debian_package(library libvortanxr${PROJECT_VERSION_MAJOR} libs ""
    "library that reads VORTAN XR scenes and Texalon textures"
    "Reads composition files of VORTAN XR (.aec) and layered textures of Texalon
(.txl) into plain values, with the code of the plug-in VORTANXR_AE.")
# Which package programs need that are linked with the library, and that the loader learns of it.
set(control "${CMAKE_CURRENT_BINARY_DIR}/package")
file(CONFIGURE OUTPUT "${control}/shlibs" CONTENT
    "libvortanxr ${PROJECT_VERSION_MAJOR} libvortanxr${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})\n" @ONLY)
file(CONFIGURE OUTPUT "${control}/triggers" CONTENT "activate-noawait ldconfig\n" @ONLY)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${control}/shlibs;${control}/triggers")
vxr_debian_package(development libvortanxr-dev libdevel
    "libvortanxr${PROJECT_VERSION_MAJOR} (${same_version})"
    "headers and CMake package of libvortanxr"
    "Reads composition files of VORTAN XR (.aec) and layered textures of Texalon
(.txl) into plain values. Programs find the headers and the library with
find_package(vortanxr).")
vxr_debian_package(imageio openimageio-plugin-txl graphics ""
    "Texalon textures for programs that use OpenImageIO"
    "Reads and writes layered textures of Texalon (.txl) in every program that opens
images with OpenImageIO, once OIIO_LIBRARY_PATH names its folder,
/${CMAKE_INSTALL_FULL_LIBDIR}/vortanxr.")
string(REPLACE "//" "/" CPACK_DEBIAN_IMAGEIO_DESCRIPTION "${CPACK_DEBIAN_IMAGEIO_DESCRIPTION}")

# A module suits the interpreter that it was built for, from this version up to the next one.
if(TARGET vxr_python)
    string(REGEX MATCH "^([0-9]+)\\.([0-9]+)$" python "${VXR_PYTHON_VERSION}")
    math(EXPR next "${CMAKE_MATCH_2} + 1")
    vxr_debian_package(python python3-vortanxr python
        "vortanxr (${same_version}), python3 (>= ${python}), python3 (<< ${CMAKE_MATCH_1}.${next}), python3-numpy"
        "VORTAN XR scenes and Texalon textures in Python"
        "The module vortanxr reads, checks, imports, relinks and exports composition
files of VORTAN XR (.aec), with keys as arrays of NumPy, and reads and writes
layered textures of Texalon (.txl).")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
        "${PROJECT_SOURCE_DIR}/cmake/package/postinst;${PROJECT_SOURCE_DIR}/cmake/package/prerm")
else()
    list(REMOVE_ITEM CPACK_COMPONENTS_ALL python)
endif()

include(CPack)
