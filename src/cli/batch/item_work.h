#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "cli/batch/item_result.h"
#include "cli/batch/job_folder.h"

namespace cli {

/// What is known of an item before it is done.
struct KnownItem {
    /// As the job folder has it, whatever it is worth.
    std::optional<ItemResult> result;
    /// The result is of this version, these words and this input, and the output is there.
    bool current = false;
    std::string input_sha256;  ///< of the input as it is now; empty if it cannot be read
    std::optional<InputState> state;

    [[nodiscard]] ItemStanding standing() const {
        return current ? result->standing : ItemStanding::not_done;
    }
};

/// What is to be done with the items of a batch, one by one. For any thread.
class ItemWork {
  public:
    /// `version` is the program's. Names in options are relative to the current folder of this process.
    ItemWork(const JobFolder& folder, const BatchPlan& plan, std::string version);

    /// Looks at the result of an item, and whether it still holds. Reads the input only when its state does
    /// not tell.
    [[nodiscard]] KnownItem look(const BatchItem& item) const;

    /// Runs the program for an item, unless its result holds, and keeps what comes of it; `worked` says
    /// whether it ran. `not_done` if somebody else ended the process: then nothing is kept. Throws
    /// std::runtime_error if the result could not be written.
    ItemStanding run(const BatchItem& item, bool& worked) const;

    /// Removes the result of an item, so that it is done again. Throws std::runtime_error if it stays.
    void forget(const BatchItem& item) const;

  private:
    void keep(const BatchItem& item, const ItemResult& result, const std::string& log, bool had_log) const;

    const JobFolder& folder_;
    const BatchPlan& plan_;
    std::string version_;
    std::filesystem::path program_;
};

}  // namespace cli
