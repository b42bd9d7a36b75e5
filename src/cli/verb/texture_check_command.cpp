#include <memory>
#include <optional>
#include <string>

#include "cli/report/tool_code.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verb/check_files.h"
#include "cli/verbs.h"
#include "texture/value/alpha_use.h"
#include "texture/value/texture_invariants.h"
#include "texture/value/texture_report.h"

namespace cli {
namespace {

FileCheck check_texture_file(const std::string& file, FootageSurvey& /*survey*/) {
    const TextureReading reading = read_texture(file);
    FileCheck check{texture_exit_code(reading), texture_diagnostics(reading, file)};
    const auto violation = reading.texture ? validate_texture(*reading.texture) : std::nullopt;
    if (const auto error = internal_error(file, violation)) {
        check.diagnostics.insert(check.diagnostics.begin(), *error);
        check.code = ExitCode::refused;
    } else if (const auto note = alpha_note(reading, file)) {
        check.diagnostics.push_back(*note);
    }
    return check;
}

std::vector<diagnostic::CodeInfo> texture_codes() {
    std::vector<diagnostic::CodeInfo> codes;
    add_codes(codes, texture_faults());
    add_codes(codes, texture_notices());
    add_codes(codes, alpha_uses());
    codes.push_back(code_info(ToolCode::internal_error));
    return codes;
}

constexpr FileKind kTextureFiles{"texture files",         ".txl",       "texture-check", check_texture_file,
                                 texture_diagnostic_text, texture_codes};

}  // namespace

Verb texture_check_verb() {
    return {
        "texture check",
        "report what is wrong with texture files, and what was repaired or skipped",
        {"Reads each file completely, as the plug-in does. An error names the byte at which the wrong "
         "item begins, the chunks around it, what was found and what is allowed. Losses and warnings are "
         "about files that can be read, but not exactly as they are stored: rows that cannot be unpacked, "
         "missing rows, unknown chunks.",
         "After Effects is told that the colour of every texture with alpha is premultiplied (multiplied "
         "by alpha). A note says whether the pixels agree. If they are straight, the picture has fringes "
         "until you choose Interpret Footage, Straight in After Effects.",
         "Folders, lists, severities, the summary and the exit codes are as in `vxr check`; the table of "
         "project files is [texture-check]."},
        {{"vxr texture check bark.txl", "Shows where bark.txl is damaged, if it is."},
         {"vxr texture check --strict --quiet maps/*.txl",
          "For a script: one line per file, and exit code 1 if any of them has a mistake, a loss or a "
          "warning."}},
        []() -> std::unique_ptr<Command> { return make_check_command(kTextureFiles); }};
}

}  // namespace cli
