#include "diagnostic/diagnostic.h"

#include <utility>

namespace diagnostic {

const char* severity_name(Severity severity) {
    switch (severity) {
        case Severity::error:
            return "error";
        case Severity::loss:
            return "loss";
        case Severity::warning:
            return "warning";
        case Severity::note:
            break;
    }
    return "note";
}

Diagnostic make(Code code, Place at, std::string reason, std::vector<std::string> within) {
    Diagnostic made{code, std::move(at), std::move(reason), std::move(within)};
    if (*code.remedy() != '\0') {
        made.effects.emplace_back(code.remedy());
    }
    return made;
}

}  // namespace diagnostic
