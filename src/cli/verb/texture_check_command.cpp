#include "cli/verb/texture_check_command.h"

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/options.h"
#include "cli/report/diagnostic.h"
#include "cli/report/unsound_result.h"
#include "cli/terminal/terminal.h"
#include "cli/texture/texture_diagnostics.h"
#include "embedded/json_values.h"
#include "text/printable.h"
#include "texture/value/texture_complaint.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kCheckSchema = 1;

struct FileVerdict {
    std::string file;
    ExitCode code = ExitCode::fine;
    std::vector<Diagnostic> diagnostics;  // the error first, if there is one
    std::size_t warnings = 0;             // kinds
};

FileVerdict check_file(const std::string& file, bool strict) {
    const TextureReading reading = read_texture(file);
    FileVerdict verdict{file, texture_exit_code(reading), texture_diagnostics(reading, file),
                        reading.warnings.size()};
    const auto complaint = reading.texture ? texture_complaint(*reading.texture) : std::nullopt;
    if (const auto defect = unsound_result(file, complaint)) {
        verdict.diagnostics.insert(verdict.diagnostics.begin(), *defect);
        verdict.code = ExitCode::refused;
    }
    if (strict && verdict.code == ExitCode::fine && verdict.warnings > 0) {
        verdict.code = ExitCode::refused;
    }
    return verdict;
}

std::string verdict_line(const FileVerdict& verdict, const Paint& paint) {
    const Ink ink = verdict.code != ExitCode::fine ? Ink::red
                    : verdict.warnings > 0         ? Ink::yellow
                                                   : Ink::green;
    std::string line = text::printable(verdict.file) + ": " + paint(ink, texture_verdict(verdict.code));
    if (verdict.warnings > 0) {
        line += ", " + std::to_string(verdict.warnings) + (verdict.warnings == 1 ? " warning" : " warnings");
    }
    return line + '\n';
}

Json verdict_json(const FileVerdict& verdict) {
    Json list = Json::array();
    for (const Diagnostic& diagnostic : verdict.diagnostics) {
        list.push_back(diagnostic_json(diagnostic));
    }
    return Json{{"file", embedded::json_text(verdict.file)},
                {"verdict", texture_verdict(verdict.code)},
                {"exit_code", static_cast<int>(verdict.code)},
                {"diagnostics", list}};
}

class TextureCheckCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("FILE", files_, "texture files").required();
        options.flag("--strict", strict_, "refuse files with warnings, too").group("What counts");
        options.flag("--json", json_, "write one JSON document instead of a line a file").group("Output");
        options.flag("-q,--quiet", quiet_, "say nothing on the standard error stream").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        Progress progress(terminal, quiet_ ? 0 : files_.size());
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;
        for (const std::string& file : files_) {
            progress.step(text::printable(file));
            const FileVerdict verdict = check_file(file, strict_);
            progress.clear();
            code = most_serious(code, verdict.code);
            if (json_) {
                documents.push_back(verdict_json(verdict));
            } else {
                report(verdict, terminal);
            }
        }
        if (json_) {
            terminal.out << files_document(kCheckSchema, code, documents);
        }
        return code;
    }

  private:
    void report(const FileVerdict& verdict, Terminal& terminal) const {
        if (!quiet_) {
            for (const Diagnostic& diagnostic : verdict.diagnostics) {
                terminal.err << texture_diagnostic_text(diagnostic, terminal.err_paint);
            }
            terminal.err << std::flush;
        }
        terminal.out << verdict_line(verdict, terminal.out_paint) << std::flush;
    }

    std::vector<std::string> files_;
    bool strict_ = false;
    bool json_ = false;
    bool quiet_ = false;
};

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
        []() -> std::unique_ptr<Command> { return std::make_unique<TextureCheckCommand>(); }};
}

}  // namespace cli
