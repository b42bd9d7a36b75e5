# Writes the header that says which commit a build is of, and how it is built. Runs when the build is configured and before
# everything that includes the header; the file is written only when it changes.
#   cmake -D HEADER=FILE -D PROJECT=FOLDER -D BUILD=TEXT -P BuildIdentity.cmake
# A system without a shell of POSIX builds from what VXR_COMMIT says.

set(commit "$ENV{VXR_COMMIT}")
if(NOT commit)
    execute_process(COMMAND "${PROJECT}/script/commit" OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
if(NOT commit)
    set(commit unknown)
endif()
file(CONFIGURE OUTPUT "${HEADER}" @ONLY CONTENT [[
#pragma once

// Written by cmake/BuildIdentity.cmake.
inline constexpr const char* kCommit = "@commit@";
inline constexpr const char* kBuild = "@BUILD@";
]])
