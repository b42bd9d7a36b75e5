#include "host_script.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "check.h"
#include "system/dynamic_library.h"

namespace {

using embedded::RuleViolation;

constexpr embedded::InterfaceVersion kVersions[] = {{9, 31}, {9, 32}, {10, 0}, {12, 4}, {13, 0}, {25, 3}};

/// What a bundle may do when calls fail: it cannot close what it opened, and it cannot use what it did not
/// get.
constexpr RuleViolation kViolationsOfFaults[] = {
    RuleViolation::stream_not_disposed,   RuleViolation::additions_not_ended,
    RuleViolation::undo_group_unbalanced, RuleViolation::footage_never_adopted,
    RuleViolation::suite_not_released,    RuleViolation::memory_left_locked,
    RuleViolation::memory_left_alive,     RuleViolation::missing_suite_exception,
};

/// Entry `choice` - 1 of the list, wrapping around at its end; null for 0.
template <class List>
const typename List::value_type* chosen(const List& list, std::uint8_t choice) {
    return choice == 0 || list.empty() ? nullptr : &list[(choice - 1U) % list.size()];
}

template <class List, class Value>
bool contains(const List& list, const Value& value) {
    return std::find(std::begin(list), std::end(list), value) != std::end(list);
}

bool is_allowed(const diagnostic::Diagnostic& problem, bool faulty) {
    // Deliberate: the host keeps the record of a texture that could not be opened.
    const bool unopened = problem.code == RuleViolation::memory_left_alive &&
                          problem.within.front() == "AEIO_InitInSpecFromFile";
    // The bundle passes on sizes and numbers as the file has them; the host refuses absurd ones.
    return unopened || problem.code == RuleViolation::bad_argument ||
           (faulty && contains(kViolationsOfFaults, problem.code));
}

constexpr std::string_view kFunctionsToMemory[] = {"AEGP_LockMemHandle", "AEGP_GetInSpecOptionsHandle"};
constexpr std::string_view kSuitesToMemory[] = {"AEGP Memory Suite", "AEGP IO In Suite"};

}  // namespace

void keep_bundle() {
    static const std::unique_ptr<os::DynamicLibrary> kept = [] {
        std::string error;
        return os::DynamicLibrary::open(VXR_BUNDLE_PATH, error);
    }();
    require(kept != nullptr, "the bundle can be loaded");
}

embedded::HostOptions take_host_options(Input& input) {
    embedded::HostOptions options;
    const std::uint8_t kind = input.take();
    options.generation =
        (kind & 1) != 0 ? embedded::HostGeneration::classic : embedded::HostGeneration::today;
    const std::size_t version = kind >> 1;
    if (version != 0) {
        options.version = kVersions[version % std::size(kVersions)];
    }
    if (const std::uint8_t preference = input.take(); preference != 0) {
        options.alpha_preference = preference;
    }
    const std::vector<embedded::SuiteName> offered = embedded::offered_suites(options.generation);
    if (const auto* missing = chosen(offered, input.take())) {
        options.suites_not_offered.push_back(*missing);
    }
    if (const auto* empty = chosen(offered, input.take())) {
        options.suites_empty.push_back(*empty);
    }
    for (int i = 0; i < 3; ++i) {
        const auto* function = chosen(embedded::failable_functions(), input.take());
        const std::uint8_t nth = input.take();
        const std::uint8_t code = input.take();
        if (function != nullptr) {
            options.faults.push_back(
                {function->function, nth + 1, code == 0 ? kHostErrorGeneric : A_Err{code}});
        }
    }
    return options;
}

bool has_faults(const embedded::HostOptions& options) {
    return !options.faults.empty() || !options.suites_empty.empty() || !options.suites_not_offered.empty();
}

bool may_lose_memory(const embedded::HostOptions& options) {
    const auto is_to_memory = [](const embedded::SuiteName& suite) {
        return contains(kSuitesToMemory, suite.name);
    };
    return std::any_of(options.faults.begin(), options.faults.end(),
                       [](const embedded::Fault& fault) {
                           return contains(kFunctionsToMemory, fault.function) ||
                                  fault.function == "AcquireSuite";
                       }) ||
           std::any_of(options.suites_not_offered.begin(), options.suites_not_offered.end(), is_to_memory) ||
           std::any_of(options.suites_empty.begin(), options.suites_empty.end(), is_to_memory);
}

HostWithBundle::HostWithBundle(const embedded::HostOptions& options)
    : lost_memory_(may_lose_memory(options)), host_(options) {
    keep_bundle();
    loaded_ = host_.load(VXR_BUNDLE_PATH).ok();
    require(loaded_ || has_faults(options), "the bundle loads when nothing goes wrong");
}

void HostWithBundle::check(bool faulty) {
    require_sound(host_.validate());
    host_.unload();
    require_sound(host_.validate());
    for (const diagnostic::Diagnostic& problem : host_.conformance().violations()) {
        if (!is_allowed(problem, faulty)) {
            report_find(host_.conformance().to_text());
        }
    }
}
