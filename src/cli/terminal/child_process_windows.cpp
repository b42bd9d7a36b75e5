#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "cli/terminal/child_process.h"
#include "system/wide_path_windows.h"

namespace cli {
namespace {

struct CloseIt {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseIt>;

struct Pipe {
    Handle reading;
    Handle writing;
};

enum class Inherited { reading, writing };

/// The new process inherits one end, and not the other.
Pipe make_pipe(Inherited end) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (CreatePipe(&reading, &writing, &inherited, 0) == 0) {
        return {};
    }
    SetHandleInformation(end == Inherited::writing ? reading : writing, HANDLE_FLAG_INHERIT, 0);
    return {Handle(reading), Handle(writing)};
}

/// One word of a command line as programs parse it: in quotes, with the backslashes before a quote doubled.
std::wstring quoted_word(const std::wstring& word) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t letter : word) {
        if (letter == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

/// A job ends with the last handle to it, and with it every process in it.
Handle make_job() {
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

/// Reads one stream to its end. Ends the job and returns true when it is longer than the limit.
bool read_all(HANDLE pipe, HANDLE job, const ChildLimits& limits, std::string& text) {
    const std::size_t most = limits.most_output_bytes > 0 ? limits.most_output_bytes : kMostOutput;
    std::array<char, 65536> part{};
    DWORD count = 0;
    bool too_much = false;
    while (ReadFile(pipe, part.data(), static_cast<DWORD>(part.size()), &count, nullptr) != 0 && count > 0) {
        const std::size_t room = most - text.size();
        text.append(part.data(), std::min<std::size_t>(count, room));
        if (limits.most_output_bytes > 0 && count > room && !too_much) {
            too_much = true;
            TerminateJobObject(job, 1);
        }
    }
    return too_much;
}

/// Writes all pieces, or as many as the process reads.
void write_all(HANDLE pipe, const ChildInput& input) {
    for (std::string_view piece = input(); !piece.empty(); piece = input()) {
        while (!piece.empty()) {
            constexpr std::size_t kMost = 1U << 20U;
            DWORD count = 0;
            if (WriteFile(pipe, piece.data(), static_cast<DWORD>(std::min(piece.size(), kMost)), &count,
                          nullptr) == 0) {
                return;
            }
            piece.remove_prefix(count);
        }
    }
}

/// The exit code of a process that an exception ended is the code of the exception, whose two highest bits
/// are set.
std::string exception_text(DWORD code) {
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%08lX", static_cast<unsigned long>(code));
    return code == EXCEPTION_ACCESS_VIOLATION ? std::string(number.data()) + ", access violation"
                                              : "exception " + std::string(number.data());
}

constexpr DWORD kExceptionBits = 0xC0000000;

/// Waits until the process ends or is beyond a limit; `result` then says which.
void wait_within(const ChildLimits& limits, HANDLE process, ChildResult& result) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kBetweenLooks(20);
    const Clock::time_point end = Clock::now() + limits.longest;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            result.timed_out = true;
            return;
        }
        const auto pause = limits.most_memory_bytes > 0 ? std::min(left, kBetweenLooks) : left;
        if (WaitForSingleObject(process, static_cast<DWORD>(pause.count())) == WAIT_OBJECT_0) {
            return;
        }
        PROCESS_MEMORY_COUNTERS memory{};
        if (limits.most_memory_bytes > 0 && K32GetProcessMemoryInfo(process, &memory, sizeof(memory)) != 0 &&
            memory.WorkingSetSize > limits.most_memory_bytes) {
            result.over_memory = true;
            return;
        }
    }
}

}  // namespace

ChildResult run_child(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                      const ChildLimits& limits, const ChildInput& input) {
    ChildResult result;
    std::wstring command = quoted_word(program.wstring());
    for (const std::string& argument : arguments) {
        command += L' ' + quoted_word(os::wide_text(argument));
    }
    // A process inherits every handle that is marked so, also those for a process of another thread, whose
    // pipes it would keep open; and the mode of errors is that of the whole program. So one starts at a time.
    static std::mutex starting;
    std::unique_lock starts(starting);
    Pipe in = make_pipe(Inherited::reading);
    Pipe out = make_pipe(Inherited::writing);
    Pipe err = make_pipe(Inherited::writing);
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    Handle nothing(CreateFileW(L"NUL", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                               OPEN_EXISTING, 0, nullptr));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input ? in.reading.get() : nothing.get();
    startup.hStdOutput = out.writing.get();
    startup.hStdError = err.writing.get();
    // No dialog appears when the process crashes: it inherits this mode.
    const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    PROCESS_INFORMATION started{};
    const BOOL ok = CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE,
                                   CREATE_NO_WINDOW | CREATE_SUSPENDED, nullptr, nullptr, &startup, &started);
    const DWORD failure = ok == 0 ? GetLastError() : 0;
    SetErrorMode(mode);
    nothing.reset();
    in.reading.reset();
    out.writing.reset();
    err.writing.reset();
    starts.unlock();
    if (ok == 0) {
        result.error = "Windows error " + std::to_string(failure);
        return result;
    }
    const Handle process(started.hProcess);
    const Handle main_thread(started.hThread);
    const Handle job = make_job();
    AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(main_thread.get());
    bool much_out = false;
    bool much_err = false;
    std::thread reads_out([&] { much_out = read_all(out.reading.get(), job.get(), limits, result.out); });
    std::thread reads_err([&] { much_err = read_all(err.reading.get(), job.get(), limits, result.err); });
    std::exception_ptr thrown;
    if (input) {
        try {
            write_all(in.writing.get(), input);
        } catch (...) {
            thrown = std::current_exception();
            TerminateProcess(process.get(), 1);
        }
    }
    in.writing.reset();
    wait_within(limits, process.get(), result);
    if (result.timed_out || result.over_memory) {
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), INFINITE);
    }
    TerminateJobObject(job.get(), 1);  // what the process started and left behind, which may hold the pipes
    reads_out.join();
    reads_err.join();
    result.over_output = much_out || much_err;
    const bool ended = result.timed_out || result.over_memory || result.over_output;
    if (thrown) {
        std::rethrow_exception(thrown);
    }
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    if (!ended && (code & kExceptionBits) == kExceptionBits) {
        result.signal = exception_text(code);
    } else if (!ended) {
        result.exit_code = static_cast<int>(code);
    }
    return result;
}

std::optional<std::filesystem::path> find_program(const std::string& name) {
    std::array<wchar_t, MAX_PATH + 1> found{};
    const DWORD length = SearchPathW(nullptr, os::wide_text(name).c_str(), L".exe",
                                     static_cast<DWORD>(found.size()), found.data(), nullptr);
    if (length == 0 || length >= found.size()) {
        return std::nullopt;
    }
    return std::filesystem::path(found.data());
}

}  // namespace cli
