#include "cli/doctor/compatibility.h"

#include <algorithm>

namespace cli::doctor {
namespace {

/// What the file is: follows "this is".
std::string file_label(const Diagnosis& diagnosis) {
    if (diagnosis.images.empty()) {
        return "not a plug-in";
    }
    const BinaryFacts& first = diagnosis.images.front();
    return first.container == "ELF"  ? "a Linux " + first.kind
           : first.container == "PE" ? "a Windows " + first.kind
                                     : "a macOS " + first.kind;
}

std::string processors(const Diagnosis& diagnosis) {
    std::string text;
    for (const BinaryFacts& image : diagnosis.images) {
        text += (text.empty() ? "" : ", ") + image.processor;
    }
    return text;
}

bool is_container(const Diagnosis& diagnosis, const char* container) {
    return !diagnosis.images.empty() && diagnosis.images.front().container == container;
}

/// Current hosts read the properties of a file before they load it. They cannot be run here, so the answer
/// follows from their rules.
Compatibility by_the_rules(const Diagnosis& diagnosis, const char* platform, const char* container) {
    Compatibility host{platform, "today", Answer::no, "this is " + file_label(diagnosis)};
    if (!is_container(diagnosis, container)) {
        return host;
    }
    const std::optional<std::string> error = diagnosis.first_error();
    host.answer = error ? Answer::no : Answer::yes;
    host.reason = error.value_or("for " + processors(diagnosis));
    return host;
}

Compatibility classic_by_the_rules(const Diagnosis& diagnosis, const char* platform, const char* container) {
    Compatibility host{platform, "classic", Answer::no, "this is " + file_label(diagnosis)};
    if (!is_container(diagnosis, container)) {
        return host;
    }
    const bool old = std::any_of(
        diagnosis.images.begin(), diagnosis.images.end(),
        [](const BinaryFacts& image) { return image.processor == "i386" || image.processor == "powerpc"; });
    host.answer = old ? Answer::not_tried : Answer::no;
    host.reason = old ? "how those hosts find code for 32-bit processors is not checked"
                      : "those hosts are 32-bit programs, and this is for " + processors(diagnosis);
    return host;
}

Compatibility by_load_test(const Diagnosis& diagnosis, const char* generation) {
    Compatibility host{"embedded", generation, Answer::not_tried, {}};
    const auto load_test = std::find_if(diagnosis.load_tests.begin(), diagnosis.load_tests.end(),
                                        [&](const LoadTest& one) { return one.generation == generation; });
    if (load_test == diagnosis.load_tests.end()) {
        if (!diagnosis.why_not_loaded.empty()) {
            host.reason = diagnosis.why_not_loaded;
            return host;
        }
        if (diagnosis.images.empty() || is_container(diagnosis, own_container())) {
            host.answer = Answer::no;
            host.reason = "this is " + file_label(diagnosis);
            host.reason =
                diagnosis.images.empty() ? host.reason : diagnosis.first_error().value_or(host.reason);
        } else {
            host.reason = "this is " + file_label(diagnosis) + ", which cannot be loaded here";
        }
        return host;
    }
    host.answer = load_test->end == LoadOutcome::listed ? Answer::yes : Answer::no;
    host.reason = load_test->reason;
    if (load_test->end == LoadOutcome::listed) {
        const auto count = [&](const char* kind) {
            return std::count_if(load_test->registered.begin(), load_test->registered.end(),
                                 [kind](const Registration& one) { return one.kind == kind; });
        };
        const auto importers = count("importer");
        const auto modules = count("input module");
        host.reason = std::to_string(importers) + (importers == 1 ? " importer, " : " importers, ") +
                      std::to_string(modules) + (modules == 1 ? " input module" : " input modules");
    }
    return host;
}

}  // namespace

const char* own_container() {
#if defined(_WIN32)
    return "PE";
#elif defined(__APPLE__)
    return "Mach-O";
#else
    return "ELF";
#endif
}

std::vector<Compatibility> compatibility_of(const Diagnosis& diagnosis) {
    return {
        by_the_rules(diagnosis, "windows", "PE"),
        classic_by_the_rules(diagnosis, "windows", "PE"),
        by_the_rules(diagnosis, "macintosh", "Mach-O"),
        classic_by_the_rules(diagnosis, "macintosh", "Mach-O"),
        by_load_test(diagnosis, "today"),
        by_load_test(diagnosis, "classic"),
    };
}

}  // namespace cli::doctor
