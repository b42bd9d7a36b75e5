#include <charconv>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "cli/batch/batch_run.h"
#include "cli/options.h"
#include "cli/program.h"
#include "cli/terminal/ordered_jobs.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "text/printable.h"

namespace cli {
namespace {

/// "3/20"; nothing for any other text.
std::optional<BatchPart> parse_part(const std::string& text) {
    BatchPart part;
    const char* const end = text.data() + text.size();
    const auto number = std::from_chars(text.data(), end, part.number);
    if (number.ec != std::errc() || number.ptr == end || *number.ptr != '/') {
        return std::nullopt;
    }
    const auto of = std::from_chars(number.ptr + 1, end, part.of);
    const bool known = of.ec == std::errc() && of.ptr == end && part.number >= 1 && part.number <= part.of &&
                       part.of <= kMostBatchItems;
    return known ? std::optional(part) : std::nullopt;
}

class BatchRunCommand : public Command {
  public:
    void add_options(Options& options) override {
        constexpr const char* kGroup = "Work";
        options.argument("JOB", folder_, "the job folder that `vxr batch plan` wrote").required();
        options.option("--part", part_, "only the K-th of N parts, as schedulers call it")
            .value_name("K/N")
            .show_default()
            .check([](const std::string& text) {
                return parse_part(text) ? std::string() : '"' + text + "\" is not a part such as 3/20";
            })
            .group(kGroup);
        options.option("-j,--jobs", jobs_, "how many items to do at a time; 0 for one per processor")
            .value_name("N")
            .show_default()
            .range(0, kMostJobs)
            .group(kGroup);
        options.flag("-q,--quiet", quiet_, "show no progress").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        const OpenedBatch batch(folder_, *parse_part(part_), program_version());
        const BatchCounts counts = run_batch(batch, threads_for(jobs_), quiet_, terminal);
        terminal.out << text::printable(folder_) << ": " << counts_text(counts) << '\n';
        return counts.exit_code();
    }

  private:
    static constexpr int kMostJobs = 256;

    std::string folder_;
    std::string part_ = "1/1";
    int jobs_ = 0;
    bool quiet_ = false;
};

}  // namespace

Verb batch_run_verb() {
    return {"batch run",
            "do what a job folder says, several items at a time",
            {"Runs one process for each item that has no result yet, within the limits of time and memory of "
             "the plan. What is done is not done again, unless its input, its options or the version of the "
             "program have changed, or its output is gone. So a run may be ended at any time, with Ctrl-C or "
             "otherwise, and begun again; several may run at a time, on several machines.",
             "The exit code is that of the most serious item."},
            {{"vxr batch run night.batch", "Does everything that is not done yet, one item per processor."},
             {"vxr batch run night.batch --part 3/20 --jobs 1",
              "What a scheduler has the third of 20 tasks do."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<BatchRunCommand>(); }};
}

}  // namespace cli
