#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "cli/batch/batch_run.h"
#include "cli/options.h"
#include "cli/program.h"
#include "cli/terminal/terminal.h"
#include "cli/verbs.h"
#include "embedded/json_values.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Json;

constexpr int kBatchStatusSchema = 1;

Json batch_counts_json(const BatchCounts& counts) {
    Json json{{"items", counts.all()}};
    for (std::size_t i = 0; i < counts.of.size(); ++i) {
        json[label(static_cast<ItemStanding>(i))] = counts.of[i];
    }
    return json;
}

class BatchStatusCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("JOB", folder_, "the job folder that `vxr batch plan` wrote").required();
        options.flag("-l,--list", list_, "name every item that is not fine, with its log").group("Output");
        options.flag("--json", json_, "write one JSON document with every item").group("Output");
    }

    ExitCode run(Terminal& terminal) override {
        const OpenedBatch batch(folder_, {}, program_version());
        const std::vector<ItemStanding> standings = standings_of(batch);
        BatchCounts counts;
        Json items = Json::array();
        for (std::size_t i = 0; i < standings.size(); ++i) {
            counts.add(standings[i]);
            if (json_) {
                items.push_back({{"id", batch.items[i].id},
                                 {"input", embedded::json_text(batch.items[i].input)},
                                 {"output", embedded::json_text(batch.items[i].output)},
                                 {"standing", label(standings[i])}});
            } else if (list_ && standings[i] != ItemStanding::fine) {
                terminal.out << standing_line(batch.folder, batch.items[i], standings[i]) << '\n';
            }
        }
        if (json_) {
            terminal.out << Json{{"schema", kBatchStatusSchema},
                                 {"exit_code", static_cast<int>(ExitCode::fine)},
                                 {"counts", batch_counts_json(counts)},
                                 {"items", items}}
                                .dump(2)
                         << '\n';
        } else {
            terminal.out << text::printable(folder_) << ": " << counts_text(counts) << '\n';
        }
        return ExitCode::fine;
    }

  private:
    std::string folder_;
    bool list_ = false;
    bool json_ = false;
};

class BatchRetryCommand : public Command {
  public:
    void add_options(Options& options) override {
        options.argument("JOB", folder_, "the job folder that `vxr batch plan` wrote").required();
        options.flag("--failed", failed_, "every item that is done and not fine").group("Which items");
    }

    ExitCode run(Terminal& terminal) override {
        if (!failed_) {
            throw UsageError("--failed is required: it says which items are to be done again");
        }
        const OpenedBatch batch(folder_, {}, program_version());
        const std::vector<ItemStanding> standings = standings_of(batch);
        std::size_t count = 0;
        for (std::size_t i = 0; i < standings.size(); ++i) {
            if (standings[i] != ItemStanding::fine && standings[i] != ItemStanding::not_done) {
                batch.work.forget(batch.items[i]);
                ++count;
            }
        }
        terminal.out << text::printable(folder_) << ": " << count << (count == 1 ? " item" : " items")
                     << " to be done again\n";
        return ExitCode::fine;
    }

  private:
    std::string folder_;
    bool failed_ = false;
};

}  // namespace

Verb batch_status_verb() {
    return {
        "batch status",
        "say how far a batch has got",
        {"Counts the items of a job folder by what became of them. An item whose input, options or "
         "version changed since, or whose output is gone, is not done."},
        {{"vxr batch status night.batch", "One line."},
         {"vxr batch status night.batch --json | jq -r '.items[] | select(.standing != \"fine\") | .input'",
          "The inputs of everything that is not fine, for a script."}},
        []() -> std::unique_ptr<Command> { return std::make_unique<BatchStatusCommand>(); }};
}

Verb batch_retry_verb() {
    return {"batch retry",
            "have items of a batch done again",
            {"Forgets the results of items, so that the next `vxr batch run` or `vxr batch submit` does them "
             "again. Their outputs stay until they are replaced."},
            {{"vxr batch retry night.batch --failed", "Forgets everything that is done and not fine."}},
            []() -> std::unique_ptr<Command> { return std::make_unique<BatchRetryCommand>(); }};
}

}  // namespace cli
