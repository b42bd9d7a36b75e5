// "SPBasicSuite": hands out the others.

#include <algorithm>
#include <string>

#include "embedded/suites/host_call.h"
#include "embedded/suites/reserved_slots.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {

A_Err reserved_slot_called(SuiteId suite, std::size_t slot_index) {
    if (Session* session = Session::active()) {
        const SuiteInfo& info = suite_info(suite);
        session->discipline.add({Breach::reserved_slot, session->log.last(), info.name,
                                 "slot " + std::to_string(slot_index) + " of " + info.name + " " +
                                     std::to_string(info.version) +
                                     " was called, which this host does not have"});
    }
    return kHostErrorGeneric;
}

const void* Session::suite_table(const std::string& name, A_long version, SuiteId& suite) {
    const std::pair<SuiteId, const void*> tables[] = {
        {SuiteId::registration, registration_suite()},
        {SuiteId::import_manager, import_manager_suite()},
        {SuiteId::utility, utility_suite()},
        {SuiteId::persistent_data, persistent_data_suite()},
        {SuiteId::project, project_suite()},
        {SuiteId::item, item_suite()},
        {SuiteId::footage, footage_suite()},
        {SuiteId::comp, comp_suite()},
        {SuiteId::layer, layer_suite()},
        {SuiteId::stream, stream_suite()},
        {SuiteId::keyframe, keyframe_suite()},
        {SuiteId::light, light_suite()},
        {SuiteId::memory, memory_suite()},
        {SuiteId::io_in, io_in_suite()},
        {SuiteId::io_out, io_out_suite()},
        {SuiteId::ansi, ansi_suite()},
        {SuiteId::adv_app, adv_app_suite()},
    };
    for (const auto& [id, table] : tables) {
        if (name == suite_info(id).name && version == suite_info(id).version) {
            suite = id;
            return table;
        }
    }
    return nullptr;
}

const std::vector<SuiteName>& offered_suites() {
    static const std::vector<SuiteName> suites = [] {
        std::vector<SuiteName> all;
        for (const SuiteInfo& info : kSuites) {
            if (info.version != 0)
                all.push_back({info.name, info.version});
        }
        return all;
    }();
    return suites;
}

namespace {

bool listed(const std::vector<SuiteName>& suites, const char* name, A_long version) {
    return std::find(suites.begin(), suites.end(), SuiteName{name, version}) != suites.end();
}

A_Err acquire_suite(const char* name, A_long version, const void** suite) {
    return host_call(
        Fn::AcquireSuite,
        [&](CallValues& args) {
            args.text("name", name);
            args.integer("version", version);
        },
        [&](Session& session) -> A_Err {
            session.require(name, "name");
            session.require(suite, "suite") = nullptr;
            SuiteId id{};
            const void* table = Session::suite_table(name, version, id);
            if (table == nullptr || listed(session.options.suites_not_offered, name, version))
                return kHostErrorMissingSuite;
            if (listed(session.options.suites_empty, name, version))
                return kHostErrorNone;
            ++session.suites_acquired[static_cast<std::size_t>(id)];
            *suite = table;
            return kHostErrorNone;
        },
        [&](CallValues& out) {
            out.json("suite", *suite == nullptr
                                  ? Json()
                                  : json_text(std::string(name) + " " + std::to_string(version)));
        });
}

A_Err release_suite(const char* name, A_long version) {
    return host_call(
        Fn::ReleaseSuite,
        [&](CallValues& args) {
            args.text("name", name);
            args.integer("version", version);
        },
        [&](Session& session) -> A_Err {
            session.require(name, "name");
            SuiteId id{};
            if (Session::suite_table(name, version, id) == nullptr ||
                session.suites_acquired[static_cast<std::size_t>(id)] == 0)
                session.refuse(Breach::suite_not_acquired, std::string(name) + " " + std::to_string(version) +
                                                               " was released and is not acquired");
            --session.suites_acquired[static_cast<std::size_t>(id)];
            return kHostErrorNone;
        });
}

}  // namespace

SPBasicSuite* basic_suite_table() {
    // Filled anew every time: the bundle holds a pointer that it may write through.
    static SPBasicSuite table;
    table = reserved_table<SPBasicSuite, SuiteId::basic>();
    table.AcquireSuite = acquire_suite;
    table.ReleaseSuite = release_suite;
    return &table;
}

void message_function(A_Err code, const A_char* text) {
    Session* session = Session::active();
    if (session == nullptr)
        return;
    CallScope call(*session, Fn::msg_func);
    if (call.logged()) {
        call.args().integer("code", code);
        call.args().text("text", text);
    }
    if (text == nullptr)
        session->found(Breach::bad_argument, "text is null");
    else
        session->project.messages.push_back({text, code});
}

}  // namespace embedded
