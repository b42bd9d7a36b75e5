# The property list by which a host finds the bundle. script/pipl has the properties.

find_package(Python3 COMPONENTS Interpreter REQUIRED)
set(VXR_PIPL_SCRIPT "${PROJECT_SOURCE_DIR}/script/pipl")

# vxr_pipl(FORM FILE): generates FILE during the build. FORM is rc (Windows: a resource script) or rsrc (macOS: a resource
# file). The target that needs FILE lists it as a source.
function(vxr_pipl form file)
    add_custom_command(
        OUTPUT "${file}"
        COMMAND "${Python3_EXECUTABLE}" "${VXR_PIPL_SCRIPT}" ${form} "${file}"
        DEPENDS "${VXR_PIPL_SCRIPT}"
        VERBATIM)
endfunction()
