// "AEGP Utility Suite" 7: messages and undo groups.

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {
namespace {

A_Err report_info(AEGP_PluginID plugin_id, const A_char* text) {
    return host_call(
        Fn::AEGP_ReportInfo,
        [&](CallValues& args) {
            args.integer("plugin_id", plugin_id);
            args.text("text", text);
        },
        [&](Session& session) -> A_Err {
            session.require_plugin(plugin_id);
            session.require(text, "text");
            session.require_main_thread();
            session.project.messages.push_back({text, std::nullopt});
            return kHostErrorNone;
        });
}

A_Err start_undo_group(const A_char* name) {
    return host_call(
        Fn::AEGP_StartUndoGroup, [&](CallValues& args) { args.text("name", name); },
        [&](Session& session) -> A_Err {
            session.require(name, "name");
            // Groups nest; the outermost is the step that the user sees.
            if (session.undo_depth++ == 0) {
                session.project.undo_steps.push_back({name, 0, false});
            }
            return kHostErrorNone;
        });
}

A_Err end_undo_group() {
    return host_call(
        Fn::AEGP_EndUndoGroup, [](CallValues&) {},
        [](Session& session) -> A_Err {
            if (session.undo_depth == 0) {
                session.refuse(RuleViolation::undo_group_unbalanced, "no undo group is open",
                               kHostErrorGeneric);
            }
            if (--session.undo_depth == 0) {
                session.project.undo_steps.back().closed = true;
            }
            return kHostErrorNone;
        });
}

}  // namespace

const AEGP_UtilitySuite7* utility_suite() {
    static const AEGP_UtilitySuite7 table = [] {
        auto suite = reserved_table<AEGP_UtilitySuite7, SuiteId::utility>();
        suite.AEGP_ReportInfo = report_info;
        suite.AEGP_StartUndoGroup = start_undo_group;
        suite.AEGP_EndUndoGroup = end_undo_group;
        return suite;
    }();
    return &table;
}

}  // namespace embedded
