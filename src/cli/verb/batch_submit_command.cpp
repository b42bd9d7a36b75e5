#include <chrono>
#include <cstdint>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/batch/batch_submit.h"
#include "cli/batch/job_folder.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/child_process.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "system/files.h"
#include "system/program_path.h"
#include "text/printable.h"

namespace cli {
namespace {

class BatchSubmitCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("JOB", folder_, "the job folder that `vxr batch plan` wrote").required();
        options.option("--on", on_, "what runs it; xargs writes a shell command for each part")
            .value_name("slurm|xargs")
            .choices({"slurm", "xargs"})
            .group("Scheduler");
        options
            .option("--array-size", array_size_,
                    "at most so many parts, each with its share of the items; Slurm allows 1000 unless its "
                    "MaxArraySize says more")
            .value_name("N")
            .range(1, static_cast<int>(kMostBatchItems))
            .show_default()
            .group("Scheduler");
        options.option("--partition", partition_, "the partition of Slurm; without this, its default")
            .value_name("NAME")
            .group("Scheduler");
    }

    ExitCode run(Terminal& terminal) override {
        if (on_.empty()) {
            throw UsageError("--on is required: it says what runs the batch");
        }
        if (on_ == "xargs" && !partition_.empty()) {
            throw UsageError("--partition is for --on slurm");
        }
        const JobFolder folder(folder_);
        const std::size_t items = folder.read_plan().item_count;
        const std::size_t parts = part_count(items, static_cast<std::size_t>(array_size_));
        const std::string program = os::text_of(os::program_path());
        if (on_ == "slurm") {
            submit_to_slurm(folder, program, items, parts, terminal);
            return ExitCode::fine;
        }
        for (std::size_t number = 1; number <= parts; ++number) {
            terminal.out << part_command(program, folder, {number, parts}) << '\n';
        }
        return ExitCode::fine;
    }

  private:
    void submit_to_slurm(const JobFolder& folder, const std::string& program, std::size_t items,
                         std::size_t parts, Terminal& terminal) const {
        const auto sbatch = find_program("sbatch");
        if (!sbatch) {
            throw std::runtime_error(
                "there is no program sbatch here; submit from a machine with the commands of Slurm, or use "
                "--on xargs");
        }
        // The script sends what a task writes to the job folder: Slurm's own option would change some names.
        std::vector<std::string> words{"--parsable", "--job-name=vxr-batch", "--output=/dev/null",
                                       "--array=1-" + std::to_string(parts)};
        if (!partition_.empty()) {
            words.push_back("--partition=" + partition_);
        }
        const std::string script = slurm_script(program, folder, parts);
        std::string_view rest = script;
        constexpr std::chrono::seconds kLongest(300);
        const ChildResult submitted =
            run_child(*sbatch, words, {kLongest}, [&rest] { return std::exchange(rest, {}); });
        if (submitted.exit_code != 0) {
            std::string reason = submitted.error.empty() ? submitted.err : submitted.error;
            reason.erase(reason.find_last_not_of('\n') + 1);
            throw std::runtime_error("sbatch did not take the job: " +
                                     (submitted.timed_out ? "it did not answer in 300 s" : reason));
        }
        // "12" or "12;cluster"
        const std::string job = submitted.out.substr(0, submitted.out.find_first_of(";\n"));
        terminal.out << text::printable(folder_) << ": " << grouped(static_cast<std::int64_t>(items))
                     << (items == 1 ? " item" : " items") << ", Slurm's job " << text::printable(job)
                     << " of " << grouped(static_cast<std::int64_t>(parts))
                     << (parts == 1 ? " task" : " tasks") << '\n';
    }

    std::string folder_;
    std::string on_;
    std::string partition_;
    int array_size_ = 1000;
};

}  // namespace

Verb batch_submit_verb() {
    return {
        "batch submit",
        "hand a job folder to a scheduler",
        {"Divides the items into parts, neighbours together, and has each done by `vxr batch run --part`: "
         "with --on slurm as the tasks of one array job, with --on xargs as shell commands, one on a "
         "line, for anything else that runs commands. Every machine must see the job folder, the inputs "
         "and the outputs, and `vxr` itself, under the same names.",
         "Submitting again does what is not done. Slurm's sbatch takes further options from variables "
         "such as SBATCH_ACCOUNT and SBATCH_TIMELIMIT. With several processors for each task, a task does "
         "as many items at a time."},
        {{"vxr batch submit night.batch --on slurm --array-size 500", "One array job of at most 500 tasks."},
         {"vxr batch submit night.batch --on xargs | xargs -d '\\n' -n 1 -P 8 sh -c",
          "Eight parts at a time, here."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<BatchSubmitCommand>(); }};
}

}  // namespace cli
