// "AEGP Layer Suite" 11 and "AEGP Light Suite" 2: layers, their timing, transfer modes and kinds of light.

#include <algorithm>
#include <bit>

#include "embedded/layer_model.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err set_flag(AEGP_LayerH layer, AEGP_LayerFlags flag, A_Boolean value) {
    return host_call(
        Fn::AEGP_SetLayerFlag,
        [&](CallValues& args) {
            args.handle("layer", layer);
            args.integer("flag", flag);
            args.flag("value", value);
        },
        [&](Session& session) -> A_Err {
            Layer& changed = session.layer(session.id(layer, "layer"));
            session.require_true(flag > 0 && std::has_single_bit(static_cast<std::uint32_t>(flag)), "flag",
                                 "is not one flag");
            changed.flags = value != 0 ? (changed.flags | flag) : (changed.flags & ~flag);
            session.changed();
            return kHostErrorNone;
        });
}

A_Err set_in_point(AEGP_LayerH layer, AEGP_LTimeMode time_mode, const A_Time* in_point,
                   const A_Time* duration) {
    return host_call(
        Fn::AEGP_SetLayerInPointAndDuration,
        [&](CallValues& args) {
            args.handle("layer", layer);
            args.integer("time_mode", time_mode);
            args.time("in_point", in_point);
            args.time("duration", duration);
        },
        [&](Session& session) -> A_Err {
            Layer& changed = session.layer(session.id(layer, "layer"));
            session.require_true(time_mode == kTimeModeLayer || time_mode == kTimeModeComp, "time_mode",
                                 "is neither layer nor composition time");
            session.require_time(in_point, "in_point");
            session.require_time(duration, "duration");
            changed.in_point = *in_point;
            changed.duration = *duration;
            changed.time_mode = time_mode;
            changed.timing_set = true;
            session.changed();
            return kHostErrorNone;
        });
}

A_Err set_offset(AEGP_LayerH layer, const A_Time* offset) {
    return host_call(
        Fn::AEGP_SetLayerOffset,
        [&](CallValues& args) {
            args.handle("layer", layer);
            args.time("offset", offset);
        },
        [&](Session& session) -> A_Err {
            Layer& changed = session.layer(session.id(layer, "layer"));
            changed.offset = session.require_time(offset, "offset");
            changed.timing_set = true;
            session.changed();
            return kHostErrorNone;
        });
}

A_Err get_transfer_mode(AEGP_LayerH layer, AEGP_LayerTransferMode* mode) {
    return host_call(
        Fn::AEGP_GetLayerTransferMode, [&](CallValues& args) { args.handle("layer", layer); },
        [&](Session& session) -> A_Err {
            const Layer& asked = session.layer(session.id(layer, "layer"));
            session.require(mode, "mode") = asked.transfer;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.transfer_mode("mode", mode); });
}

A_Err set_transfer_mode(AEGP_LayerH layer, const AEGP_LayerTransferMode* mode) {
    return host_call(
        Fn::AEGP_SetLayerTransferMode,
        [&](CallValues& args) {
            args.handle("layer", layer);
            args.transfer_mode("mode", mode);
        },
        [&](Session& session) -> A_Err {
            Layer& changed = session.layer(session.id(layer, "layer"));
            session.require(mode, "mode");
            session.require_true(mode->mode >= 0, "mode", "is not a transfer mode");
            changed.transfer = *mode;
            session.changed();
            return kHostErrorNone;
        });
}

bool may_add_layer(const Session& session, Id item, Id comp) {
    return !session.refused_layers.contains({item, comp}) && can_add_layer(session.project, item, comp);
}

A_Err is_add_valid(AEGP_ItemH item, AEGP_CompH comp, A_Boolean* valid) {
    return host_call(
        Fn::AEGP_IsAddLayerValid,
        [&](CallValues& args) {
            args.handle("item", item);
            args.handle("comp", comp);
        },
        [&](Session& session) -> A_Err {
            const Id source = session.id(item, "item");
            const Id parent = session.id(comp, "comp");
            session.require(valid, "valid") = 0;
            const std::vector<int>& refused = session.options.layers_refused;
            if (std::find(refused.begin(), refused.end(), ++session.layers_asked_for) != refused.end()) {
                session.refused_layers.insert({source, parent});
            }
            *valid = may_add_layer(session, source, parent) ? 1 : 0;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.flag("valid", *valid); });
}

A_Err add_item_as_layer(AEGP_ItemH item, AEGP_CompH comp, AEGP_LayerH* layer) {
    return host_call(
        Fn::AEGP_AddLayer,
        [&](CallValues& args) {
            args.handle("item", item);
            args.handle("comp", comp);
        },
        [&](Session& session) -> A_Err {
            const Id source = session.id(item, "item");
            const Id parent = session.id(comp, "comp");
            session.require(layer, "layer");
            session.require_true(may_add_layer(session, source, parent), "item",
                                 "cannot be a layer of this composition");
            const bool is_comp = session.item(source).kind == ItemKind::composition;
            const Layer& made =
                add_layer(session, parent, is_comp ? LayerKind::composition : LayerKind::footage,
                          {session.item(source).name, session.item(source).unicode_name}, source);
            session.changed();
            *layer = session.handles.handle<AEGP_LayerH>(made.id);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("layer", *layer); });
}

A_Err set_light_type(AEGP_LayerH layer, AEGP_LightType type) {
    return host_call(
        Fn::AEGP_SetLightType,
        [&](CallValues& args) {
            args.handle("layer", layer);
            args.integer("light_type", type);
        },
        [&](Session& session) -> A_Err {
            Layer& light = session.layer(session.id(layer, "layer"));
            session.require_true(light.kind == LayerKind::light, "layer", "is not a light");
            session.require_true(type >= kLightTypeParallel && type <= kLightTypeAmbient, "light_type",
                                 "is not a light type");
            embedded::set_light_type(session, light, type);
            session.changed();
            return kHostErrorNone;
        });
}

}  // namespace

const AEGP_LayerSuite11* layer_suite() {
    static const AEGP_LayerSuite11 table = [] {
        auto suite = reserved_table<AEGP_LayerSuite11, SuiteId::layer>();
        suite.AEGP_SetLayerFlag = set_flag;
        suite.AEGP_SetLayerInPointAndDuration = set_in_point;
        suite.AEGP_SetLayerOffset = set_offset;
        suite.AEGP_GetLayerTransferMode = get_transfer_mode;
        suite.AEGP_SetLayerTransferMode = set_transfer_mode;
        suite.AEGP_IsAddLayerValid = is_add_valid;
        suite.AEGP_AddLayer = add_item_as_layer;
        return suite;
    }();
    return &table;
}

const AEGP_LightSuite2* light_suite() {
    static const AEGP_LightSuite2 table = [] {
        auto suite = reserved_table<AEGP_LightSuite2, SuiteId::light>();
        suite.AEGP_SetLightType = set_light_type;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
