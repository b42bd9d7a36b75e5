// Reads a text as a project file and as a job file. A job file that was read is written and read again.

#include <algorithm>
#include <optional>
#include <string>

#include "check.h"
#include "cli/footage/job_file.h"
#include "input.h"

const std::size_t kOptionBytes = 0;

namespace {

void read_project_file(const std::string& text) {
    const auto lines = std::count(text.begin(), text.end(), '\n') + 1;
    const auto require_line = [lines](std::int64_t line) {
        require(line >= 1 && line <= lines, "a line is one of the text");
    };
    try {
        for (const auto& [table, choices] : cli::parse_project_file(text)) {
            require(table == "check" || table == "texture-check", "a table belongs to a verb");
            for (const auto* const words : {&choices.fail_on, &choices.ignore}) {
                for (const cli::ProjectWord& word : words->value_or(std::vector<cli::ProjectWord>())) {
                    require_line(word.line);
                }
            }
        }
    } catch (const cli::ProjectFileError& error) {
        require(!error.reason.empty(), "a refusal has a reason");
        require_line(error.line);
    }
}

void read_job_file(const std::string& text) {
    std::string problem;
    const std::optional<cli::FinderOptions> options = cli::parse_job_file(text, problem);
    require(options.has_value() == problem.empty(), "a refusal has a reason");
    if (!options) {
        return;
    }
    const auto again = cli::parse_job_file(cli::job_file_text(*options), problem);
    require(again.has_value(), "what was written can be read");
    require(
        again->search == options->search && again->kept == options->kept && again->prefer == options->prefer,
        "what was written is read as it was");
    require(std::equal(again->maps.begin(), again->maps.end(), options->maps.begin(), options->maps.end(),
                       [](const auto& a, const auto& b) { return a.from == b.from && a.to == b.to; }),
            "maps are read as they were written");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(Input(data, size).rest_text());
    read_project_file(text);
    read_job_file(text);
    return 0;
}
