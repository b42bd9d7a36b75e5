// "AEGP Footage Suite" 7, in current hosts 11: files, placeholders and their interpretation.

#include <cmath>

#include "embedded/footage.h"
#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

constexpr A_long kWholeSequence = -1;  // as first or last frame: not limited

SequenceRequest request_of(Session& session, const AEGP_FileSequenceImportOptions& options) {
    SequenceRequest request;
    request.whole_folder = options.all_in_folder != 0;
    request.ignore_numbers = options.force_alphabetical != 0;
    session.require_true(options.start_frame >= kWholeSequence, "sequence_options.start_frame",
                         "is below -1");
    session.require_true(options.end_frame >= kWholeSequence, "sequence_options.end_frame", "is below -1");
    if (options.start_frame != kWholeSequence) {
        request.first = options.start_frame;
    }
    if (options.end_frame != kWholeSequence) {
        request.last = options.end_frame;
    }
    session.require_true(!request.first || !request.last || *request.first <= *request.last,
                         "sequence_options", "ends before it starts");
    return request;
}

/// A path is narrow in classic hosts and UTF-16 in current ones.
template <class Char>
A_Err new_footage(AEGP_PluginID plugin_id, const Char* path, const AEGP_FootageLayerKey* layer_key,
                  const AEGP_FileSequenceImportOptions* sequence_options, AEGP_InterpretationStyle style,
                  void* reserved, AEGP_FootageH* footage) {
    return host_call(
        Fn::AEGP_NewFootage,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.text("path", path);
            args.pointer("layer_key", layer_key);
            args.sequence_options("sequence_options", sequence_options);
            args.integer("interpretation_style", style);
            args.pointer("reserved", reserved);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            const std::string file = session.path(path, "path");
            session.require_true(layer_key == nullptr, "layer_key",
                                 "is not null, and this host has no layered files");
            session.require_true(style == kInterpretationGuessWithoutDialog, "interpretation_style",
                                 "is not 0, and this host has no dialogs");
            session.require_true(reserved == nullptr, "reserved", "is not null");
            session.require(footage, "footage");
            std::optional<SequenceRequest> sequence;
            if (sequence_options != nullptr) {
                sequence = request_of(session, *sequence_options);
            }
            const Id made = make_file_footage(session, file, sequence);
            *footage = session.handles.handle<AEGP_FootageH>(made);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("footage", *footage); });
}

A_Err new_placeholder(AEGP_PluginID plugin_id, const A_char* name, A_long width, A_long height,
                      const A_Time* duration, AEGP_FootageH* footage) {
    return host_call(
        Fn::AEGP_NewPlaceholderFootage,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.text("name", name);
            args.integer("width", width);
            args.integer("height", height);
            args.time("duration", duration);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            session.require(footage, "footage");
            session.require_true(width >= 1, "width", "is below 1");
            session.require_true(height >= 1, "height", "is below 1");
            session.require_time(duration, "duration");
            const Id made =
                make_placeholder(session, session.name(name, "name").text, width, height, *duration);
            *footage = session.handles.handle<AEGP_FootageH>(made);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("footage", *footage); });
}

A_Err add_footage(AEGP_FootageH footage, AEGP_ItemH folder, AEGP_ItemH* item) {
    return host_call(
        Fn::AEGP_AddFootageToProject,
        [&](CallValues& args) {
            args.handle("footage", footage);
            args.handle("folder", folder);
        },
        [&](Session& session) -> A_Err {
            Footage& adopted = session.footage(session.id(footage, "footage"));
            const Id parent = session.folder_id(folder, "folder");
            session.require(item, "item");
            session.require_true(adopted.item == 0, "footage", "is in the project already");
            adopted.item = session.add_item(ItemKind::footage, {adopted.name}, parent, adopted.id).id;
            session.changed();
            *item = session.handles.handle<AEGP_ItemH>(adopted.item);
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.handle("item", *item); });
}

Footage& footage_of(Session& session, AEGP_ItemH item, A_Boolean proxy) {
    const Item& found = session.item(session.id(item, "item"));
    session.require_true(found.kind == ItemKind::footage, "item", "is not footage");
    session.require_true(proxy == 0, "proxy", "is true, and this host has no proxies");
    return session.footage(found.content);
}

A_Err get_interpretation(AEGP_ItemH item, A_Boolean proxy, AEGP_FootageInterp* interpretation) {
    return host_call(
        Fn::AEGP_GetFootageInterpretation,
        [&](CallValues& args) {
            args.handle("item", item);
            args.flag("proxy", proxy);
        },
        [&](Session& session) -> A_Err {
            const Footage& footage = footage_of(session, item, proxy);
            session.require(interpretation, "interpretation") = footage.interpretation;
            return kHostErrorNone;
        },
        [&](CallValues& out) { out.interpretation("interpretation", interpretation); });
}

A_Err set_interpretation(AEGP_ItemH item, A_Boolean proxy, const AEGP_FootageInterp* interpretation) {
    return host_call(
        Fn::AEGP_SetFootageInterpretation,
        [&](CallValues& args) {
            args.handle("item", item);
            args.flag("proxy", proxy);
            args.interpretation("interpretation", interpretation);
        },
        [&](Session& session) -> A_Err {
            Footage& footage = footage_of(session, item, proxy);
            session.require(interpretation, "interpretation");
            session.require_true(interpretation->interlace.type <= kFieldTypeInterlaced, "interlace.type",
                                 "is neither whole frames nor interlaced");
            session.require_true(interpretation->interlace.order <= kFieldOrderLowerFirst, "interlace.order",
                                 "is neither upper nor lower field first");
            constexpr AEGP_AlphaFlags kKnown =
                kAlphaFlagPremultiplied | kAlphaFlagInverted | kAlphaFlagIgnore;
            session.require_true((interpretation->alpha.flags & ~kKnown) == 0, "alpha.flags",
                                 "has unknown bits");
            session.require_positive(&interpretation->pixel_aspect, "pixel_aspect");
            session.require_true(
                std::isfinite(interpretation->conform_fps) && interpretation->conform_fps >= 0.0,
                "conform_fps", "is not a frame rate");
            footage.interpretation = *interpretation;
            footage.interpretation_set = true;
            session.changed();
            return kHostErrorNone;
        });
}

template <class Table>
Table footage_table() {
    auto suite = reserved_table<Table, SuiteId::footage>();
    suite.AEGP_NewFootage = new_footage;
    suite.AEGP_AddFootageToProject = add_footage;
    suite.AEGP_GetFootageInterpretation = get_interpretation;
    suite.AEGP_SetFootageInterpretation = set_interpretation;
    suite.AEGP_NewPlaceholderFootage = new_placeholder;
    return suite;
}

}  // namespace

const AEGP_FootageSuite7* footage_suite() {
    static const auto table = footage_table<AEGP_FootageSuite7>();
    return &table;
}

const AEGP_FootageSuite11* footage_suite_of_today() {
    static const auto table = footage_table<AEGP_FootageSuite11>();
    return &table;
}

}  // namespace embedded
