#include <memory>
#include <string>
#include <vector>

#include "cli/report/tool_code.h"
#include "cli/scene/scene_check.h"
#include "cli/scene/scene_reading.h"
#include "cli/verb/check_files.h"
#include "cli/verbs.h"
#include "composition/read/read_error.h"

namespace cli {
namespace {

FileCheck check_composition(const std::string& file, FootageFinder* finder) {
    const SceneReading reading = read_scene(file);
    FileCheck check{reading.code, scene_warnings(reading, finder)};
    if (reading.error) {
        check.diagnostics.insert(check.diagnostics.begin(), *reading.error);
    }
    return check;
}

std::vector<diagnostic::CodeInfo> composition_codes() {
    std::vector<diagnostic::CodeInfo> codes;
    add_codes(codes, read_error_table());
    add_codes(codes, tool_code_table());
    return codes;
}

constexpr FileKind kCompositionFiles{"composition files", check_composition, diagnostic_text, true,
                                     composition_codes};

}  // namespace

Verb check_verb() {
    return {
        "check",
        "report mistakes in composition files, and what an import will change",
        {"After Effects imports nothing from a composition file with a mistake in it, and shows no message. "
         "This verb reads the file with the plug-in's own readers and reports the first mistake: file, line, "
         "column, what was expected, what was found, and a code that scripts can rely on.",
         "Warnings follow about everything that arrives differently from how it is written: missing or "
         "unreadable footage, sequences with gaps, numbers and names that change, keys outside the range, "
         "values that do not reach After Effects. Each file gets one line on standard output. With several "
         "files the most serious outcome is the exit code: a file that cannot be read is more serious than "
         "one that is refused."},
        {{"vxr check shot.aec", "Shows the first mistake in shot.aec, or what its import will change."},
         {"vxr check --strict --quiet renders/*.aec",
          "For a script: one line per file, and exit code 1 if any of them has a mistake or a warning."},
         {"vxr check --json shot.aec | jq -r '.files[].diagnostics[].code'",
          "The codes of everything that was found."},
         {"vxr check --search renders job/*.aec",
          "What is wrong apart from footage that has only moved; `vxr relink` finds it in the same way."}},
        []() -> std::unique_ptr<Command> { return make_check_command(kCompositionFiles); }};
}

}  // namespace cli
