#include <cstddef>
#include <string>
#include <string_view>

#include "cli/scene/footage_check.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

const char* explanation(FindingRule rule) {
    switch (rule) {
        case FindingRule::unicode_form:
            return "the same name in another Unicode form";
        case FindingRule::mac_roman:
            return "the same name once read as Mac Roman";
        case FindingRule::windows_1252:
            return "the same name once read as Windows-1252";
        case FindingRule::cut_name:
            return "one of the names was cut at 31 characters";
        case FindingRule::letter_case:
            return "capital and small letters differ";
        case FindingRule::other_frame:
            return "another frame of the sequence, which lacks the named one";
        default:
            return "the same name in another folder";
    }
}

std::string relink_command(const SceneReading& reading, bool search) {
    std::string command = "vxr relink " + text::shell_word(reading.file);
    if (search) {
        const std::string folder = os::text_of(os::path_of(reading.file).parent_path());
        command += " --search " + text::shell_word(folder.empty() ? "." : folder);
    }
    return command + " --out-dir relinked";
}

}  // namespace

void add_candidates(const Finding& finding, Diagnostic& warning) {
    constexpr std::size_t kShown = 8;
    for (std::size_t i = 0; i < finding.candidates.size() && i < kShown; ++i) {
        warning.effects.push_back("it may be \"" + shown_path(finding.candidates[i].path) + '"');
    }
    if (finding.candidates.size() > kShown) {
        warning.effects.push_back("it may be one of " + std::to_string(finding.candidates.size() - kShown) +
                                  " more files");
    }
}

void add_near_miss(const SceneReading& reading, const SceneFootage& footage, FootageSurvey& survey,
                   Diagnostic& warning) {
    // The standard input has no folder.
    if (reading.input) {
        return;
    }
    const NearMiss miss =
        survey.near_miss({reading.full_path, footage.written, footage.file->isSequence != 0});
    const std::string command = relink_command(reading, miss.in_tree);
    if (miss.finding.is_found()) {
        warning.effects.push_back("it may be \"" + shown_path(miss.finding.path) +
                                  "\": " + explanation(miss.finding.rule) + "; to use it: " + command);
    } else if (miss.finding.outcome == Finding::Outcome::ambiguous) {
        add_candidates(miss.finding, warning);
        warning.effects.push_back("to use the newest of them: " + command + " --prefer newest");
    } else if (miss.tree_is_cut) {
        warning.effects.emplace_back(
            "there are too many files below the scene's folder to look at all of them; "
            "`vxr relink --search` looks at every file");
    }
}

}  // namespace cli
