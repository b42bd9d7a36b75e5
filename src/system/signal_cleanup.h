#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace os {

/// From now on SIGINT, SIGTERM, SIGHUP and SIGPIPE delete what RemovedOnSignal holds and end the program
/// with 128 plus the signal's number: 130 for SIGINT, 143 for SIGTERM. A signal that was ignored when the
/// program began stays ignored, as nohup wants it. On Windows Ctrl-C, Ctrl-Break and closing the console end
/// it with 130.
void end_on_signals();

/// What a program knows of the files that it has not finished, and of what it could not keep of those that it
/// replaced. A library that contains this code, too, is given the program's: signals and the user are the
/// program's business.
struct UnfinishedFiles;
[[nodiscard]] UnfinishedFiles& unfinished_files();
void share_unfinished_files(UnfinishedFiles& of_program);

/// Remembers a sentence for the user, with a path: of at most 50 files. For any thread.
void keep_notice(std::string notice);
/// The sentences since the last call.
[[nodiscard]] std::vector<std::string> take_notices();

/// A temporary file, or a group of processes, that does not outlive the program when a signal ends it. The
/// destructor forgets it: until then its owner deletes or ends it in the ordinary way. For any thread.
class RemovedOnSignal {
  public:
    RemovedOnSignal() = default;
    /// A file to delete, which need not exist yet.
    [[nodiscard]] static RemovedOnSignal file(const std::string& path);
    /// A process group to kill; nothing on Windows, whose jobs end with the program.
    [[nodiscard]] static RemovedOnSignal process_group(std::int64_t id);

    RemovedOnSignal(RemovedOnSignal&& other) noexcept;
    RemovedOnSignal& operator=(RemovedOnSignal&& other) noexcept;
    RemovedOnSignal(const RemovedOnSignal&) = delete;
    RemovedOnSignal& operator=(const RemovedOnSignal&) = delete;
    ~RemovedOnSignal();

    struct Slot;

  private:
    explicit RemovedOnSignal(Slot* slot) : slot_(slot) {}
    void forget();

    Slot* slot_ = nullptr;
};

}  // namespace os
