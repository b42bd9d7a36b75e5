#include "ladder/ladder_host.h"

#include <algorithm>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "embedded/project_json.h"
#include "support/tested_host.h"
#include "system/dynamic_library.h"

namespace {

using embedded::Host;
using embedded::RuleViolation;

constexpr std::uint8_t kPreferenceBefore = 2;

/// The violations that a host may find when its own calls fail: things that the bundle opened and could not
/// close, and uses of things that it did not get.
constexpr RuleViolation kOfFaults[] = {
    RuleViolation::bad_argument,
    RuleViolation::stream_not_disposed,
    RuleViolation::additions_not_ended,
    RuleViolation::undo_group_unbalanced,
    RuleViolation::footage_never_adopted,
    RuleViolation::suite_not_released,
    RuleViolation::memory_left_locked,
    RuleViolation::memory_left_alive,
    RuleViolation::missing_suite_exception,
};

/// Keeps the bundle in memory: loading it for every rung would take most of the time.
void keep_bundle() {
    static std::string error;
    static const auto kept = os::DynamicLibrary::open(VXR_BUNDLE_PATH, error);
    if (kept == nullptr) {
        throw std::runtime_error(error);
    }
}

bool faulty(const embedded::HostOptions& options) {
    return !options.faults.empty() || !options.suites_empty.empty() || !options.suites_not_offered.empty();
}

bool fails(const embedded::HostOptions& options, const char* function) {
    return std::any_of(options.faults.begin(), options.faults.end(),
                       [function](const embedded::Fault& fault) { return fault.function == function; });
}

std::string preference_violation(const Host& host) {
    for (const auto& [key, value] : host.project().preferences) {
        if (value != std::vector<std::uint8_t>{kPreferenceBefore}) {
            return "the preference was not put back; ";
        }
    }
    return host.project().preferences.size() == 1 ? "" : "a preference was added or lost; ";
}

std::string undo_violation(const Host& host) {
    for (const embedded::UndoStep& step : host.project().undo_steps) {
        if (!step.closed) {
            return "an undo group was left open; ";
        }
    }
    return {};
}

std::string rule_violation(const Host& host, bool with_faults) {
    for (const diagnostic::Diagnostic& problem : host.conformance().violations()) {
        // The bundle deliberately keeps the memory handle of a refused texture; and a texture without a
        // header has no pixels, which the host does not accept.
        const bool of_texture = (problem.code == RuleViolation::memory_left_alive &&
                                 problem.within.front() == "AEIO_InitInSpecFromFile") ||
                                (problem.code == RuleViolation::bad_argument &&
                                 problem.within.front() == "AEGP_SetInSpecDimensions");
        if (of_texture) {
            continue;
        }
        const bool allowed =
            std::find(std::begin(kOfFaults), std::end(kOfFaults), problem.code) != std::end(kOfFaults);
        if (!with_faults || !allowed) {
            return host.conformance().to_text();
        }
    }
    return {};
}

void import_scene(Host& host, const std::string& path, Climb& climb) {
    const embedded::VerifyResult verified = host.verify(path);
    climb.result = verified.callback;
    if (verified.importable) {
        climb.result = host.import_file(path);
    }
    climb.finished = verified.importable;
}

void draw_texture(Host& host, const std::string& path, Climb& climb) {
    const embedded::OpenResult opened = host.open_with_module(path);
    climb.result = opened.callback;
    if (opened.in_spec == 0) {
        return;
    }
    constexpr A_long kMostOfASide_px = 512;
    const embedded::InSpec spec = host.project().in_spec(opened.in_spec);
    embedded::FrameShape shape;
    shape.width_px = std::min<A_long>(spec.width, kMostOfASide_px);
    shape.height_px = std::min<A_long>(spec.height, kMostOfASide_px);
    // Classic hosts get the corner of a large texture, current ones all of it in the frame.
    const embedded::DrawResult drawn = host.draw(opened.in_spec, shape);
    climb.result = drawn.callback;
    if (tests_today()) {
        embedded::FrameShape part = shape;
        part.width_px = (shape.width_px + 1) / 2;
        part.height_px = (shape.height_px + 1) / 2;
        part.resolution_divisor = 2;
        part.required_region = A_LRect{part.width_px / 2, 0, part.width_px, part.height_px};
        const embedded::DrawResult half = host.draw(opened.in_spec, part);
        if (climb.result.code == kHostErrorNone) {
            climb.result = half.callback;
        }
    }
    const embedded::CallbackResult disposed = host.dispose(opened.in_spec);
    if (climb.result.code == kHostErrorNone) {
        climb.result = disposed;
    }
    climb.finished = true;
}

}  // namespace

Climb climb(embedded::HostOptions options, const std::string& path, const embedded::Watcher& watcher) {
    keep_bundle();
    options.generation = tested_generation();
    options.alpha_preference = kPreferenceBefore;
    const bool with_faults = faulty(options);
    Climb climb;
    embedded::TestHost host(options);
    host.watch(watcher);
    try {
        const embedded::LoadResult loaded = host.load(VXR_BUNDLE_PATH);
        climb.result = loaded.entry;
        if (loaded.ok()) {
            path.ends_with(".txl") ? draw_texture(host, path, climb) : import_scene(host, path, climb);
        }
    } catch (const std::bad_alloc&) {
        climb.no_memory_thrown = true;
    }
    host.watch({});
    climb.violation = host.validate().value_or("");
    host.unload();
    climb.violation += host.validate().value_or("");
    climb.violation += rule_violation(host, with_faults);
    climb.violation += undo_violation(host);
    if (!fails(options, "AEGP_SetData")) {
        climb.violation += preference_violation(host);
    }
    climb.call_counts = host.call_counts();
    return climb;
}

std::string result_of(const std::string& path) {
    keep_bundle();
    embedded::HostOptions options;
    options.generation = tested_generation();
    embedded::TestHost host(options);
    if (!host.load(VXR_BUNDLE_PATH).ok()) {
        throw std::runtime_error("the bundle does not load");
    }
    std::string text;
    if (path.ends_with(".txl")) {
        const embedded::OpenResult opened = host.open_with_module(path);
        text = "opened " + std::to_string(opened.callback.code) + " " + opened.error + "\n";
        if (opened.in_spec != 0) {
            const embedded::InSpec spec = host.project().in_spec(opened.in_spec);
            embedded::FrameShape shape;
            shape.width_px = spec.width;
            shape.height_px = spec.height;
            for (const PF_Pixel& pixel : host.draw(opened.in_spec, shape).pixels) {
                text.append({static_cast<char>(pixel.alpha), static_cast<char>(pixel.red),
                             static_cast<char>(pixel.green), static_cast<char>(pixel.blue)});
            }
        }
    } else {
        text = "imported " + std::to_string(host.import_file(path).code) + "\n";
    }
    host.unload();
    return text + embedded::project_to_json(host.project()).dump();
}
