#include "system/signal_cleanup.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <utility>

#include "system/files.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <signal.h>
#include <unistd.h>
#endif

namespace os {

namespace {

using NativeChar = std::filesystem::path::value_type;

}  // namespace

/// What a handler may touch: a signal interrupts any instruction, and Windows runs its handler on a thread of
/// its own. The thread that exchanges the path for null owns it.
struct RemovedOnSignal::Slot {
    std::atomic<bool> taken{false};
    std::atomic<NativeChar*> path{nullptr};
    std::atomic<std::int64_t> group{0};
    Slot* next = nullptr;
};

namespace {

using Slot = RemovedOnSignal::Slot;

static_assert(std::atomic<Slot*>::is_always_lock_free && std::atomic<NativeChar*>::is_always_lock_free &&
                  std::atomic<std::int64_t>::is_always_lock_free,
              "a signal handler must not wait for a lock");

}  // namespace

struct UnfinishedFiles {
    /// Slots are used again and never freed, because a handler may be walking the list.
    std::atomic<Slot*> first_slot{nullptr};
    std::mutex mutex;
    std::vector<std::string> notices;  ///< guarded by the mutex
};

namespace {

UnfinishedFiles own;
std::atomic<UnfinishedFiles*> shared{&own};

Slot* free_slot() {
    std::atomic<Slot*>& first_slot = shared.load()->first_slot;
    for (Slot* slot = first_slot; slot != nullptr; slot = slot->next) {
        bool taken = false;
        if (slot->taken.compare_exchange_strong(taken, true)) {
            return slot;
        }
    }
    auto* const slot = new Slot;
    slot->taken = true;
    slot->next = first_slot;
    while (!first_slot.compare_exchange_weak(slot->next, slot)) {
    }
    return slot;
}

void clean_up() {
    for (Slot* slot = own.first_slot; slot != nullptr; slot = slot->next) {
        if (const NativeChar* const path = slot->path.exchange(nullptr); path != nullptr) {
#if defined(_WIN32)
            DeleteFileW(path);
#else
            ::unlink(path);
#endif
        }
#if !defined(_WIN32)
        if (const std::int64_t group = slot->group.exchange(0); group > 0) {
            ::kill(-static_cast<pid_t>(group), SIGKILL);
        }
#endif
    }
}

#if defined(_WIN32)

BOOL WINAPI end_program(DWORD /*event*/) {
    constexpr UINT kInterrupted = 130;
    clean_up();
    ExitProcess(kInterrupted);
}

#else

void end_program(int signal) {
    constexpr int kEndedBySignal = 128;
    clean_up();
    ::_exit(kEndedBySignal + signal);
}

#endif

}  // namespace

void end_on_signals() {
#if defined(_WIN32)
    SetConsoleCtrlHandler(&end_program, TRUE);
#else
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE}) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) {
            continue;
        }
        action = {};
        action.sa_handler = &end_program;
        sigfillset(&action.sa_mask);
        ::sigaction(signal, &action, nullptr);
    }
#endif
}

UnfinishedFiles& unfinished_files() {
    return own;
}

void share_unfinished_files(UnfinishedFiles& of_program) {
    shared = &of_program;
}

void keep_notice(std::string notice) {
    constexpr std::size_t kMost = 50;
    UnfinishedFiles& files = *shared;
    const std::lock_guard lock(files.mutex);
    if (files.notices.size() < kMost) {
        files.notices.push_back(std::move(notice));
    }
}

std::vector<std::string> take_notices() {
    const std::lock_guard lock(own.mutex);
    return std::exchange(own.notices, {});
}

RemovedOnSignal RemovedOnSignal::file(const std::string& path) {
    const std::filesystem::path native = native_path(path);
    const std::size_t length = native.native().size() + 1;
    auto* const copy = new NativeChar[length];
    std::copy_n(native.c_str(), length, copy);
    Slot* const slot = free_slot();
    slot->path = copy;
    return RemovedOnSignal(slot);
}

RemovedOnSignal RemovedOnSignal::process_group(std::int64_t id) {
    Slot* const slot = free_slot();
    slot->group = id;
    return RemovedOnSignal(slot);
}

RemovedOnSignal::RemovedOnSignal(RemovedOnSignal&& other) noexcept
    : slot_(std::exchange(other.slot_, nullptr)) {}

RemovedOnSignal& RemovedOnSignal::operator=(RemovedOnSignal&& other) noexcept {
    if (this != &other) {
        forget();
        slot_ = std::exchange(other.slot_, nullptr);
    }
    return *this;
}

RemovedOnSignal::~RemovedOnSignal() {
    forget();
}

void RemovedOnSignal::forget() {
    if (slot_ != nullptr) {
        delete[] slot_->path.exchange(nullptr);
        slot_->group = 0;
        slot_->taken = false;
        slot_ = nullptr;
    }
}

}  // namespace os
