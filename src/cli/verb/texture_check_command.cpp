#include <memory>
#include <optional>
#include <string>

#include "cli/report/tool_code.h"
#include "cli/texture/texture_diagnostics.h"
#include "cli/verb/check_files.h"
#include "cli/verbs.h"
#include "texture/value/texture_complaint.h"

namespace cli {
namespace {

FileCheck check_texture_file(const std::string& file) {
    const TextureReading reading = read_texture(file);
    FileCheck check{texture_exit_code(reading), texture_diagnostics(reading, file)};
    const auto violation = reading.texture ? texture_complaint(*reading.texture) : std::nullopt;
    if (const auto error = internal_error(file, violation)) {
        check.diagnostics.insert(check.diagnostics.begin(), *error);
        check.code = ExitCode::refused;
    }
    return check;
}

constexpr FileKind kTextureFiles{"texture files", check_texture_file, texture_diagnostic_text};

}  // namespace

Verb texture_check_verb() {
    return {
        "texture check",
        "say what is wrong with texture files, and what was repaired or passed over",
        {"Reads every file as a whole, as the plug-in does. An error names the byte where the wrong item "
         "begins, the chunks around it, what was found and what was allowed. Warnings are about files that "
         "are read, but not wholly as they are: rows that cannot be unpacked, chunks that nothing here "
         "knows.",
         "Every file gets its line of the result; with several files the most serious outcome is the exit "
         "code, a file that cannot be read being more serious than one that is refused."},
        {{"vxr texture check bark.txl", "Shows where bark.txl is broken, if it is."},
         {"vxr texture check --strict --quiet maps/*.txl",
          "For a script: one line a file, exit code 1 at the first warning or mistake in any of them."}},
        []() -> std::unique_ptr<Command> { return make_check_command(kTextureFiles); }};
}

}  // namespace cli
