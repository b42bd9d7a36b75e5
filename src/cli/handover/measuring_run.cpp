#include "cli/handover/measuring_run.h"

#include "cli/handover/handover_run.h"
#include "cli/scene/texture_pixel.h"
#include "handover/jsx/measuring_script.h"
#include "handover/proof/measuring_plan.h"
#include "system/files.h"
#include "text/printable.h"

namespace cli {

handover::Measuring measuring_plan_of(const SceneReading& reading) {
    std::optional<handover::TextureTrial> texture;
    if (const auto pixel = partly_covered_pixel(reading)) {
        texture = handover::TextureTrial{pixel->path, pixel->x_px, pixel->y_px, pixel->color, pixel->alpha};
    }
    return proof::measuring_plan(*reading.settings, reading.file, texture);
}

MeasuringScript measuring_script(const SceneReading& reading, const FoundBundle& bundle) {
    MeasuringScript made;
    made.file = reading.file;
    const HandedOverBoth versions = hand_over_both(reading, bundle, {});
    made.code = versions.code;
    made.diagnostics = versions.diagnostics;
    made.problems = versions.problems;
    if (!versions.imported || !versions.corrected) {
        return made;
    }
    // The camera does not depend on footage.
    if (made.code == ExitCode::footage_missing) {
        made.code = ExitCode::fine;
    }
    made.plan = measuring_plan_of(reading);
    handover::JsxOptions options;
    options.working_folder = os::absolute_path(".");
    made.script.emplace();
    handover::write_measuring_script(
        handover::measured_project(*versions.imported, *versions.corrected, made.plan), made.plan, options,
        [&](std::string_view piece) { *made.script += piece; });
    return made;
}

std::string measuring_text(const MeasuringScript& made, const std::string& path, const Paint& paint) {
    std::size_t points = 0;
    for (const handover::MeasuredCamera& camera : made.plan.cameras) {
        for (const handover::MeasuredMoment& moment : camera.moments) {
            points += moment.points.size();
        }
    }
    const std::size_t cameras = made.plan.cameras.size();
    std::string text = paint(Ink::bold, text::printable(path)) + ": " + std::to_string(points) +
                       " test points of " + std::to_string(cameras) +
                       (cameras == 1 ? " camera" : " cameras") + ", and trials of the open questions\n";
    text +=
        "  Run it in After Effects with File > Scripts > Run Script File. It writes a table beside itself.\n";
    return text + "  Then: vxr proof " + text::printable(made.file) + " --compare TABLE\n";
}

}  // namespace cli
