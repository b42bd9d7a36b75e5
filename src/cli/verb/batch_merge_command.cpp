#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/batch/batch_run.h"
#include "cli/options.h"
#include "cli/program.h"
#include "cli/terminal/child_process.h"
#include "cli/terminal/file_roles.h"
#include "cli/terminal/output_file.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "system/files.h"
#include "system/program_path.h"
#include "text/printable.h"

namespace cli {
namespace {

/// The task whose pages become one. Throws UsageError if there is none, or more than one.
std::size_t report_task(const BatchPlan& plan) {
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < plan.tasks.size(); ++i) {
        if (plan.tasks[i].words.front() != "report") {
            continue;
        }
        if (found) {
            throw UsageError("--report is for a batch with one task of the verb report; this one has more");
        }
        found = i;
    }
    if (!found) {
        throw UsageError("--report is for a batch with a task of the verb report; this one has none");
    }
    return *found;
}

/// Writes one page over all inputs of a task, by the program itself. Returns its exit code.
ExitCode write_report(const OpenedBatch& batch, std::size_t task, const std::string& path,
                      Terminal& terminal) {
    std::vector<std::string> words = batch.plan.tasks[task].words;
    words.insert(words.end(), {"-o", path, "--null", "--files-from", "-"});
    std::size_t next = 0;
    const auto next_name = [&]() -> std::string_view {
        while (next < batch.items.size() && batch.items[next].task != task) {
            ++next;
        }
        if (next == batch.items.size()) {
            return {};
        }
        const std::string& name = batch.items[next++].input;
        return {name.c_str(), name.size() + 1};  // with its NUL
    };
    constexpr std::chrono::hours kLongest(24);
    const ChildResult report = run_child(os::program_path(), words, {kLongest}, next_name);
    terminal.err << report.err;
    if (!report.exit_code || *report.exit_code == static_cast<int>(ExitCode::cannot_read_or_write) ||
        *report.exit_code == static_cast<int>(ExitCode::usage)) {
        throw std::runtime_error("the report could not be written" +
                                 (report.signal.empty() ? report.error : ": ended by " + report.signal));
    }
    return static_cast<ExitCode>(*report.exit_code);
}

class BatchMergeCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("JOB", folder_, "the job folder that `vxr batch plan` wrote").required();
        options
            .option("-o,--output", output_,
                    "one file with what the verbs wrote to their standard output, in the order of the plan")
            .value_name("FILE")
            .group("Output");
        options.option("--report", report_, "one page over all scenes of a task of the verb report")
            .value_name("FILE.html")
            .group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        // Reading a batch changes the current folder.
        const std::string output = output_.empty() ? output_ : os::absolute_path(output_);
        const std::string report = report_.empty() ? report_ : os::absolute_path(report_);
        const OpenedBatch batch(folder_, {}, program_version());
        // Before anything is written: a batch without a report is refused while nothing has changed.
        const std::size_t task = report.empty() ? 0 : report_task(batch.plan);
        refuse_overwriting(batch, output, report);
        const BatchCounts counts = merge(batch, output, terminal);
        ExitCode code = counts.exit_code();
        if (!report.empty()) {
            code = most_serious(code, write_report(batch, task, report, terminal));
        }
        terminal.out << text::printable(folder_) << ": " << counts_text(counts) << '\n';
        return code;
    }

  private:
    static void refuse_overwriting(const OpenedBatch& batch, const std::string& output,
                                   const std::string& report) {
        FileRoles roles;
        if (output.empty() && report.empty()) {
            return;
        }
        for (const BatchItem& item : batch.items) {
            roles.reads(item.input);
            if (!item.output.empty()) {
                roles.reads(item.output, "an output of the batch");
            }
        }
        for (const auto& [path, option] : {std::pair(output, "-o"), std::pair(report, "--report")}) {
            const std::string refusal = path.empty() ? std::string() : roles.writes(path, option);
            if (!refusal.empty()) {
                throw UsageError(refusal);
            }
        }
    }

    static BatchCounts merge(const OpenedBatch& batch, const std::string& output, Terminal& terminal) {
        std::optional<OutputFile> file;
        if (!output.empty()) {
            file.emplace(output);
        }
        BatchCounts counts;
        look_at_all(batch, [&](const BatchItem& item, const KnownItem& known) {
            const ItemStanding standing = known.standing();
            counts.add(standing);
            if (standing != ItemStanding::fine) {
                terminal.out << standing_line(batch.folder, item, standing) << '\n';
            }
            if (file && known.current) {
                file->write(known.result->out);
            }
        });
        if (file) {
            file->close();
        }
        return counts;
    }

    std::string folder_;
    std::string output_;
    std::string report_;
};

}  // namespace

Verb batch_merge_verb() {
    return {
        "batch merge",
        "sum up a batch",
        {"Names every item that is not fine, with its log, and counts all of them. The exit code is that of "
         "the most serious item, as of a verb with many files; items that are not done count as files that "
         "cannot be read.",
         "-o writes what the verbs wrote to their standard output into one file, such as the JSON "
         "documents of `vxr check --json` one after the other. --report draws the one page that `vxr "
         "report` makes of all the scenes."},
        {{"vxr batch merge night.batch", "The summary of the night."},
         {"vxr batch merge night.batch -o night.txt", "Also what was written for each file."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<BatchMergeCommand>(); }};
}

}  // namespace cli
