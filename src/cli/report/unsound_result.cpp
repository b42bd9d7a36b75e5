#include "cli/report/unsound_result.h"

#include "cli/report/codes.h"

namespace cli {

std::optional<Diagnostic> unsound_result(const std::string& file,
                                         const std::optional<std::string>& complaint) {
    if (!complaint) {
        return std::nullopt;
    }
    Diagnostic error = fail(code_name(Code::unsound_result), Place{file}, *complaint);
    error.effects.emplace_back("this is a defect of this program; please report it together with the file");
    return error;
}

}  // namespace cli
