#include <memory>
#include <ostream>
#include <string>

#include "cli/report/tool_code.h"
#include "cli/scene/scene_check.h"
#include "cli/scene/scene_reading.h"
#include "cli/verb/check_files.h"
#include "cli/verbs.h"
#include "composition/read/read_error.h"

namespace cli {
namespace {

FileCheck check_composition(const std::string& file) {
    const SceneReading reading = read_scene(file);
    FileCheck check{reading.code, scene_warnings(reading)};
    if (reading.error) {
        check.diagnostics.insert(check.diagnostics.begin(), *reading.error);
    }
    return check;
}

template <typename Table>
void list_table(std::ostream& out, const Table& table) {
    for (const auto& [code, info] : table) {
        out << info.name << ": " << severity_name(info.severity) << ": " << info.meaning << '\n';
    }
}

void list_composition_codes(std::ostream& out) {
    list_table(out, read_error_table());
    list_table(out, tool_code_table());
}

constexpr FileKind kCompositionFiles{"composition files", check_composition, diagnostic_text,
                                     list_composition_codes};

}  // namespace

Verb check_verb() {
    return {
        "check",
        "say what is wrong with composition files, and what will come out otherwise than written",
        {"The plug-in ignores a file with a mistake in it without a word. This verb reads the file with the "
         "plug-in's own readers and shows the first mistake: file, line, column, what was expected and what "
         "was found, and a code that scripts can rely on.",
         "Then come warnings about what imports, but not as it is written: missing or unreadable footage, "
         "sequences with gaps, numbers and names that are changed, keys outside the range, values that do "
         "not "
         "reach the host. Every file gets its line of the result; with several files the most serious "
         "outcome "
         "is the exit code, a file that cannot be read being more serious than one that is refused."},
        {{"vxr check shot.aec", "Shows the first mistake of shot.aec, or what its import will change."},
         {"vxr check --strict --quiet renders/*.aec",
          "For a script: one line a file, exit code 1 at the first "
          "warning or mistake in any of them."},
         {"vxr check --json shot.aec | jq -r '.files[].diagnostics[].code'",
          "The codes of everything found."}},
        []() -> std::unique_ptr<Command> { return make_check_command(kCompositionFiles); }};
}

}  // namespace cli
