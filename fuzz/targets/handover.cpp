// Imports a scene through the built bundle, and describes it for other programs as imported and as corrected.
// The first two option bytes choose corrections that are left out, the third the angle of cuts. What is
// described is then written in every format, if it is not too long.

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>

#include "check.h"
#include "cli/handover/handover_format.h"
#include "cli/handover/handover_run.h"
#include "footage.h"
#include "handover/handover_invariants.h"
#include "handover/plan/plan_picture.h"
#include "host_script.h"
#include "input.h"
#include "text/utf8.h"

const std::size_t kOptionBytes = 3;

namespace {

// Glides over so many frames are laid with more keys than the fuzzers have memory and time for.
bool is_short(const handover::Handover& handover) {
    constexpr std::int64_t kMostFrames = 2000;
    return std::all_of(handover.objects.begin(), handover.objects.end(), [](const auto& object) {
        return object.keys.empty() || object.keys.back().frame - object.keys.front().frame <= kMostFrames;
    });
}

void check(const cli::SceneReading& reading, handover::Version version,
           const handover::HandoverOptions& options) {
    const cli::HandedOver result =
        cli::hand_over(reading, cli::find_bundle(VXR_BUNDLE_PATH), version, options);
    require(result.handover.has_value() == (result.diagnostics.empty() && result.problems.empty()),
            "a scene is handed over, or it is said why not");
    if (!result.handover) {
        return;
    }
    require_sound(handover::validate_handover(*result.handover));
    // Whatever a scene holds, its plan is a picture of a size that browsers open.
    constexpr std::size_t kLargestPlan = 32 << 20;
    const std::string plan = plan::plan_picture(*result.handover, options.cut_angle_degrees);
    require(text::is_utf8(plan) && plan.size() < kLargestPlan, "the plan of any scene is text");
    if (!is_short(*result.handover)) {
        return;
    }
    for (const cli::HandoverFormat& format : cli::handover_formats()) {
        cli::HandoverFormatOptions writing;
        writing.cut_angle_degrees = options.cut_angle_degrees;
        try {
            cli::write_handover(*result.handover, format, writing, [](std::string_view) {});
            static_cast<void>(cli::losses_of(*result.handover, format, writing));
        } catch (const std::runtime_error&) {
            // A refusal is a sound result.
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    keep_bundle();
    Input input(data, size);
    const auto left_out = input.take_value<std::uint16_t>();
    handover::HandoverOptions options;
    for (const handover::CorrectionInfo& info : handover::correction_table()) {
        if ((left_out >> static_cast<unsigned>(info.correction) & 1U) != 0) {
            options.left_out.insert(info.correction);
        }
    }
    options.cut_angle_degrees = input.take();
    put_footage_into(scratch());
    const cli::SceneReading reading = cli::read_scene(scratch().write("scene.aec", input.rest_text()));
    check(reading, handover::Version::imported, options);
    check(reading, handover::Version::corrected, options);
    return 0;
}
