#include "cli/handover/proof_run.h"

#include <stdexcept>
#include <utility>

#include "cli/handover/handover_format.h"
#include "handover/proof/file_targets.h"
#include "handover/proof/handover_targets.h"

namespace cli {
namespace {

using handover::Handover;

void add_all(std::vector<proof::ProofTarget>& targets, std::vector<proof::ProofTarget> more) {
    for (proof::ProofTarget& target : more) {
        targets.push_back(std::move(target));
    }
}

std::string file_content(const Handover& handover, const char* format, double cut_angle_degrees) {
    std::string content;
    write_handover(handover, *handover_format_named(format), {cut_angle_degrees},
                   [&](std::string_view piece) { content += piece; });
    return content;
}

// Adds what a format that can be written, and read back, becomes.
template <typename TargetsOf>
void add_file(std::vector<proof::ProofTarget>& targets, const Handover& handover, const char* format,
              double cut_angle_degrees, TargetsOf targets_of, std::vector<std::string>& problems) {
    try {
        add_all(targets, targets_of(handover, file_content(handover, format, cut_angle_degrees)));
    } catch (const std::runtime_error& error) {
        problems.emplace_back(error.what());
    }
}

}  // namespace

ProofRun prove(const SceneReading& reading, const FoundBundle& bundle, const proof::ProofOptions& options,
               const Measurement* measurement) {
    handover::HandoverOptions handover_options;
    handover_options.cut_angle_degrees = options.cut_angle_degrees;
    return prove(reading, hand_over_both(reading, bundle, handover_options), options, measurement);
}

ProofRun prove(const SceneReading& reading, const HandedOverBoth& versions,
               const proof::ProofOptions& options, const Measurement* measurement) {
    ProofRun run;
    run.file = reading.file;
    run.code = versions.code;
    run.diagnostics = versions.diagnostics;
    run.problems = versions.problems;
    if (!versions.imported || !versions.corrected) {
        return run;
    }
    const Handover& imported = *versions.imported;
    const Handover& corrected = *versions.corrected;
    // The camera does not depend on footage.
    if (run.code == ExitCode::footage_missing) {
        run.code = ExitCode::fine;
    }
    std::vector<proof::ProofTarget> targets = proof::after_effects_targets(imported);
    add_all(targets, proof::after_effects_targets(corrected));
    if (measurement != nullptr) {
        run.measured = proof::judge(measurement->table, measurement->plan, *reading.settings, targets);
        if (!run.measured->meets_goal() || !run.measured->is_as_written()) {
            run.code = most_serious(run.code, ExitCode::different);
        }
    }
    const std::size_t problems = run.problems.size();
    add_file(targets, corrected, "glb", options.cut_angle_degrees, proof::gltf_targets, run.problems);
    add_file(targets, corrected, "usda", options.cut_angle_degrees, proof::usda_targets, run.problems);
    run.width_px = reading.settings->width;
    run.height_px = reading.settings->height;
    run.result = proof::compare(*reading.settings, targets, options);
    if (!run.result->meets_goal() || run.problems.size() > problems) {
        run.code = most_serious(run.code, ExitCode::different);
    }
    return run;
}

}  // namespace cli
