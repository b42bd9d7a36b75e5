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

/// Rewrites the file `name` of a folder during its lifetime: whole, cut short, different, longer, gone, a
/// folder, a pipe without a writer, a link to itself. Most changes wait for nothing, but regularly the file
/// stays whole, cut short and gone, each time until a reading has seen it so. A test that calls `was_read`
/// after each reading until `has_rested` therefore meets all three, however slow the machine is.
class ChangingFile {
  public:
    ChangingFile(const TemporaryFolder& folder, std::string name, std::string whole, std::string other)
        : folder_(folder),
          name_(std::move(name)),
          whole_(std::move(whole)),
          other_(std::move(other)),
          changes_([this](const std::stop_token& stop) { change(stop); }) {}

    /// Whether readings have seen the file whole, cut short and gone.
    [[nodiscard]] bool has_rested() {
        const std::scoped_lock lock(mutex_);
        return has_rested_;
    }

    /// Call it when a reading of the file has ended.
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

    /// Returns when a reading that began after the call has ended.
    void rest(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        const int next_but_one = readings_ + 2;  // the next one may have already begun
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
            std::this_thread::sleep_for(kPause);  // otherwise the whole file would hardly ever be read
            std::filesystem::resize_file(path, 0);
            std::filesystem::remove(path);
            std::filesystem::create_directory(path);
            std::filesystem::remove(path);
            folder_.write(name_, other_);
            make_pipe(aside);
            std::filesystem::rename(aside, path);  // in one step, between two checks of a reader
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
    std::jthread changes_;  // last, because it uses the others
};

/// Calls `reads`, which returns whether reading succeeded, repeatedly with the path of a changing file: at
/// least `runs` times, and until readings have seen the file whole, cut short and gone. Expects both outcomes
/// by then.
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
