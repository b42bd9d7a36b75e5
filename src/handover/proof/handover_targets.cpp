#include "handover/proof/handover_targets.h"

#include <algorithm>

#include "handover/proof/after_effects_model.h"

namespace proof {
namespace {

ProofTarget after_effects_target(const handover::Handover& handover, bool stretched) {
    ProofTarget target;
    const bool corrected = handover.version == handover::Version::corrected;
    target.name = std::string(corrected ? "corrected" : "imported") + (stretched ? ", stretched" : "");
    target.judged = corrected;
    target.suspects = {Cause::aspect_cut, Cause::curve, Cause::bank_sense};
    if (stretched) {
        target.suspects.push_back(Cause::stretched_space);
    }
    target.camera = [&handover, stretched](std::size_t object, const std::set<Cause>& without,
                                           std::string& problem) {
        AfterEffectsRules rules;
        rules.stretches_space = stretched && !without.contains(Cause::stretched_space);
        rules.curves = !without.contains(Cause::curve);
        rules.exact_aspect = without.contains(Cause::aspect_cut);
        rules.bank_clockwise = !without.contains(Cause::bank_sense);
        AfterEffectsCamera camera = after_effects_camera(handover, object, rules);
        problem = camera.problem;
        return std::move(camera.projector);
    };
    target.position = [&handover](std::size_t object, double frame) {
        return after_effects_position(handover, object, frame, {});
    };
    return target;
}

}  // namespace

std::vector<ProofTarget> after_effects_targets(const handover::Handover& handover) {
    std::vector<ProofTarget> targets;
    targets.push_back(after_effects_target(handover, false));
    const bool square = std::all_of(handover.compositions.begin(), handover.compositions.end(),
                                    [](const auto& one) { return one.pixel_aspect == 1; });
    if (!square) {
        targets.push_back(after_effects_target(handover, true));
    }
    return targets;
}

}  // namespace proof
