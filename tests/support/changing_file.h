#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include "support/deadline.h"
#include "support/special_files.h"
#include "support/temporary_folder.h"

/// Rewrites the file `name` of a folder for as long as it lives: whole, cut short, another, longer, gone, a
/// folder, a pipe without a writer, a link onto itself. Most changes wait for nobody; but now and then the
/// file rests whole, cut short and gone, each time until somebody has read it so: who calls `was_read` after
/// each reading until `has_rested` has met all three, on however slow a machine.
class ChangingFile {
  public:
    ChangingFile(const TemporaryFolder& folder, std::string name, std::string whole, std::string other)
        : folder_(folder),
          name_(std::move(name)),
          whole_(std::move(whole)),
          other_(std::move(other)),
          changes_([this](const std::stop_token& stop) { change(stop); }) {}

    /// Whether the file was read whole, cut short and gone.
    [[nodiscard]] bool has_rested() {
        const std::scoped_lock lock(mutex_);
        return has_rested_;
    }

    /// A reading of the file has ended.
    void was_read() {
        {
            const std::scoped_lock lock(mutex_);
            ++readings_;
        }
        reading_ended_.notify_one();
    }

  private:
    static constexpr std::chrono::milliseconds kPause{3};
    static constexpr int kRoundsPerRest = 8;

    /// Returns when a reading has ended that began after the call.
    void rest(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        const int next_but_one = readings_ + 2;  // the next one may have begun already
        reading_ended_.wait(lock, stop, [&] { return readings_ >= next_but_one; });
    }

    void rest_whole_cut_and_gone(const std::stop_token& stop) {
        const std::string path = folder_.path(name_);
        folder_.write(name_, whole_);
        rest(stop);
        std::filesystem::resize_file(path, whole_.size() / 2);
        rest(stop);
        std::filesystem::remove(path);
        rest(stop);
        const std::scoped_lock lock(mutex_);
        has_rested_ = true;
    }

    void change(const std::stop_token& stop) {
        const std::string path = folder_.path(name_);
        const std::string aside = folder_.path(name_ + ".aside");
        for (int round = 0; !stop.stop_requested(); ++round) {
            if (round % kRoundsPerRest == 0) {
                rest_whole_cut_and_gone(stop);
            }
            folder_.write(name_, whole_);
            std::filesystem::resize_file(path, whole_.size() / 2);
            folder_.write(name_, whole_);
            folder_.write(name_, other_);
            std::filesystem::resize_file(path, other_.size() + 100);
            std::filesystem::remove(path);
            folder_.write(name_, whole_);
            std::this_thread::sleep_for(kPause);  // or it would hardly ever be read as it is
            std::filesystem::resize_file(path, 0);
            std::filesystem::remove(path);
            std::filesystem::create_directory(path);
            std::filesystem::remove(path);
            folder_.write(name_, other_);
            make_pipe(aside);
            std::filesystem::rename(aside, path);  // in one step, between any look and the next
            std::filesystem::remove(path);
            make_link(path, path);
            std::filesystem::remove(path);
        }
    }

    const TemporaryFolder& folder_;
    std::string name_;
    std::string whole_;
    std::string other_;
    std::mutex mutex_;
    std::condition_variable_any reading_ended_;
    int readings_ = 0;
    bool has_rested_ = false;
    std::jthread changes_;  // last: it uses the others
};

/// Calls `reads`, which says whether something came of it, again and again with the path of a file that
/// changes: at least `runs` times, and until the file has rested. Both outcomes must have come then.
inline void expect_both_outcomes(const std::string& name, const std::string& whole, int runs,
                                 const std::function<bool(const std::string&)>& reads) {
    SCOPED_TRACE(name);
    const TemporaryFolder folder;
    ChangingFile changing(folder, name, whole, "something else");
    const Deadline deadline;
    int read = 0;
    int refused = 0;
    for (int i = 0; i < runs || !changing.has_rested(); ++i) {
        ++(reads(folder.path(name)) ? read : refused);
        changing.was_read();
    }
    EXPECT_GT(read, 0);
    EXPECT_GT(refused, 0);
}
