# The property list by which a host finds the bundle; script/pipl holds the properties.

find_package(Python3 COMPONENTS Interpreter REQUIRED)
set(VXR_PIPL_SCRIPT "${PROJECT_SOURCE_DIR}/script/pipl")

# vxr_pipl(FORM FILE): makes FILE while building. FORM is rc (Windows: a resource script) or rsrc (Macintosh: a
# resource file). FILE becomes a source of whatever target needs it.
function(vxr_pipl form file)
    add_custom_command(
        OUTPUT "${file}"
        COMMAND "${Python3_EXECUTABLE}" "${VXR_PIPL_SCRIPT}" ${form} "${file}"
        DEPENDS "${VXR_PIPL_SCRIPT}"
        VERBATIM)
endfunction()
