// "AEGP Comp Suite" 9: compositions, and the layers that are created in them: cameras, lights and nulls.

#include <cmath>

#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err comp_from_item(AEGP_ItemH item, AEGP_CompH* comp) {
    return host_call(
        Fn::AEGP_GetCompFromItem, [&](CallValues& args) { args.handle("item", item); },
        [&](Session& session) -> A_Err {
            const Item& found = session.item(session.id(item, "item"));
            session.require_true(found.kind == ItemKind::composition, "item", "is not a composition");
            session.require(comp, "comp") = session.handles.handle<AEGP_CompH>(found.content);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("comp", *comp); });
}

A_Err item_from_comp(AEGP_CompH comp, AEGP_ItemH* item) {
    return host_call(
        Fn::AEGP_GetItemFromComp, [&](CallValues& args) { args.handle("comp", comp); },
        [&](Session& session) -> A_Err {
            const Composition& found = session.composition(session.id(comp, "comp"));
            session.require(item, "item") = session.handles.handle<AEGP_ItemH>(found.item);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("item", *item); });
}

A_Err create_comp(AEGP_ItemH parent_folder, const A_char* name, A_long width, A_long height,
                  const A_Ratio* pixel_aspect, const A_Time* duration, const A_Ratio* frame_rate,
                  AEGP_CompH* comp) {
    return host_call(
        Fn::AEGP_CreateComp,
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
            const Id parent = session.folder_id(parent_folder, "parent_folder");
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
A_Err create_centered(Fn function, LayerKind kind, const A_char* name, A_FloatPoint center, AEGP_CompH comp,
                      AEGP_LayerH* layer) {
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

A_Err create_camera(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return create_centered(Fn::AEGP_CreateCameraInComp, LayerKind::camera, name, center, comp, layer);
}

A_Err create_light(const A_char* name, A_FloatPoint center, AEGP_CompH comp, AEGP_LayerH* layer) {
    return create_centered(Fn::AEGP_CreateLightInComp, LayerKind::light, name, center, comp, layer);
}

A_Err create_null(const A_char* name, AEGP_CompH comp, const A_Time* duration, AEGP_LayerH* layer) {
    return host_call(
        Fn::AEGP_CreateNullInComp,
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
            if (duration != nullptr) {  // null: as long as the composition
                made.duration = *duration;
            }
            session.changed();
            *layer = session.handles.handle<AEGP_LayerH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("layer", *layer); });
}

}  // namespace

const AEGP_CompSuite9* comp_suite() {
    static const AEGP_CompSuite9 table = [] {
        auto suite = reserved_table<AEGP_CompSuite9, SuiteId::comp>();
        suite.AEGP_GetCompFromItem = comp_from_item;
        suite.AEGP_GetItemFromComp = item_from_comp;
        suite.AEGP_CreateCameraInComp = create_camera;
        suite.AEGP_CreateLightInComp = create_light;
        suite.AEGP_CreateComp = create_comp;
        suite.AEGP_CreateNullInComp = create_null;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
