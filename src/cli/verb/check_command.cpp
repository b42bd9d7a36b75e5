#include "cli/verb/check_command.h"

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/report/codes.h"
#include "cli/report/diagnostic.h"
#include "cli/scene/scene_check.h"
#include "cli/scene/scene_reading.h"
#include "cli/terminal/terminal.h"
#include "composition/read/read_error.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kCheckSchema = 1;

/// What came out for one file.
struct FileVerdict {
    std::string file;
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;  ///< the error first, if there is one
    std::size_t warnings = 0;
};

FileVerdict check_file(const std::string& file, bool strict) {
    const SceneReading reading = read_scene(file);
    FileVerdict verdict{file, reading.code, scene_warnings(reading)};
    verdict.warnings = verdict.diagnostics.size();
    if (reading.error) {
        verdict.diagnostics.insert(verdict.diagnostics.begin(), *reading.error);
    } else if (strict && verdict.warnings > 0) {
        verdict.code = ExitCode::refused;
    }
    return verdict;
}

const char* verdict_word(ExitCode code) {
    switch (code) {
        case ExitCode::fine:
            return "ok";
        case ExitCode::refused:
            return "refused";
        case ExitCode::usage:
        case ExitCode::cannot_read_or_write:
            break;
    }
    return "unreadable";
}

std::string count_text(std::size_t count, const char* word) {
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

std::string verdict_line(const FileVerdict& verdict, const Paint& paint) {
    const Ink ink = verdict.code != ExitCode::fine ? Ink::red
                    : verdict.warnings > 0         ? Ink::yellow
                                                   : Ink::green;
    return text::printable(verdict.file) + ": " + paint(ink, verdict_word(verdict.code)) +
           (verdict.warnings > 0 ? ", " + count_text(verdict.warnings, "warning") : "") + '\n';
}

Json verdict_json(const FileVerdict& verdict) {
    Json list = Json::array();
    for (const Diagnostic& diagnostic : verdict.diagnostics) {
        list.push_back(diagnostic_json(diagnostic));
    }
    return Json{{"file", embedded::json_text(verdict.file)},
                {"verdict", verdict_word(verdict.code)},
                {"exit_code", static_cast<int>(verdict.code)},
                {"diagnostics", list}};
}

void list_codes(std::ostream& out) {
    for (const auto& [code, info] : read_error_table()) {
        out << info.name << ": error: " << info.meaning << '\n';
    }
    for (const CodeRow& row : code_table()) {
        out << row.name << (is_error(row.code) ? ": error: " : ": warning: ") << row.meaning << '\n';
    }
}

class CheckCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("FILE", files_, "composition files");
        options.flag("--strict", strict_, "refuse files with warnings, too").group("What counts");
        options
            .flag("--list-codes", list_codes_,
                  "write every error and warning code with its meaning, and stop")
            .group("What counts");
        options.flag("--json", json_, "write one JSON document instead of a line a file").group("Output");
        options.flag("-q,--quiet", quiet_, "say nothing on the standard error stream").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        if (list_codes_) {
            list_codes(terminal.out);
            return ExitCode::fine;
        }
        if (files_.empty()) {
            throw UsageError("FILE is required");
        }
        Progress progress(terminal, quiet_ ? 0 : files_.size());
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;
        for (const std::string& file : files_) {
            progress.step(text::printable(file));
            const FileVerdict verdict = check_file(file, strict_);
            code = most_serious(code, verdict.code);
            progress.clear();
            report(verdict, terminal);
            if (json_) {
                documents.push_back(verdict_json(verdict));
            }
        }
        if (json_) {
            terminal.out << files_document(kCheckSchema, code, documents);
        }
        return code;
    }

  private:
    void report(const FileVerdict& verdict, Terminal& terminal) const {
        if (json_) {
            return;
        }
        if (!quiet_) {
            for (const Diagnostic& diagnostic : verdict.diagnostics) {
                terminal.err << diagnostic_text(diagnostic, terminal.err_paint);
            }
            terminal.err << std::flush;
        }
        terminal.out << verdict_line(verdict, terminal.out_paint) << std::flush;
    }

    std::vector<std::string> files_;
    bool strict_ = false;
    bool list_codes_ = false;
    bool json_ = false;
    bool quiet_ = false;
};

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
        []() -> std::unique_ptr<Command> { return std::make_unique<CheckCommand>(); }};
}

}  // namespace cli
