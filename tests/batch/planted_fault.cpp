// Loaded into programs by LD_PRELOAD: has a process that works on a file go wrong, once. The folder in
// VXR_TEST_FAULTS holds a file of the same name as the one worked on, with what is to happen in it.

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

namespace {

namespace fs = std::filesystem;

/// The last word of this process's command, if "--" stands before it: the file of an item.
std::string worked_on() {
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    std::string words((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (words.empty()) {
        return {};
    }
    words.pop_back();
    const std::size_t last = words.rfind('\0');
    const std::string_view before(words.data(), last == std::string::npos ? 0 : last);
    return before.ends_with(std::string_view("\0--", 3)) ? words.substr(last + 1) : std::string();
}

[[gnu::constructor]] void go_wrong() {
    const char* const folder = std::getenv("VXR_TEST_FAULTS");
    const std::string file = folder == nullptr ? std::string() : worked_on();
    if (file.empty()) {
        return;
    }
    const fs::path fault = fs::path(folder) / fs::path(file).filename();
    std::ifstream stream(fault);
    std::string kind;
    stream >> kind;
    std::error_code none;
    // Once: whoever removes it goes wrong.
    if (kind.empty() || !fs::remove(fault, none)) {
        return;
    }
    std::ofstream(fault.string() + ".pid") << ::getpid() << '\n' << std::flush;
    if (kind == "crash") {
        std::abort();
    }
    if (kind == "killed") {
        std::raise(SIGKILL);
    }
    const std::string words(65536, 'x');
    for (;;) {
        if (kind == "flood") {
            (void)!::write(STDOUT_FILENO, words.data(), words.size());
        } else if (kind == "hog") {
            // Pages that are written are occupied, and nothing gives them back.
            constexpr std::size_t kPart_bytes = 16U << 20U;
            if (char* const part = static_cast<char*>(std::malloc(kPart_bytes)); part != nullptr) {
                std::memset(part, 'x', kPart_bytes);
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        } else {
            std::this_thread::sleep_for(std::chrono::seconds(1));
        }
    }
}

}  // namespace
