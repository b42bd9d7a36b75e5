#include <chrono>
#include <filesystem>
#include <memory>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "cli/batch/batch_file.h"
#include "cli/batch/job_folder.h"
#include "cli/options.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/child_process.h"
#include "cli/terminal/terminal.h"
#include "cli/verb/batch_inputs.h"
#include "cli/verbs.h"
#include "system/file_content.h"
#include "system/files.h"
#include "system/program_path.h"
#include "text/printable.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> words_in(const std::string& text) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(' ', at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

PlannedTask planned(const BatchTask& task) {
    PlannedTask planned{words_in(task.verb->name), {}};
    planned.words.insert(planned.words.end(), task.options.begin(), task.options.end());
    if (!task.extension.empty()) {
        planned.output_option = task.verb->output_option;
    }
    return planned;
}

/// Throws TomlError for options that the verb does not have. The program itself says it, as it will when it
/// works: it looks at all options before it shows help.
void refuse_unknown_options(const BatchTask& task, const PlannedTask& planned) {
    constexpr std::chrono::seconds kLongest(60);
    std::vector<std::string> words = planned.words;
    words.emplace_back("--help");
    const ChildResult tried = run_child(os::program_path(), words, {kLongest});
    if (tried.exit_code != static_cast<int>(ExitCode::fine)) {
        std::string reason = tried.err.substr(0, tried.err.find('\n'));
        for (const std::string prefix : {"vxr: ", "error: "}) {
            reason.erase(0, reason.starts_with(prefix) ? prefix.size() : 0);
        }
        throw TomlError{"the options of " + std::string(task.verb->name) + ": " +
                            (reason.empty() ? "they could not be tried" : reason),
                        task.line, task.column};
    }
}

/// Folders for outputs are made now and not while the batch runs, so that nothing is written below a mount
/// that has vanished.
void make_output_folders(const std::vector<BatchItem>& items) {
    std::set<fs::path> made;
    for (const BatchItem& item : items) {
        const fs::path folder = os::path_of(item.output).parent_path();
        if (item.output.empty() || !made.insert(folder).second) {
            continue;
        }
        std::error_code failure;
        fs::create_directories(os::native_path(os::text_of(folder)), failure);
        if (failure) {
            throw std::runtime_error("cannot make the folder " + os::text_of(folder) + ": " +
                                     failure.message());
        }
    }
}

class BatchPlanCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.file_argument("JOB.toml", file_, "what is to be done, to which files").required();
        options
            .option("-o,--output", folder_,
                    "the job folder, made or planned anew; without this, JOB.batch beside JOB.toml")
            .value_name("FOLDER")
            .group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        const std::string path = os::absolute_path(file_);
        const auto text = os::content_of(path, kMostJobFileBytes);
        if (!text) {
            throw std::runtime_error(file_ + " cannot be read, or is no regular file of up to 64 MiB");
        }
        try {
            return plan(parse_batch_file(*text), path, terminal);
        } catch (const TomlError& error) {
            terminal.err << text::printable(file_) << ':' << error.line << ':' << error.column << ": "
                         << terminal.err_paint(Ink::red, "error:") << ' ' << text::printable(error.reason)
                         << '\n';
            return ExitCode::cannot_read_or_write;
        }
    }

  private:
    ExitCode plan(const BatchFile& file, const std::string& path, Terminal& terminal) const {
        BatchPlan plan;
        plan.base = os::text_of(os::path_of(path).parent_path());
        plan.limits = file.limits;
        for (const BatchTask& task : file.tasks) {
            plan.tasks.push_back(planned(task));
            refuse_unknown_options(task, plan.tasks.back());
        }
        const std::vector<BatchItem> items = find_batch_items(file, plan.tasks, path, plan.base);
        std::string folder = folder_;
        if (folder.empty()) {
            folder = os::text_of(os::path_of(file_).replace_extension(".batch"));
        }
        make_output_folders(items);
        const JobFolder job(folder);
        job.write_plan(plan, items);
        terminal.out << text::printable(folder) << ": " << grouped(static_cast<std::int64_t>(items.size()))
                     << (items.size() == 1 ? " item" : " items") << '\n';
        return ExitCode::fine;
    }

    std::string file_;
    std::string folder_;
};

}  // namespace

Verb batch_plan_verb() {
    return {"batch plan",
            "plan what is to be done with many files, each by a process of its own",
            {"Reads what is to be done from a file in TOML: verbs with their options, the files, folders and "
             "patterns that they are for, and where results go. Writes a job folder with one line for each "
             "file. Nothing is done yet; `vxr batch run` does it here, and `vxr batch submit` gives it to a "
             "scheduler.",
             "Outputs that would overwrite an input, or each other, are found now. Names in the file are "
             "relative to its folder. Planning again into the same job folder keeps the results of what is "
             "still planned."},
            {{"vxr batch plan night.toml", "Writes the job folder night.batch."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<BatchPlanCommand>(); }};
}

}  // namespace cli
