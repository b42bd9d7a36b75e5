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

FileCheck check_composition(const std::string& file, FootageSurvey& survey) {
    return check_scene(read_scene(file), survey);
}

std::vector<diagnostic::CodeInfo> composition_codes() {
    std::vector<diagnostic::CodeInfo> codes;
    add_codes(codes, read_error_table());
    add_codes(codes, tool_code_table());
    return codes;
}

constexpr FileKind kCompositionFiles{"composition files", ".aec", "check", check_composition, diagnostic_text,
                                     composition_codes,   true};

}  // namespace

const FileKind& composition_files() {
    return kCompositionFiles;
}

FileCheck check_scene(const SceneReading& reading, FootageSurvey& survey) {
    FileCheck check{reading.code, scene_warnings(reading, survey)};
    if (reading.error) {
        check.diagnostics.insert(check.diagnostics.begin(), *reading.error);
    }
    return check;
}

Verb check_verb() {
    return {
        "check",
        "report mistakes in composition files, and what an import will change",
        {"After Effects imports nothing from a composition file with a mistake in it, and shows no message. "
         "This verb reads the file with the plug-in's own readers and reports the first mistake: file, line, "
         "column, what was expected, what was found, and a code that scripts can rely on.",
         "Everything follows that arrives differently from how it is written. A loss changes the picture or "
         "the motion: missing footage, sequences with gaps, numbers that change, values that do not reach "
         "After Effects. A warning may surprise, and only you can tell. A note is harmless.",
         "Up to ten files are described one by one, with the first ten places of each code. A summary "
         "follows, which is all for more files: how often each code occurs, and in which files most. "
         "--verbose writes every place, --quiet only one line for each file.",
         "A file is refused (1) for an error or for what --fail-on names. One that is not, but lacks "
         "footage, is incomplete (4). With several files the most serious outcome counts: unreadable (3), "
         "refused, then incomplete. "
         "The nearest file .vxr.toml in the folder of a scene or above it may say the same as --fail-on and "
         "--ignore for all scenes of a job: a line [check], then fail-on = [\"loss\"] and ignore = "
         "[\"value-changed\"]. Either option replaces that line of the file."},
        {{"vxr check shot.aec", "Shows the first mistake in shot.aec, or what its import will change."},
         {"vxr check --strict --quiet renders/*.aec",
          "For a script: one line per file, and exit code 1 if any of them has a mistake, a loss or a "
          "warning."},
         {"vxr check --recursive renders",
          "All composition files in the folder and below it. The result fits one screen."},
         {"vxr check --fail-on footage-missing,value-changed --ignore name-cut shot.aec",
          "Exit code 1 for exactly these two codes and for errors, and not a word about names."},
         {"find renders -name '*.aec' -print0 | vxr check --null --files-from -",
          "The files that another program names."},
         {"vxr check --json shot.aec | jq -r '.files[].diagnostics[].code'",
          "The codes of everything that was found."},
         {"vxr check --search renders job/*.aec",
          "What is wrong apart from footage that has only moved; `vxr relink` finds it in the same way."}},
        []() -> std::unique_ptr<Command> { return make_check_command(kCompositionFiles); }};
}

}  // namespace cli
