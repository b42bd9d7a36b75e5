#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>

#include "support/special_files.h"
#include "support/temporary_folder.h"

/// Rewrites the file `name` of a folder for as long as it lives: whole, cut short, another, longer, gone, a
/// folder, a pipe without a writer, a link onto itself.
class ChangingFile {
  public:
    ChangingFile(const TemporaryFolder& folder, std::string name, std::string whole, std::string other)
        : folder_(folder),
          name_(std::move(name)),
          whole_(std::move(whole)),
          other_(std::move(other)),
          changes_([this](const std::stop_token& stop) { change(stop); }) {}

  private:
    static constexpr std::chrono::milliseconds kRest{3};

    void change(const std::stop_token& stop) const {
        const std::string path = folder_.path(name_);
        const std::string aside = folder_.path(name_ + ".aside");
        while (!stop.stop_requested()) {
            folder_.write(name_, whole_);
            std::filesystem::resize_file(path, whole_.size() / 2);
            folder_.write(name_, whole_);
            folder_.write(name_, other_);
            std::filesystem::resize_file(path, other_.size() + 100);
            std::filesystem::remove(path);
            folder_.write(name_, whole_);
            std::this_thread::sleep_for(kRest);  // or it would hardly ever be read as it is
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
    std::jthread changes_;  // last: it uses the others
};

/// Ends the program when somebody waits, while this lives, for who does not come.
class Impatience {
  public:
    Impatience() { ::alarm(kPatience_s); }
    ~Impatience() { ::alarm(0); }
    Impatience(const Impatience&) = delete;
    Impatience& operator=(const Impatience&) = delete;

  private:
    static constexpr unsigned kPatience_s = 120;
};

/// Calls `reads`, which says whether something came of it, again and again with the path of a file that
/// changes, and further while one of both outcomes has not come.
inline void expect_both_outcomes(const std::string& name, const std::string& whole, int runs,
                                 const std::function<bool(const std::string&)>& reads) {
    SCOPED_TRACE(name);
    const TemporaryFolder folder;
    const ChangingFile changing(folder, name, whole, "something else");
    const Impatience impatience;
    int read = 0;
    int refused = 0;
    // Which comes is chance, so no number of runs is enough; patience ends where one never comes.
    for (int i = 0; i < runs || read == 0 || refused == 0; ++i) {
        ++(reads(folder.path(name)) ? read : refused);
    }
    EXPECT_GT(read, 0);
    EXPECT_GT(refused, 0);
}
