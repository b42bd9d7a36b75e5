#include "embedded/frame_driver.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <string>
#include <thread>
#include <utility>

#include "embedded/guarded_frame.h"
#include "embedded/module_driver.h"
#include "embedded/poisoned_output.h"
#include "system/threads.h"

namespace embedded {
namespace {

constexpr const char* kDraw = "AEIO_DrawSparseFrame";

bool is_current(const Session& session) {
    return session.options.generation == HostGeneration::today;
}

A_LRect whole_frame(const FrameShape& shape) {
    return {0, 0, shape.width_px, shape.height_px};
}

/// The region as the host requests it, with or without pixels.
A_LRect requested_region(const FrameShape& shape) {
    return shape.required_region.value_or(whole_frame(shape));
}

/// The pixels that the host needs. A region without pixels stands for the whole frame.
A_LRect required_region(const FrameShape& shape) {
    const A_LRect region = requested_region(shape);
    return region.left < region.right && region.top < region.bottom ? region : whole_frame(shape);
}

/// Has the module draw one frame. Without `with_flags` it gets null for the drawing flags.
CallbackResult ask_for_frame(Session& session, const Module& module, Id in_spec, const FrameShape& shape,
                             GuardedFrame& frame, bool with_flags) {
    AEIO_DrawSparseFramePB request{};
    request.quality = 1;
    request.scale_x = {1, static_cast<A_u_long>(shape.resolution_divisor)};
    request.scale_y = request.scale_x;
    request.time = shape.time;
    request.duration = {1, shape.time.scale};
    request.required_region = requested_region(shape);
    Output<AEIO_DrawingFlags> flags(session);
    const auto handle = session.handles.handle<AEIO_InSpecH>(in_spec);
    const CallbackResult drawn = session.run(kDraw, [&] {
        return module.with_functions([&](const auto& functions) {
            return functions.AEIO_DrawSparseFrame(&session.basic_data, handle, &request, &frame.world(),
                                                  with_flags ? flags.address() : nullptr);
        });
    });
    if (with_flags && drawn.code == kHostErrorNone) {
        flags.take(session, kDraw, "the drawing flags");
    }
    return drawn;
}

/// Runs `work` on another thread, where there are any, and waits for it. Passes an exception on to the
/// caller.
template <class Work>
void on_another_thread(const Work& work) {
    if (!os::kHasThreads) {
        work();
        return;
    }
    std::exception_ptr thrown;
    std::thread([&work, &thrown] {
        try {
            work();
        } catch (...) {
            thrown = std::current_exception();
        }
    }).join();
    if (thrown) {
        std::rethrow_exception(thrown);
    }
}

/// The options in the form in which the module keeps them in a file; null for nothing.
AEIO_Handle flat_options(Session& session, const Module& module, Id in_spec) {
    constexpr const char* kFlatten = "AEIO_FlattenOptions";
    Output<AEIO_Handle> flat(session);
    const auto handle = session.handles.handle<AEIO_InSpecH>(in_spec);
    const CallbackResult flattened = session.run(kFlatten, [&] {
        return module.with_functions([&](const auto& functions) {
            return functions.AEIO_FlattenOptions(&session.basic_data, handle, flat.address());
        });
    });
    return flattened.code == kHostErrorNone ? flat.take(session, kFlatten, "the handle") : nullptr;
}

/// The host owns a handle that it was given, unless the module has attached it to an in-spec.
void free_handle(Session& session, AEIO_Handle handle) {
    const HandleTable::Token* const token = session.handles.find(handle);
    if (token == nullptr || token->kind != HandleKind::memory || !token->alive) {
        return;
    }
    MemoryBlock& block = session.memory.block(token->id);
    if (block.in_spec == 0) {
        block.bytes.reset();
        session.handles.kill(HandleKind::memory, block.id);
    }
}

/// A copy of the in-spec with everything but its options.
Id copy_of(Session& session, Id in_spec) {
    InSpec made = session.in_spec(in_spec);  // not a reference: the table moves when it grows
    made.id = make_in_spec(session, made.path);
    made.copy_of = in_spec;
    made.options = 0;
    const Id copy = made.id;
    session.in_spec(copy) = std::move(made);
    return copy;
}

/// While this lives, nobody may change the copy.
class DrawnCopy {
  public:
    DrawnCopy(Session& session, Id copy) : session_(session) { session_.drawn_copy = copy; }
    ~DrawnCopy() { session_.drawn_copy = 0; }
    DrawnCopy(const DrawnCopy&) = delete;
    DrawnCopy& operator=(const DrawnCopy&) = delete;

  private:
    Session& session_;
};

CallbackResult draw_from_copy(Session& session, const Module& module, Id in_spec, const FrameShape& shape,
                              GuardedFrame& frame) {
    const AEIO_Handle flat = flat_options(session, module, in_spec);
    const Id copy = copy_of(session, in_spec);
    CallbackResult drawn;
    on_another_thread([&] {
        session.run("AEIO_InflateOptions", [&] {
            return module.with_functions([&](const auto& functions) {
                return functions.AEIO_InflateOptions(&session.basic_data,
                                                     session.handles.handle<AEIO_InSpecH>(copy), flat);
            });
        });
        {
            const DrawnCopy drawn_copy(session, copy);
            drawn = ask_for_frame(session, module, copy, shape, frame, false);
        }
        dispose_in_spec(session, copy);
    });
    free_handle(session, flat);
    return drawn;
}

CallbackResult draw_into(Session& session, const Module& module, Id in_spec, const FrameShape& shape,
                         GuardedFrame& frame) {
    return session.options.draws_from_copies() ? draw_from_copy(session, module, in_spec, shape, frame)
                                               : ask_for_frame(session, module, in_spec, shape, frame, true);
}

bool is_inside(const A_LRect& region, A_long x, A_long y) {
    return x >= region.left && x < region.right && y >= region.top && y < region.bottom;
}

/// Whether a pixel inside the region, or outside it, differs from what the frame was filled with.
bool changed(const std::vector<PF_Pixel>& pixels, const FrameShape& shape, bool inside_region) {
    const A_LRect region = required_region(shape);
    for (A_long y = 0; y < shape.height_px; ++y) {
        for (A_long x = 0; x < shape.width_px; ++x) {
            const PF_Pixel& pixel =
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(shape.width_px) +
                       static_cast<std::size_t>(x)];
            const bool filled = pixel.alpha == shape.fill && pixel.red == shape.fill &&
                                pixel.green == shape.fill && pixel.blue == shape.fill;
            if (!filled && is_inside(region, x, y) == inside_region) {
                return true;
            }
        }
    }
    return false;
}

void report(Session& session, RuleViolation violation, std::string text) {
    session.conformance.add(conformance_finding(violation, 0, kDraw, std::move(text)));
}

/// Checks a frame that the module reports as drawn.
void check_drawn_frame(Session& session, const Module& module, Id in_spec, const FrameShape& shape,
                       const std::vector<PF_Pixel>& pixels) {
    if (shape.required_region && changed(pixels, shape, false)) {
        report(session, RuleViolation::write_outside_frame,
               "pixels outside the required region were written");
    }
    if (pixels.empty() || changed(pixels, shape, true)) {
        return;
    }
    // A picture may look like the fill, but not like two different fills.
    FrameShape other = shape;
    other.fill = static_cast<std::uint8_t>(~shape.fill);
    GuardedFrame frame(other);
    if (draw_into(session, module, in_spec, other, frame).code == kHostErrorNone &&
        !changed(frame.pixels(), other, true)) {
        report(session, RuleViolation::frame_not_drawn, "the frame is as it was");
    }
}

}  // namespace

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
    session.basic_data.refcon = module.refcon;
    drawn.callback = draw_into(session, module, id, shape, frame);
    if (const auto damage = frame.damage()) {
        report(session, RuleViolation::write_outside_frame, *damage);
    }
    drawn.width_px = shape.width_px;
    drawn.height_px = shape.height_px;
    drawn.pixels = frame.pixels();
    if (is_current(session) && drawn.callback.code == kHostErrorNone) {
        check_drawn_frame(session, module, id, shape, drawn.pixels);
    }
    return drawn;
}

}  // namespace embedded
