#include "cli/doctor/verdicts.h"

#include <algorithm>

namespace cli::doctor {
namespace {

/// What a file is, in words that follow "a".
std::string file_words(const Diagnosis& diagnosis) {
    if (diagnosis.images.empty()) {
        return "no plug-in";
    }
    const ImageFacts& first = diagnosis.images.front();
    return first.container == "ELF"  ? "a Linux " + first.kind
           : first.container == "PE" ? "a Windows " + first.kind
                                     : "a Macintosh " + first.kind;
}

std::string processors(const Diagnosis& diagnosis) {
    std::string text;
    for (const ImageFacts& image : diagnosis.images) {
        text += (text.empty() ? "" : ", ") + image.processor;
    }
    return text;
}

bool is_container(const Diagnosis& diagnosis, const char* container) {
    return !diagnosis.images.empty() && diagnosis.images.front().container == container;
}

/// Hosts that read the properties of a file before they load it. They cannot be run here: the answer is what
/// the rules say.
Verdict by_the_rules(const Diagnosis& diagnosis, const char* platform, const char* container) {
    Verdict verdict{platform, "today", Answer::no, "this is " + file_words(diagnosis)};
    if (!is_container(diagnosis, container)) {
        return verdict;
    }
    const std::optional<std::string> error = diagnosis.first_error();
    verdict.answer = error ? Answer::no : Answer::yes;
    verdict.reason = error.value_or("for " + processors(diagnosis));
    return verdict;
}

Verdict classic_by_the_rules(const Diagnosis& diagnosis, const char* platform, const char* container) {
    Verdict verdict{platform, "classic", Answer::no, "this is " + file_words(diagnosis)};
    if (!is_container(diagnosis, container)) {
        return verdict;
    }
    const bool old = std::any_of(
        diagnosis.images.begin(), diagnosis.images.end(),
        [](const ImageFacts& image) { return image.processor == "i386" || image.processor == "powerpc"; });
    verdict.answer = old ? Answer::not_tried : Answer::no;
    verdict.reason = old ? "how those hosts find the code for 32-bit processors is not looked at"
                         : "those hosts are 32-bit programs, this is for " + processors(diagnosis);
    return verdict;
}

Verdict by_trial(const Diagnosis& diagnosis, const char* generation) {
    Verdict verdict{"embedded", generation, Answer::not_tried, {}};
    const auto trial = std::find_if(diagnosis.trials.begin(), diagnosis.trials.end(),
                                    [&](const Trial& one) { return one.generation == generation; });
    if (trial == diagnosis.trials.end()) {
        if (diagnosis.images.empty() || is_container(diagnosis, own_container())) {
            verdict.answer = Answer::no;
            verdict.reason = "this is " + file_words(diagnosis);
            verdict.reason =
                diagnosis.images.empty() ? verdict.reason : diagnosis.first_error().value_or(verdict.reason);
        } else {
            verdict.reason = "this is " + file_words(diagnosis) + ", which is not loaded here";
        }
        return verdict;
    }
    verdict.answer = trial->end == TrialEnd::listed ? Answer::yes : Answer::no;
    verdict.reason = trial->reason;
    if (trial->end == TrialEnd::listed) {
        const auto count = [&](const char* kind) {
            return std::count_if(trial->registered.begin(), trial->registered.end(),
                                 [kind](const Registration& one) { return one.kind == kind; });
        };
        const auto importers = count("importer");
        const auto modules = count("input module");
        verdict.reason = std::to_string(importers) + (importers == 1 ? " importer, " : " importers, ") +
                         std::to_string(modules) + (modules == 1 ? " input module" : " input modules");
    }
    return verdict;
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

std::vector<Verdict> verdicts_of(const Diagnosis& diagnosis) {
    return {
        by_the_rules(diagnosis, "windows", "PE"),
        classic_by_the_rules(diagnosis, "windows", "PE"),
        by_the_rules(diagnosis, "macintosh", "Mach-O"),
        classic_by_the_rules(diagnosis, "macintosh", "Mach-O"),
        by_trial(diagnosis, "today"),
        by_trial(diagnosis, "classic"),
    };
}

}  // namespace cli::doctor
