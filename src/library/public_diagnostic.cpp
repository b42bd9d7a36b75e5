#include "library/public_diagnostic.h"

namespace vortanxr {
inline namespace v1 {

Version library_version() noexcept {
    return kHeaderVersion;
}

std::string text_of(const Diagnostic& diagnostic) {
    std::string text = diagnostic.file;
    for (const std::optional<std::int64_t>& number : {diagnostic.line, diagnostic.column}) {
        if (number) {
            text += ':' + std::to_string(*number);
        }
    }
    const auto severity = static_cast<diagnostic::Severity>(diagnostic.severity);
    return text + ": " + diagnostic::severity_name(severity) + ": " + diagnostic.reason + " [" +
           diagnostic.code + ']';
}

}  // namespace v1
}  // namespace vortanxr

namespace library {
namespace {

constexpr bool same(diagnostic::Severity severity, vortanxr::Severity other) {
    return static_cast<int>(severity) == static_cast<int>(other);
}
static_assert(same(diagnostic::Severity::error, vortanxr::Severity::error) &&
              same(diagnostic::Severity::loss, vortanxr::Severity::loss) &&
              same(diagnostic::Severity::warning, vortanxr::Severity::warning) &&
              same(diagnostic::Severity::note, vortanxr::Severity::note));

}  // namespace

vortanxr::Diagnostic public_diagnostic(const diagnostic::Diagnostic& diagnostic, const std::string& file) {
    return {diagnostic.code.name(),
            static_cast<vortanxr::Severity>(diagnostic.severity()),
            diagnostic.reason,
            file,
            diagnostic.at.line,
            diagnostic.at.column,
            diagnostic.at.offset_bytes,
            diagnostic.within,
            diagnostic.count};
}

vortanxr::Diagnostic cannot_read(const std::string& file, const std::string& reason) {
    vortanxr::Diagnostic problem;
    problem.code = "cannot-read";
    problem.reason = reason;
    problem.file = file;
    return problem;
}

std::string file_name_of(const std::string& path) {
    if (path == "/dev/stdin") {
        return "/dev/./stdin";
    }
    return path == "-" ? "./-" : path;
}

}  // namespace library
