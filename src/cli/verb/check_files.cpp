#include "cli/verb/check_files.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "cli/footage/finding_options.h"
#include "cli/options.h"
#include "cli/report/check_summary.h"
#include "cli/report/diagnostic_json.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/terminal.h"
#include "cli/verb/check_inputs.h"
#include "cli/verb/project_policies.h"
#include "embedded/json_values.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kCheckSchema = 2;

/// A file with what counts in it.
struct JudgedFile {
    FileCheck check;
    std::size_t ignored = 0;       ///< diagnostics that were taken out
    std::exception_ptr failure{};  ///< what the check threw
};

JudgedFile judge(FileCheck check, const CheckPolicy& policy) {
    JudgedFile judged{std::move(check)};
    judged.ignored = apply_policy(judged.check, policy);
    return judged;
}

std::string verdict_line(const std::string& file, const FileCheck& check, const Paint& paint) {
    const Ink ink = check.code == ExitCode::fine              ? Ink::green
                    : check.code == ExitCode::footage_missing ? Ink::yellow
                                                              : Ink::red;
    return text::printable(file) + ": " + paint(ink, verdict_label(check.code)) +
           severity_counts(check.diagnostics) + '\n';
}

Json check_json(const std::string& file, const FileCheck& check) {
    return Json{{"file", embedded::json_text(file)},
                {"verdict", verdict_label(check.code)},
                {"exit_code", static_cast<int>(check.code)},
                {"diagnostics", diagnostics_json(check.diagnostics)}};
}

/// Writes what was found to the error stream, as much of it as is read.
class Details {
  public:
    enum class Amount {
        none,
        errors,  ///< the first errors, one line each: there are too many files for more
        some,    ///< the first places of each code
        all,
    };

    Details(Amount amount, const FileKind& kind, Terminal& terminal)
        : amount_(amount), kind_(kind), terminal_(terminal) {}

    void add(const std::vector<Diagnostic>& diagnostics) {
        for (const Diagnostic& one : diagnostics) {
            if (amount_ == Amount::none) {
                continue;
            }
            held_back_ = held_back_ || amount_ == Amount::errors;
            if (amount_ == Amount::errors && one.severity() != Severity::error) {
                continue;
            }
            const std::string group = amount_ == Amount::errors ? "errors" : one.code.name();
            if (amount_ != Amount::all && ++shown_[group] > kMostPlaces) {
                more_[group] += one.count;
                held_back_ = true;
                continue;
            }
            const std::string text = kind_.text(one, terminal_.err_paint);
            terminal_.err << (amount_ == Amount::errors ? text.substr(0, text.find('\n') + 1) : text);
        }
        terminal_.err << std::flush;
    }

    /// One line for all further places of a code.
    void finish() {
        for (const auto& [group, count] : more_) {
            terminal_.err << "and " << grouped(count) << " more "
                          << (amount_ == Amount::errors ? group : '[' + group + ']') << '\n';
        }
        if (held_back_) {
            remark(terminal_, "--verbose shows every place");
        }
    }

  private:
    static constexpr int kMostPlaces = 10;

    Amount amount_;
    const FileKind& kind_;
    Terminal& terminal_;
    bool held_back_ = false;
    std::map<std::string, int> shown_;
    std::map<std::string, std::int64_t> more_;
};

class CheckCommand : public Command {
  public:
    explicit CheckCommand(const FileKind& kind) : kind_(kind) {}

    void add_options(Options& options) override {
        options.file_argument("FILE", inputs_.files,
                              std::string(kind_.plural) + ", and folders with such files");
        add_input_options(options, inputs_);
        add_policy_options(options, policy_, kind_.codes);
        options.flag("--strict", policy_.strict, "the same as --fail-on warning").group(kPolicyGroup);
        options.flag("--list-codes", list_codes_, "list every code with its severity and meaning, and exit")
            .group(kPolicyGroup);
        if (kind_.has_footage) {
            add_finding_options(options, choices_, false);
            options
                .flag("--read-pixels", read_pixels_, "also read whole pictures, and every frame of sequences")
                .group("What counts");
        }
        options.flag("--json", json_, "write one JSON document instead of text").group("Output");
        options.flag("-v,--verbose", verbose_, "write every place, however many files there are")
            .group("Output");
        options.flag("-q,--quiet", quiet_, "write only one line for each file").group("Output");
        options.option("--progress", progress_, "whether a terminal shows how far the work is")
            .value_name("auto|never")
            .choices({"auto", "never"})
            .show_default()
            .group("Output");
        options
            .option(
                "-j,--jobs", jobs_,
                kind_.has_footage
                    ? "how many files to read at a time; 0 for one per processor; with --search or --map one"
                    : "how many files to read at a time; 0 for one per processor")
            .value_name("N")
            .range(0, kMostJobs)
            .show_default()
            .group("Work");
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
        refuse_wrong_usage();
        const FoundInputs inputs = find_inputs(inputs_, kind_.extension);
        const ExitCode code = tell_empty_folders(inputs, inputs_, kind_.extension, terminal);
        return most_serious(code, check_all(inputs.files, terminal));
    }

  private:
    static constexpr int kMostJobs = 256;
    /// As many files as are described one by one unless the user asks for it.
    static constexpr std::size_t kMostInDetail = 10;

    void refuse_wrong_usage() const {
        refuse_wrong_inputs(inputs_, "FILE");
        if (quiet_ && verbose_) {
            throw UsageError("--quiet and --verbose exclude each other");
        }
    }

    [[nodiscard]] bool in_detail(std::size_t files) const { return verbose_ || files <= kMostInDetail; }

    [[nodiscard]] Details::Amount amount_for(std::size_t files) const {
        using enum Details::Amount;
        return quiet_ || json_ ? none : verbose_ ? all : in_detail(files) ? some : errors;
    }

    ExitCode check_all(const std::vector<std::string>& files, Terminal& terminal) const {
        ProjectPolicies policies(policy_, kind_.codes(), kind_.project_table);
        std::vector<const CheckPolicy*> policy_of;
        policy_of.reserve(files.size());
        for (const std::string& file : files) {
            policy_of.push_back(&policies.policy_of(file));
        }
        std::optional<FootageFinder> finder;
        if (choices_.given()) {
            finder.emplace(choices_.finder_options());
        }
        FootageSurvey survey(finder ? &*finder : nullptr, read_pixels_);
        Progress progress(terminal, files.size(), !quiet_ && progress_ != "never");
        Details details(amount_for(files.size()), kind_, terminal);
        CheckSummary summary;
        Json documents = Json::array();
        ExitCode code = ExitCode::fine;

        const auto check = [&](std::size_t i) { return judge(kind_.check(files[i], survey), *policy_of[i]); };
        const auto report = [&](std::size_t i, const JudgedFile& judged) {
            if (judged.failure) {
                std::rethrow_exception(judged.failure);
            }
            progress.clear();
            code = most_serious(code, judged.check.code);
            summary.add(files[i], judged.check.code, judged.check.diagnostics, judged.ignored);
            details.add(judged.check.diagnostics);
            if (json_) {
                documents.push_back(check_json(files[i], judged.check));
            } else if (quiet_ || in_detail(files.size())) {
                terminal.out << verdict_line(files[i], judged.check, terminal.out_paint) << std::flush;
            }
        };
        const std::size_t threads = finder ? 1 : threads_for(jobs_);
        if (threads == 1) {
            for (std::size_t i = 0; i < files.size(); ++i) {
                progress.step(text::printable(files[i]));
                report(i, check(i));
            }
        } else {
            run_in_order<JudgedFile>(
                files.size(), threads,
                [&](std::size_t i) {
                    try {
                        return check(i);
                    } catch (...) {
                        return JudgedFile{{}, 0, std::current_exception()};
                    }
                },
                [&](std::size_t done) { progress.bar(done); }, report);
        }
        progress.clear();
        details.finish();
        if (json_) {
            const Json counted = summary.json();
            terminal.out << files_document(kCheckSchema, code, documents, &counted);
        } else if (!quiet_ && files.size() > 1) {
            terminal.out << (in_detail(files.size()) ? "\n" : "") << summary.text(terminal.out_paint);
        }
        return code;
    }

    const FileKind& kind_;
    CheckInputs inputs_;
    PolicyChoices policy_;
    FindingChoices choices_;
    bool list_codes_ = false;
    bool read_pixels_ = false;
    bool json_ = false;
    bool verbose_ = false;
    bool quiet_ = false;
    std::string progress_ = "auto";
    int jobs_ = 1;
};

}  // namespace

std::size_t apply_policy(FileCheck& check, const CheckPolicy& policy) {
    std::vector<Diagnostic>& all = check.diagnostics;
    const bool sound = check.code == ExitCode::fine;
    // The error for which nothing is imported stays: there is nothing else to say about the file.
    const auto first = all.begin() + (sound || all.empty() ? 0 : 1);
    const auto ignored =
        std::count_if(first, all.end(), [&](const Diagnostic& one) { return policy.ignores(one); });
    all.erase(std::remove_if(first, all.end(), [&](const Diagnostic& one) { return policy.ignores(one); }),
              all.end());
    if (sound && std::any_of(all.begin(), all.end(),
                             [](const Diagnostic& one) { return one.missing_footage.has_value(); })) {
        check.code = ExitCode::footage_missing;
    }
    if (sound &&
        std::any_of(all.begin(), all.end(), [&](const Diagnostic& one) { return policy.refuses(one); })) {
        check.code = ExitCode::refused;
    }
    return static_cast<std::size_t>(ignored);
}

std::unique_ptr<Command> make_check_command(const FileKind& kind) {
    return std::make_unique<CheckCommand>(kind);
}

}  // namespace cli
