#include "cli/doctor/load_test.h"

#include <csignal>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "cli/terminal/child_process.h"
#include "embedded/host.h"
#include "system/files.h"
#include "system/program_path.h"

namespace cli::doctor {
namespace {

std::vector<Registration> registrations_of(const embedded::Host& host) {
    std::vector<Registration> all;
    for (const embedded::ImportFlavor& flavor : host.flavors()) {
        all.push_back({"importer", flavor.name, flavor.extensions});
    }
    for (const embedded::Module& module : host.modules()) {
        all.push_back({"input module", module.name(), module.extensions()});
    }
    return all;
}

std::string crash_reason(const ChildResult& child) {
    if (!child.signal.empty()) {
        return "the process that loaded it was ended by " + child.signal;
    }
    return "the process that loaded it ended with the exit code " +
           std::to_string(child.exit_code.value_or(-1)) + " and no result";
}

/// The last few lines of a text: the cause of a crash is usually among them, and a flood of output is not.
std::vector<std::string> last_lines(const std::string& text) {
    constexpr std::size_t kMost = 5;
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (end > at) {
            lines.push_back(text.substr(at, end - at));
        }
        at = end + 1;
    }
    if (lines.size() > kMost) {
        lines.erase(lines.begin(), lines.end() - kMost);
    }
    return lines;
}

}  // namespace

LoadTest load_here(const std::string& bundle, embedded::HostGeneration generation) {
    LoadTest load_test;
    load_test.generation = embedded::generation_label(generation);
    // The parent process must see how the bundle itself ends, not what a sanitizer turns that into.
    for (const int crash : {SIGSEGV, SIGFPE, SIGILL}) {
        std::signal(crash, SIG_DFL);
    }
    embedded::HostOptions options;
    options.generation = generation;
    embedded::Host host(options);
    const embedded::LoadResult loaded = host.load(os::path_of(bundle));
    load_test.registered = registrations_of(host);
    host.unload();
    for (const embedded::Message& message : host.messages()) {
        load_test.messages.push_back(message.text);
    }
    if (loaded.ok()) {
        load_test.end = LoadOutcome::listed;
    } else {
        load_test.end = loaded.entry.code == kHostErrorNone ? LoadOutcome::not_loadable : LoadOutcome::failed;
        load_test.reason = loaded.error;
    }
    return load_test;
}

LoadTest load_apart(const std::string& bundle, embedded::HostGeneration generation,
                    std::chrono::seconds longest) {
    const std::string word = embedded::generation_label(generation);
    const ChildResult child =
        run_child(os::program_path(), {"doctor", "--load", word, "--", bundle}, {longest});
    if (!child.error.empty()) {
        throw std::runtime_error("cannot start the process that loads the plug-in: " + child.error);
    }
    // Anything that the bundle itself writes comes before the result.
    const std::vector<std::string> lines = last_lines(child.out);
    const std::optional<LoadTest> told = lines.empty() ? std::nullopt : read_load_test_line(lines.back());
    if (told && child.exit_code == 0) {
        return *told;
    }
    LoadTest load_test;
    load_test.generation = word;
    load_test.messages = last_lines(child.err);
    if (child.timed_out) {
        load_test.end = LoadOutcome::timed_out;
        load_test.reason =
            "the process that loaded it had not ended after " + std::to_string(longest.count()) + " s";
        return load_test;
    }
    load_test.end = LoadOutcome::crashed;
    load_test.reason = crash_reason(child);
    return load_test;
}

}  // namespace cli::doctor
