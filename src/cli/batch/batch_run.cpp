#include "cli/batch/batch_run.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <numeric>
#include <ostream>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/report/diagnostic_text.h"
#include "cli/terminal/ordered_jobs.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {
namespace {

using BatchClock = std::chrono::steady_clock;

/// "45 s", "12 min", "3.5 h"
std::string duration_text(double seconds) {
    constexpr double kMinute = 60;
    constexpr double kHour = 3600;
    if (seconds < 2 * kMinute) {
        return std::to_string(std::llround(seconds)) + " s";
    }
    if (seconds < 2 * kHour) {
        return std::to_string(std::llround(seconds / kMinute)) + " min";
    }
    const auto tenths = std::llround(seconds / kHour * 10);
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + " h";
}

/// Tells how far a run has got, on a thread of its own: the items may take long.
class RunProgress {
  public:
    RunProgress(Terminal& terminal, std::size_t total, bool quiet)
        : terminal_(terminal), total_(total), bar_(terminal, total, !quiet) {
        if (!quiet) {
            thread_ = std::thread([this] { tell_until_stopped(); });
        }
    }
    ~RunProgress() {
        {
            const std::lock_guard lock(mutex_);
            stopped_ = true;
        }
        changed_.notify_one();
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    RunProgress(const RunProgress&) = delete;
    RunProgress& operator=(const RunProgress&) = delete;

    /// `worked` is false for an item that was done before. For any thread.
    void add(ItemStanding standing, bool worked) {
        const std::lock_guard lock(mutex_);
        ++done_;
        worked_ += worked ? 1 : 0;
        failed_ += standing == ItemStanding::fine ? 0 : 1;
    }

    /// Writes a line between what is shown here.
    void write(const std::string& line) {
        const std::lock_guard lock(mutex_);
        bar_.clear();
        remark(terminal_, line);
    }

  private:
    void tell_until_stopped() {
        using std::chrono::milliseconds;
        const milliseconds pause = terminal_.live ? milliseconds(200) : milliseconds(60000);
        std::unique_lock lock(mutex_);
        while (!changed_.wait_for(lock, pause, [this] { return stopped_; })) {
            if (terminal_.live) {
                bar_.bar(done_, facts());
            } else {
                terminal_.err << done_ << " of " << total_ << " items" << facts() << std::endl;
            }
        }
    }

    [[nodiscard]] std::string facts() const {
        std::string text;
        const double seconds = std::chrono::duration<double>(BatchClock::now() - begin_).count();
        if (worked_ > 0 && seconds > 0) {
            const double per_second = static_cast<double>(worked_) / seconds;
            const auto tenths = std::llround(per_second * 10);
            text += ", " + std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10) + " a second, " +
                    duration_text(static_cast<double>(total_ - done_) / per_second) + " left";
        }
        return text + (failed_ > 0 ? ", " + std::to_string(failed_) + " not fine" : "");
    }

    Terminal& terminal_;
    std::size_t total_;
    Progress bar_;
    BatchClock::time_point begin_ = BatchClock::now();
    std::mutex mutex_;
    std::condition_variable changed_;
    bool stopped_ = false;
    std::size_t done_ = 0;
    std::size_t worked_ = 0;
    std::size_t failed_ = 0;
    std::thread thread_;
};

struct WorkedItem {
    ItemStanding standing = ItemStanding::not_done;
    std::string failure;  ///< why the run cannot go on
};

}  // namespace

std::size_t BatchCounts::all() const {
    return std::accumulate(of.begin(), of.end(), std::size_t{0});
}

ExitCode BatchCounts::exit_code() const {
    ExitCode code = ExitCode::fine;
    for (std::size_t i = 0; i < of.size(); ++i) {
        code = of[i] == 0 ? code : most_serious(code, exit_code_of(static_cast<ItemStanding>(i)));
    }
    return code;
}

std::string counts_text(const BatchCounts& counts) {
    std::string text;
    for (std::size_t i = 0; i < counts.of.size(); ++i) {
        if (counts.of[i] > 0) {
            text += (text.empty() ? ": " : ", ") + grouped(static_cast<std::int64_t>(counts.of[i])) + ' ' +
                    label(static_cast<ItemStanding>(i));
        }
    }
    const std::size_t all = counts.all();
    return grouped(static_cast<std::int64_t>(all)) + (all == 1 ? " item" : " items") + text;
}

std::string standing_line(const JobFolder& folder, const BatchItem& item, ItemStanding standing) {
    const std::string log = folder.log_path(item);
    const bool has_log =
        standing != ItemStanding::not_done && os::file_state(log).kind == os::FileKind::regular;
    return text::printable(item.input) + ": " + label(standing) +
           (has_log ? " (log: " + text::printable(log) + ')' : "");
}

OpenedBatch::OpenedBatch(const std::string& path, const BatchPart& part, std::string version)
    : folder(path),
      plan(folder.read_plan()),
      items(folder.read_items(plan, part)),
      work(folder, plan, std::move(version)) {
    std::error_code failure;
    std::filesystem::current_path(os::native_path(plan.base), failure);
    if (failure) {
        throw std::runtime_error("cannot enter the folder " + plan.base + ": " + failure.message());
    }
}

BatchCounts run_batch(const OpenedBatch& batch, std::size_t jobs, bool quiet, Terminal& terminal) {
    constexpr std::size_t kMostNamed = 10;
    BatchCounts counts;
    std::atomic<bool> stopped = false;
    std::size_t named = 0;
    const std::vector<BatchItem>& items = batch.items;
    RunProgress progress(terminal, items.size(), quiet);
    run_in_order<WorkedItem>(
        items.size(), jobs,
        [&](std::size_t i) {
            WorkedItem worked;
            if (stopped) {
                return worked;
            }
            try {
                bool did_work = false;
                worked.standing = batch.work.run(items[i], did_work);
                progress.add(worked.standing, did_work);
            } catch (const std::exception& error) {
                worked.failure = error.what();
                stopped = true;
            }
            return worked;
        },
        [](std::size_t) {},
        [&](std::size_t i, const WorkedItem& worked) {
            if (!worked.failure.empty()) {
                throw std::runtime_error(worked.failure);
            }
            counts.add(worked.standing);
            if (worked.standing != ItemStanding::fine && named++ < kMostNamed) {
                progress.write(standing_line(batch.folder, items[i], worked.standing));
            }
        });
    return counts;
}

void look_at_all(const OpenedBatch& batch,
                 const std::function<void(const BatchItem&, const KnownItem&)>& report) {
    // Most of the time is spent waiting for a file server.
    constexpr std::size_t kThreads = 8;
    // Results may be large: no more than these are in memory.
    constexpr std::size_t kAtATime = 256;
    const std::vector<BatchItem>& items = batch.items;
    for (std::size_t begin = 0; begin < items.size(); begin += kAtATime) {
        run_in_order<KnownItem>(
            std::min(kAtATime, items.size() - begin), kThreads,
            [&](std::size_t i) { return batch.work.look(items[begin + i]); }, [](std::size_t) {},
            [&](std::size_t i, const KnownItem& known) { report(items[begin + i], known); });
    }
}

std::vector<ItemStanding> standings_of(const OpenedBatch& batch) {
    std::vector<ItemStanding> standings;
    standings.reserve(batch.items.size());
    look_at_all(batch,
                [&](const BatchItem&, const KnownItem& known) { standings.push_back(known.standing()); });
    return standings;
}

}  // namespace cli
