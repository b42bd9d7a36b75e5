#include "cli/handover/proof_run.h"

#include <stdexcept>
#include <utility>

#include "cli/handover/handover_format.h"
#include "cli/handover/handover_run.h"
#include "handover/proof/file_targets.h"
#include "handover/proof/handover_targets.h"

namespace cli {
namespace {

using handover::Handover;
using handover::Version;

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
    ProofRun run;
    run.file = reading.file;
    handover::HandoverOptions handover_options;
    handover_options.cut_angle_degrees = options.cut_angle_degrees;
    const HandedOver imported = hand_over(reading, bundle, Version::imported, handover_options);
    run.code = imported.code;
    run.diagnostics = imported.diagnostics;
    run.problems = imported.problems;
    if (!imported.handover) {
        return run;
    }
    const HandedOver corrected = hand_over(reading, bundle, Version::corrected, handover_options);
    run.code = most_serious(run.code, corrected.code);
    if (!corrected.handover) {
        run.problems.insert(run.problems.end(), corrected.problems.begin(), corrected.problems.end());
        return run;
    }
    // The camera does not depend on footage.
    if (run.code == ExitCode::footage_missing) {
        run.code = ExitCode::fine;
    }
    std::vector<proof::ProofTarget> targets = proof::after_effects_targets(*imported.handover);
    add_all(targets, proof::after_effects_targets(*corrected.handover));
    if (measurement != nullptr) {
        run.measured = proof::judge(measurement->table, measurement->plan, *reading.settings, targets);
        if (!run.measured->meets_goal() || !run.measured->is_as_written()) {
            run.code = most_serious(run.code, ExitCode::different);
        }
    }
    const std::size_t problems = run.problems.size();
    add_file(targets, *corrected.handover, "glb", options.cut_angle_degrees, proof::gltf_targets,
             run.problems);
    add_file(targets, *corrected.handover, "usda", options.cut_angle_degrees, proof::usda_targets,
             run.problems);
    run.width_px = reading.settings->width;
    run.height_px = reading.settings->height;
    run.result = proof::compare(*reading.settings, targets, options);
    if (!run.result->meets_goal() || run.problems.size() > problems) {
        run.code = most_serious(run.code, ExitCode::different);
    }
    return run;
}

}  // namespace cli
