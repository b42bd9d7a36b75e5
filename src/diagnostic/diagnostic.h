#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/code.h"

namespace limits {
struct Limit;
}

namespace diagnostic {

/// Where in a file: line and column in a text file, the offset alone in a binary one, none of them for the
/// file as a whole.
struct Place {
    std::string file;  ///< as the user named it; empty while only a reader knows it
    std::optional<std::int64_t> offset_bytes = {};  ///< from the start of the file
    std::optional<std::int64_t> line = {};          ///< from 1
    std::optional<std::int64_t> column = {};        ///< in bytes, from 1
};

/// Footage that is not where a scene says, for scripts; the reason and the effects say the same in words.
struct MissingFootage {
    std::string path;                ///< as it is written in the scene
    std::vector<std::string> tried;  ///< where it was looked for, in this order
    std::string placeholder;         ///< the name of what replaces it
};

/// Something that a person or a script is told about a file, a plug-in or a run. Texts hold any bytes of a
/// file; whoever writes them out makes them safe.
struct Diagnostic {
    Code code;
    Place at;
    std::string reason;                           ///< what was found and what is allowed; no full stop
    std::vector<std::string> within = {};         ///< blocks or chunks around the place, outermost first
    std::vector<std::string> effects = {};        ///< what will happen, and what to do; one sentence each
    std::int64_t count = 1;                       ///< how often it occurs; `at` is the first place
    std::optional<std::string> source_line = {};  ///< the line of `at`, without its line end
    const limits::Limit* limit = nullptr;         ///< the limit that the file exceeds, if that is the reason
    std::optional<MissingFootage> missing_footage = {};  ///< if this is about such footage

    [[nodiscard]] Severity severity() const { return code.severity(); }
};

/// Makes every Diagnostic, so one breakpoint finds the first. Adds the code's remedy, if it has one, as the
/// last effect.
[[nodiscard]] Diagnostic make(Code code, Place at, std::string reason, std::vector<std::string> within = {});

}  // namespace diagnostic
