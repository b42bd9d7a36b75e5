#pragma once

// What is wrong with a file, or worth knowing about it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <vortanxr/version.h>

namespace vortanxr {
inline namespace v1 {

/// How much something matters.
enum class Severity : std::uint8_t {
    error,    ///< the file is refused or cannot be read
    loss,     ///< the picture or the motion differs from what the file says
    warning,  ///< whether the result is the one wanted cannot be known here
    note,     ///< nothing is wrong
};

/// Something that is worth knowing about a file. Texts hold any bytes of the file.
struct Diagnostic {
    std::string code;  ///< stays the same in all versions: "expected-number"
    Severity severity = Severity::error;
    std::string reason;                        ///< what was found and what is allowed; no full stop
    std::string file;                          ///< as it was named
    std::optional<std::int64_t> line;          ///< in text files, from 1
    std::optional<std::int64_t> column;        ///< in bytes, from 1
    std::optional<std::int64_t> offset_bytes;  ///< from the start of the file
    std::vector<std::string> within;           ///< blocks or chunks around the place, outermost first
    std::int64_t count = 1;                    ///< how often it occurs; the place is the first
};

/// "shot.aec:12:8: error: expected a number after FPS, found "abc" [expected-number]". Throws std::bad_alloc.
[[nodiscard]] VORTANXR_API std::string text_of(const Diagnostic& diagnostic);

/// The error that reading returns in a program whose headers are newer than the library that it runs with,
/// and nothing otherwise. Its code is "library-too-old", its file `path`. Throws std::bad_alloc.
[[nodiscard]] inline std::optional<Diagnostic> library_problem(const std::string& path) {
    const Version has = library_version();
    constexpr Version kNeeds = kHeaderVersion;
    const bool older = has.major_number != kNeeds.major_number ? has.major_number < kNeeds.major_number
                                                               : has.minor_number < kNeeds.minor_number;
    if (!older) {
        return std::nullopt;
    }
    Diagnostic problem;
    problem.code = "library-too-old";
    problem.reason = "this program was built for version " VORTANXR_VERSION
                     " of the library vortanxr and runs with version " +
                     std::to_string(has.major_number) + '.' + std::to_string(has.minor_number) + '.' +
                     std::to_string(has.patch_number) + "; install the library again";
    problem.file = path;
    return problem;
}

}  // namespace v1
}  // namespace vortanxr
