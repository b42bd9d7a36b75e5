#pragma once

#include <vortanxr/diagnostic.h>

#include <exception>
#include <new>
#include <string>

#include "diagnostic/diagnostic.h"

namespace library {

/// A diagnostic as the public headers have it. `file` is the name that the caller gave.
[[nodiscard]] vortanxr::Diagnostic public_diagnostic(const diagnostic::Diagnostic& diagnostic,
                                                     const std::string& file);

/// "cannot-read" for the file as a whole.
[[nodiscard]] vortanxr::Diagnostic cannot_read(const std::string& file, const std::string& reason);

/// The name that the readers are given for `path`: "-" and the like are files to a program, not its standard
/// input.
[[nodiscard]] std::string file_name_of(const std::string& path);

/// What `read` returns. What it throws becomes the result's error, except for std::bad_alloc.
template <class Reading, class Read>
[[nodiscard]] Reading guarded(const std::string& path, const Read& read) {
    try {
        return read();
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& problem) {
        Reading reading;
        reading.error = cannot_read(path, problem.what());
        return reading;
    }
}

}  // namespace library
