#include "cli/verb/check_files.h"

#include <algorithm>
#include <cstddef>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "cli/footage/finding_options.h"
#include "cli/options.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/standard_input.h"
#include "cli/terminal/terminal.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kCheckSchema = 1;

/// Whether something in the file is at least as serious as `least`.
bool has_any(const FileCheck& check, Severity least) {
    return std::any_of(check.diagnostics.begin(), check.diagnostics.end(),
                       [least](const Diagnostic& one) { return one.severity() <= least; });
}

std::string verdict_line(const std::string& file, const FileCheck& check, const Paint& paint) {
    const Ink ink = check.code != ExitCode::fine        ? Ink::red
                    : has_any(check, Severity::warning) ? Ink::yellow
                                                        : Ink::green;
    return text::printable(file) + ": " + paint(ink, verdict_label(check.code)) +
           severity_counts(check.diagnostics) + '\n';
}

Json check_json(const std::string& file, const FileCheck& check) {
    return Json{{"file", embedded::json_text(file)},
                {"verdict", verdict_label(check.code)},
                {"exit_code", static_cast<int>(check.code)},
                {"diagnostics", diagnostics_json(check.diagnostics)}};
}

class CheckCommand : public Command {
  public:
    explicit CheckCommand(const FileKind& kind) : kind_(kind) {}

    void add_options(Options& options) override {
        Option files = options.file_argument("FILE", files_, kind_.plural);
        options.flag("--strict", strict_, "also refuse files with warnings").group("What counts");
        if (kind_.codes != nullptr) {
            options
                .flag("--list-codes", list_codes_,
                      "list every error and warning code with its meaning, and exit")
                .group("What counts");
        } else {
            files.required();
        }
        if (kind_.has_footage) {
            add_finding_options(options, choices_, false);
        }
        options.flag("--json", json_, "write one JSON document instead of one line per file").group("Output");
        options.flag("-q,--quiet", quiet_, "write nothing to standard error").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        if (list_codes_) {
            if (json_) {
                terminal.out << codes_document(kind_.codes());
            } else {
                print_codes(terminal.out, kind_.codes());
            }
            return ExitCode::fine;
        }
        if (files_.empty()) {
            throw UsageError("FILE is required");
        }
        if (names_standard_input_twice(files_)) {
            throw UsageError("the standard input can be read only once");
        }
        std::optional<FootageFinder> finder;
        if (choices_.given()) {
            finder.emplace(choices_.finder_options());
        }
        Progress progress(terminal, quiet_ ? 0 : files_.size());
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;
        for (const std::string& file : files_) {
            progress.step(text::printable(file));
            const FileCheck check = check_file(file, finder ? &*finder : nullptr);
            progress.clear();
            code = most_serious(code, check.code);
            if (json_) {
                documents.push_back(check_json(file, check));
            } else {
                report(file, check, terminal);
            }
        }
        if (json_) {
            terminal.out << files_document(kCheckSchema, code, documents);
        }
        return code;
    }

  private:
    [[nodiscard]] FileCheck check_file(const std::string& file, FootageFinder* finder) const {
        FileCheck check = kind_.check(file, finder);
        if (check.code == ExitCode::fine && has_any(check, strict_ ? Severity::warning : Severity::error)) {
            check.code = ExitCode::refused;
        }
        return check;
    }

    void report(const std::string& file, const FileCheck& check, Terminal& terminal) const {
        if (!quiet_) {
            for (const Diagnostic& diagnostic : check.diagnostics) {
                terminal.err << kind_.text(diagnostic, terminal.err_paint);
            }
            terminal.err << std::flush;
        }
        terminal.out << verdict_line(file, check, terminal.out_paint) << std::flush;
    }

    const FileKind& kind_;
    std::vector<std::string> files_;
    FindingChoices choices_;
    bool strict_ = false;
    bool list_codes_ = false;
    bool json_ = false;
    bool quiet_ = false;
};

}  // namespace

std::unique_ptr<Command> make_check_command(const FileKind& kind) {
    return std::make_unique<CheckCommand>(kind);
}

}  // namespace cli
