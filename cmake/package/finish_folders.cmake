# CPack runs this between installing and packing: what a package for Debian has beside what is installed, and the same time
# on every file, so that two runs give the same bytes.

if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
    message(FATAL_ERROR "SOURCE_DATE_EPOCH is not set; script/package sets it")
endif()
execute_process(COMMAND date -u -R -d "@$ENV{SOURCE_DATE_EPOCH}" OUTPUT_VARIABLE date OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)

function(compress file)
    execute_process(COMMAND gzip -9 --no-name --force "${file}" COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(finish_debian_folder component)
    string(TOUPPER "${component}" upper)
    set(name "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
    set(folder "${CPACK_TEMPORARY_DIRECTORY}/${component}")
    if(NOT IS_DIRECTORY "${folder}/usr")
        message(FATAL_ERROR "${folder} has nothing for the package ${name}")
    endif()
    set(documents "${folder}/usr/share/doc/${name}")
    set(further "")
    if(component STREQUAL "python")
        set(further pybind11-dev)
    endif()
    file(MAKE_DIRECTORY "${documents}")
    execute_process(COMMAND "${CPACK_VXR_SOURCE_FOLDER}/cmake/package/licences" ${further}
        OUTPUT_FILE "${documents}/copyright" COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE "${documents}/LICENSE" "${documents}/CHANGELOG.md")
    file(COPY_FILE "${CPACK_VXR_SOURCE_FOLDER}/CHANGELOG.md" "${documents}/changelog")
    compress("${documents}/changelog")
    file(WRITE "${documents}/changelog.Debian"
        "${CPACK_DEBIAN_PACKAGE_SOURCE} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium\n\n"
        "  * Version ${CPACK_PACKAGE_VERSION}; changelog.gz says what is in it.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    compress("${documents}/changelog.Debian")
    file(GLOB pages "${folder}/usr/share/man/man*/*.[0-9]")
    foreach(page IN LISTS pages)
        compress("${page}")
    endforeach()
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    finish_debian_folder("${component}")
endforeach()
execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch --no-dereference --date "@$ENV{SOURCE_DATE_EPOCH}" {} +
    COMMAND_ERROR_IS_FATAL ANY)
