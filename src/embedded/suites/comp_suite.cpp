// "AEGP Comp Suite" 9, in current hosts also 15: compositions, and the layers that are created in them:
// cameras, lights and nulls. A name is narrow in one version of the suite and UTF-16 in the other.

#include <cmath>

#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

template <SuiteId Suite>
A_Err comp_from_item(AEGP_ItemH item, AEGP_CompH* comp) {
    return host_call(
        {Fn::AEGP_GetCompFromItem, Suite}, [&](CallValues& args) { args.handle("item", item); },
        [&](Session& session) -> A_Err {
            const Item& found = session.item(session.id(item, "item"));
            session.require_true(found.kind == ItemKind::composition, "item", "is not a composition");
            session.require(comp, "comp") = session.handles.handle<AEGP_CompH>(found.content);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("comp", *comp); });
}

template <SuiteId Suite>
A_Err item_from_comp(AEGP_CompH comp, AEGP_ItemH* item) {
    return host_call(
        {Fn::AEGP_GetItemFromComp, Suite}, [&](CallValues& args) { args.handle("comp", comp); },
        [&](Session& session) -> A_Err {
            const Composition& found = session.composition(session.id(comp, "comp"));
            session.require(item, "item") = session.handles.handle<AEGP_ItemH>(found.item);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("item", *item); });
}

template <SuiteId Suite, class Char>
A_Err create_comp(AEGP_ItemH parent_folder, const Char* name, A_long width, A_long height,
                  const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                  AEGP_CompH* comp) {
    return host_call(
        {Fn::AEGP_CreateComp, Suite},
        [&](CallValues& args) {
            args.handle("parent_folder", parent_folder);
            args.text("name", name);
            args.integer("width", width);
            args.integer("height", height);
            args.ratio("pixel_aspect", pixel_aspect);
            args.time("duration", duration);
            args.ratio("frame_rate", frame_rate);
        },
        [&](Session& session) -> A_Err {
            const Id parent = session.parent_folder_id(parent_folder, name, "parent_folder");
            session.require(comp, "comp");
            session.require_true(width >= 1, "width", "is below 1");
            session.require_true(height >= 1, "height", "is below 1");
            Composition made;
            made.width = width;
            made.height = height;
            made.pixel_aspect = session.require_positive(pixel_aspect, "pixel_aspect");
            made.duration = session.require_time(duration, "duration");
            made.frame_rate = session.require_positive(frame_rate, "frame_rate");
            made.id = static_cast<Id>(session.project.compositions.size()) + 1;
            made.item =
                session.add_item(ItemKind::composition, session.name(name, "name"), parent, made.id).id;
            session.project.compositions.push_back(std::move(made));
            session.changed();
            *comp = session.handles.make<AEGP_CompH>();
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("comp", *comp); });
}

/// Creates a camera or light, which has a name and is centred on a point of the composition.
template <class Char>
A_Err create_centered(const CalledFunction& function, LayerKind kind, const Char* name, A_FloatPoint center,
                      AEGP_CompH comp, AEGP_LayerH* layer) {
    return host_call(
        function,
        [&](CallValues& args) {
            args.text("name", name);
            args.point("center", center);
            args.handle("comp", comp);
        },
        [&](Session& session) -> A_Err {
            const Id parent = session.id(comp, "comp");
            session.require(layer, "layer");
            session.require_true(std::isfinite(center.x) && std::isfinite(center.y), "center",
                                 "is not finite");
            Layer& made = add_layer(session, parent, kind, session.name(name, "name"), 0);
            made.center = center;
            session.changed();
            *layer = session.handles.handle<AEGP_LayerH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("layer", *layer); });
}

template <SuiteId Suite, class Char>
A_Err create_camera(const Char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return create_centered({Fn::AEGP_CreateCameraInComp, Suite}, LayerKind::camera, name, center, comp,
                           layer);
}

template <SuiteId Suite, class Char>
A_Err create_light(const Char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return create_centered({Fn::AEGP_CreateLightInComp, Suite}, LayerKind::light, name, center, comp, layer);
}

template <SuiteId Suite, class Char>
A_Err create_null(const Char* name, AEGP_CompH comp, const A_Time* duration, AEGP_LayerH* layer) {
    return host_call(
        {Fn::AEGP_CreateNullInComp, Suite},
        [&](CallValues& args) {
            args.text("name", name);
            args.handle("comp", comp);
            args.time("duration", duration);
        },
        [&](Session& session) -> A_Err {
            const Id parent = session.id(comp, "comp");
            session.require(layer, "layer");
            if (duration != nullptr) {
                session.require_time(duration, "duration");
            }
            Layer& made = add_layer(session, parent, LayerKind::null, session.name(name, "name"), 0);
            made.duration = duration != nullptr ? *duration : still_duration(session, parent);
            session.changed();
            *layer = session.handles.handle<AEGP_LayerH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("layer", *layer); });
}

template <class Table, SuiteId Suite>
Table comp_table() {
    auto suite = reserved_table<Table, Suite>();
    suite.AEGP_GetCompFromItem = comp_from_item<Suite>;
    suite.AEGP_GetItemFromComp = item_from_comp<Suite>;
    suite.AEGP_CreateCameraInComp = create_camera<Suite>;
    suite.AEGP_CreateLightInComp = create_light<Suite>;
    suite.AEGP_CreateComp = create_comp<Suite>;
    suite.AEGP_CreateNullInComp = create_null<Suite>;
    return suite;
}

}  // namespace

const AEGP_CompSuite9* comp_suite() {
    static const auto table = comp_table<AEGP_CompSuite9, SuiteId::comp>();
    return &table;
}

const AEGP_CompSuite15* unicode_comp_suite() {
    static const auto table = comp_table<AEGP_CompSuite15, SuiteId::unicode_comp>();
    return &table;
}

}  // namespace embedded
