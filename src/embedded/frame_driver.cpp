#include "embedded/frame_driver.h"

#include "embedded/guarded_frame.h"

namespace embedded {

DrawResult draw_frame(Session& session, Id id, const FrameShape& shape) {
    DrawResult drawn;
    if (id < 1 || Project::index(id) >= session.project.in_specs.size() || session.in_spec(id).disposed) {
        drawn.error = "no open in-spec with this id";
        return drawn;
    }
    const Module* found = nullptr;
    for (const Module& module : session.modules) {
        if (module.info.signature == session.in_spec(id).module_signature) {
            found = &module;
        }
    }
    if (found == nullptr) {
        drawn.error = "no module serves this in-spec";
        return drawn;
    }
    drawn.error = GuardedFrame::problem_with(shape);
    if (!drawn.error.empty()) {
        return drawn;
    }

    const Module module = *found;
    GuardedFrame frame(shape);
    AEIO_DrawSparseFramePB request{};
    request.quality = 1;
    request.scale_x = {1, 1};
    request.scale_y = {1, 1};
    request.time = shape.time;
    request.duration = {1, shape.time.scale};
    request.required_region = {0, 0, shape.width_px, shape.height_px};
    AEIO_DrawingFlags flags = 0;
    session.basic_data.refcon = module.refcon;
    const auto handle = session.handles.handle<AEIO_InSpecH>(id);
    drawn.callback = session.run("AEIO_DrawSparseFrame", [&] {
        return module.with_functions([&](const auto& functions) {
            return functions.AEIO_DrawSparseFrame(&session.basic_data, handle, &request, &frame.world(),
                                                  &flags);
        });
    });
    if (const auto damage = frame.damage()) {
        session.conformance.add(
            conformance_finding(RuleViolation::write_outside_frame, 0, "AEIO_DrawSparseFrame", *damage));
    }
    drawn.width_px = shape.width_px;
    drawn.height_px = shape.height_px;
    drawn.pixels = frame.pixels();
    return drawn;
}

}  // namespace embedded
