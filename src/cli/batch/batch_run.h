#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "cli/batch/item_result.h"
#include "cli/batch/item_work.h"
#include "cli/batch/job_folder.h"
#include "cli/terminal/terminal.h"

namespace cli {

/// How many items stand where.
struct BatchCounts {
    std::array<std::size_t, kItemStandings> of{};

    void add(ItemStanding standing) { ++of[static_cast<std::size_t>(standing)]; }
    [[nodiscard]] std::size_t at(ItemStanding standing) const {
        return of[static_cast<std::size_t>(standing)];
    }
    [[nodiscard]] std::size_t all() const;
    /// The most serious outcome.
    [[nodiscard]] ExitCode exit_code() const;
};

/// "3 items: 2 fine, 1 refused"
[[nodiscard]] std::string counts_text(const BatchCounts& counts);

/// A job folder that is worked with: its plan, and the items of one part.
class OpenedBatch {
  public:
    /// Makes the folder that options are relative to the current one of this process. Throws
    /// std::runtime_error if anything cannot be read.
    OpenedBatch(const std::string& path, const BatchPart& part, std::string version);
    OpenedBatch(const OpenedBatch&) = delete;
    OpenedBatch& operator=(const OpenedBatch&) = delete;

    const JobFolder folder;
    const BatchPlan plan;
    const std::vector<BatchItem> items;
    const ItemWork work;
};

/// Does what is to be done, `jobs` items at a time. Shows progress on a terminal, and a line a minute
/// elsewhere, unless it is `quiet`. Names the first items that are not fine. Throws std::runtime_error once a
/// result cannot be written; what was kept until then stays.
BatchCounts run_batch(const OpenedBatch& batch, std::size_t jobs, bool quiet, Terminal& terminal);

/// Calls `report` for each item, in their order, with what is known of it, without doing anything. Looks at
/// several at a time.
void look_at_all(const OpenedBatch& batch,
                 const std::function<void(const BatchItem&, const KnownItem&)>& report);

/// Where each item stands, in their order.
[[nodiscard]] std::vector<ItemStanding> standings_of(const OpenedBatch& batch);

/// "scans/a.txl: refused (log: ...)", as one line.
[[nodiscard]] std::string standing_line(const JobFolder& folder, const BatchItem& item,
                                        ItemStanding standing);

}  // namespace cli
