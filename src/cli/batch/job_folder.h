#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/batch/batch_file.h"

// The folder of a batch: what is to be done, one line an item, and what became of it. docs/batch.md describes
// its files. Whoever writes into it writes whole files by renaming, so any number of programs on any number
// of machines may do so at a time.

namespace cli {

inline constexpr std::size_t kMostBatchItems = 100'000'000;

/// A verb with its options, the same for all items of a task.
struct PlannedTask {
    std::vector<std::string> words;  ///< the verb's, then the options
    std::string output_option;       ///< empty if nothing is written
};

struct BatchPlan {
    std::string base;  ///< the folder to which names in options are relative
    ItemLimits limits;
    std::vector<PlannedTask> tasks;
    std::size_t item_count = 0;
    std::string items_folder;  ///< in the job folder
};

/// A file and what is to be done with it. Names are absolute.
struct BatchItem {
    std::string id;  ///< 16 digits: the same words for the same file have the same
    std::size_t task = 0;
    std::string input;
    std::string output;  ///< empty if nothing is written
};

/// The words of an item's command, without the program's name.
[[nodiscard]] std::vector<std::string> words_of(const PlannedTask& task, const BatchItem& item);

/// The id for an item that has none yet.
[[nodiscard]] std::string item_id(const PlannedTask& task, const BatchItem& item);

/// Every n-th part of a batch, as neighbours: 1 of 1 is all of it.
struct BatchPart {
    std::size_t number = 1;  ///< from 1 to `of`
    std::size_t of = 1;
};

class JobFolder {
  public:
    explicit JobFolder(const std::string& path);

    /// Makes the folder, or plans anew in it: results of items that are planned again stay. Throws
    /// std::runtime_error if it cannot be written, or if something else is in it.
    void write_plan(BatchPlan plan, const std::vector<BatchItem>& items) const;

    /// Throws std::runtime_error if this is no job folder, or one whose planning did not finish.
    [[nodiscard]] BatchPlan read_plan() const;

    /// The items of one part, in the order of the plan. Throws std::runtime_error if they cannot be read.
    [[nodiscard]] std::vector<BatchItem> read_items(const BatchPlan& plan, const BatchPart& part = {}) const;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string result_path(const BatchItem& item) const;
    [[nodiscard]] std::string log_path(const BatchItem& item) const;

  private:
    [[nodiscard]] std::string inside(const std::string& name) const;
    void refuse_other_content() const;

    std::string path_;
};

}  // namespace cli
