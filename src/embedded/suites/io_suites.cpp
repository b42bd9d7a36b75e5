// "AEGP IO In Suite" 1 and "AEGP IO Out Suite" 1, in current hosts 5 and 7: what input modules tell the host
// about a file, and ask about an output.

#include <cstring>
#include <type_traits>
#include <utility>

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err get_options(AEIO_InSpecH in_spec, void** options) {
    return host_call(
        Fn::AEGP_GetInSpecOptionsHandle, [&](CallValues& args) { args.handle("in_spec", in_spec); },
        [&](Session& session) -> A_Err {
            const InSpec& asked = session.in_spec(session.id(in_spec, "in_spec"));
            session.require(options, "options") =
                asked.options == 0 ? nullptr : session.handles.handle<AEGP_MemHandle>(asked.options);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("options", *options); });
}

A_Err set_options(AEIO_InSpecH in_spec, void* options, void** old_options) {
    return host_call(
        Fn::AEGP_SetInSpecOptionsHandle,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.handle("options", options);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require(old_options, "old_options");
            Id attached = 0;
            if (options != nullptr) {
                attached = session.id(static_cast<AEGP_MemHandle>(options), "options");
                const Id owner = session.memory.block(attached).in_spec;
                session.require_true(owner == 0 || owner == changed.id, "options",
                                     "is attached to another in-spec");
            }
            *old_options =
                changed.options == 0 ? nullptr : session.handles.handle<AEGP_MemHandle>(changed.options);
            if (changed.options != 0) {
                session.memory.block(changed.options).in_spec = 0;
            }
            if (attached != 0) {
                session.memory.block(attached).in_spec = changed.id;
            }
            changed.options = attached;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("old_options", *old_options); });
}

A_Err set_native_fps(AEIO_InSpecH in_spec, A_Fixed fps) {
    return host_call(
        Fn::AEGP_SetInSpecNativeFPS,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.integer("native_fps", fps);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require_true(fps > 0, "native_fps", "is not above 0");
            changed.native_fps = fps;
            return kHostErrorNone;
        });
}

A_Err set_depth(AEIO_InSpecH in_spec, A_short depth) {
    return host_call(
        Fn::AEGP_SetInSpecDepth,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.integer("depth", depth);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require_true(depth >= 1, "depth", "is below 1");
            changed.depth = depth;
            return kHostErrorNone;
        });
}

/// A size has 32 bits and a sign in classic hosts, 64 bits and none in current ones.
template <class Size>
A_Err set_size(AEIO_InSpecH in_spec, Size size_bytes) {
    return host_call(
        Fn::AEGP_SetInSpecSize,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.integer("size", size_bytes);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require_true(
                std::in_range<std::uint64_t>(size_bytes) && std::in_range<std::int64_t>(size_bytes), "size",
                std::is_signed_v<Size> ? "is negative" : "is larger than 63 bits");
            changed.size_bytes = static_cast<std::int64_t>(size_bytes);
            return kHostErrorNone;
        });
}

template <class Size>
A_Err get_size(AEIO_InSpecH in_spec, Size* size_bytes) {
    return host_call(
        Fn::AEGP_GetInSpecSize, [&](CallValues& args) { args.handle("in_spec", in_spec); },
        [&](Session& session) -> A_Err {
            const InSpec& asked = session.in_spec(session.id(in_spec, "in_spec"));
            session.require(size_bytes, "size") = static_cast<Size>(asked.size_bytes);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.integer("size", *size_bytes); });
}

/// A classic host copies a path into the caller's buffer, and fails when it does not fit.
A_Err copy_path(Session& session, const std::string& known, A_char* path) {
    session.require(path, "path");
    if (known.size() >= kClassicPathBytes) {
        return kHostErrorGeneric;
    }
    std::memcpy(path, known.c_str(), known.size() + 1);
    return kHostErrorNone;
}

A_Err get_input_path(AEIO_InSpecH in_spec, A_char* path) {
    return host_call(
        Fn::AEGP_GetInSpecFilePath, [&](CallValues& args) { args.handle("in_spec", in_spec); },
        [&](Session& session) -> A_Err {
            return copy_path(session, session.in_spec(session.id(in_spec, "in_spec")).path, path);
        },
        [&](CallValues& out) { out.text("path", path); });
}

A_Err lend_input_path(AEIO_InSpecH in_spec, AEGP_MemHandle* path) {
    return host_call(
        Fn::AEGP_GetInSpecFilePath, [&](CallValues& args) { args.handle("in_spec", in_spec); },
        [&](Session& session) -> A_Err {
            const InSpec& asked = session.in_spec(session.id(in_spec, "in_spec"));
            session.require(path, "path") = session.lend_path(asked.path);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("path", *path); });
}

A_Err set_alpha_label(AEIO_InSpecH in_spec, const AEIO_AlphaLabel* label) {
    return host_call(
        Fn::AEGP_SetInSpecAlphaLabel,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.alpha_label("alpha_label", label);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require(label, "alpha_label");
            session.require_true(label->alpha_type <= kAlphaTypeNone, "alpha_label.alpha_type",
                                 "is not an alpha type");
            changed.alpha_label = *label;
            return kHostErrorNone;
        });
}

A_Err set_duration(AEIO_InSpecH in_spec, const A_Time* duration) {
    return host_call(
        Fn::AEGP_SetInSpecDuration,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.time("duration", duration);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            changed.duration = session.require_time(duration, "duration");
            return kHostErrorNone;
        });
}

A_Err set_dimensions(AEIO_InSpecH in_spec, A_long width, A_long height) {
    return host_call(
        Fn::AEGP_SetInSpecDimensions,
        [&](CallValues& args) {
            args.handle("in_spec", in_spec);
            args.integer("width", width);
            args.integer("height", height);
        },
        [&](Session& session) -> A_Err {
            InSpec& changed = session.in_spec_to_change(in_spec);
            session.require_true(width >= 1, "width", "is below 1");
            session.require_true(height >= 1, "height", "is below 1");
            changed.width = width;
            changed.height = height;
            return kHostErrorNone;
        });
}

const std::string& output_path(Session& session, AEIO_OutSpecH out_spec) {
    return session.out_spec_paths[Project::index(session.id(out_spec, "out_spec"))];
}

A_Err get_output_path(AEIO_OutSpecH out_spec, A_char* path) {
    return host_call(
        Fn::AEGP_GetOutSpecFilePath, [&](CallValues& args) { args.handle("out_spec", out_spec); },
        [&](Session& session) -> A_Err { return copy_path(session, output_path(session, out_spec), path); },
        [&](CallValues& out) { out.text("path", path); });
}

A_Err lend_output_path(AEIO_OutSpecH out_spec, AEGP_MemHandle* path, A_Boolean* reserved) {
    return host_call(
        Fn::AEGP_GetOutSpecFilePath, [&](CallValues& args) { args.handle("out_spec", out_spec); },
        [&](Session& session) -> A_Err {
            const std::string& known = output_path(session, out_spec);
            session.require(path, "path");
            session.require(reserved, "reserved") = 0;
            *path = session.lend_path(known);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("path", *path); });
}

template <class Table, class PathFunction>
Table filled_in_table(PathFunction* path_function) {
    auto suite = reserved_table<Table, SuiteId::io_in>();
    suite.AEGP_GetInSpecOptionsHandle = get_options;
    suite.AEGP_SetInSpecOptionsHandle = set_options;
    suite.AEGP_GetInSpecFilePath = path_function;
    suite.AEGP_SetInSpecNativeFPS = set_native_fps;
    suite.AEGP_SetInSpecDepth = set_depth;
    suite.AEGP_GetInSpecSize = get_size;
    suite.AEGP_SetInSpecSize = set_size;
    suite.AEGP_SetInSpecAlphaLabel = set_alpha_label;
    suite.AEGP_SetInSpecDuration = set_duration;
    suite.AEGP_SetInSpecDimensions = set_dimensions;
    return suite;
}

}  // namespace

const AEGP_IOInSuite1* io_in_suite() {
    static const auto table = filled_in_table<AEGP_IOInSuite1>(get_input_path);
    return &table;
}

const AEGP_IOInSuite5* io_in_suite_of_today() {
    static const auto table = filled_in_table<AEGP_IOInSuite5>(lend_input_path);
    return &table;
}

const AEGP_IOOutSuite1* io_out_suite() {
    static const AEGP_IOOutSuite1 table = [] {
        auto suite = reserved_table<AEGP_IOOutSuite1, SuiteId::io_out>();
        suite.AEGP_GetOutSpecFilePath = get_output_path;
        return suite;
    }();
    return &table;
}

const AEGP_IOOutSuite7* io_out_suite_of_today() {
    static const AEGP_IOOutSuite7 table = [] {
        auto suite = reserved_table<AEGP_IOOutSuite7, SuiteId::io_out>();
        suite.AEGP_GetOutSpecFilePath = lend_output_path;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
