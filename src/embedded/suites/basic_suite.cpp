// "SPBasicSuite", which hands out the other suites.

#include <algorithm>
#include <string>

#include "embedded/suites/host_call.h"
#include "embedded/suites/suite_tables.h"

namespace embedded {

A_Err reserved_slot_called(SuiteId suite, std::size_t slot_index) {
    if (Session* session = Session::active()) {
        session->conformance.add(
            conformance_finding(RuleViolation::reserved_slot, session->log.last(), suite_info(suite).name,
                                "slot " + std::to_string(slot_index) + " of " + session->suite_text(suite) +
                                    " was called, which this host does not have"));
    }
    return kHostErrorGeneric;
}

const void* Session::suite_table(const std::string& name, A_long version, SuiteId& suite) const {
    struct Tables {
        SuiteId id;
        const void* classic;
        const void* today;
    };
    const Tables tables[] = {
        {SuiteId::registration, registration_suite(), registration_suite_of_today()},
        {SuiteId::import_manager, import_manager_suite(), import_manager_suite_of_today()},
        {SuiteId::utility, utility_suite(), utility_suite()},
        {SuiteId::persistent_data, persistent_data_suite(), persistent_data_suite_of_today()},
        {SuiteId::project, project_suite(), project_suite_of_today()},
        {SuiteId::item, item_suite(), item_suite()},
        {SuiteId::unicode_item, nullptr, unicode_item_suite()},
        {SuiteId::footage, footage_suite(), footage_suite_of_today()},
        {SuiteId::comp, comp_suite(), comp_suite()},
        {SuiteId::unicode_comp, nullptr, unicode_comp_suite()},
        {SuiteId::layer, layer_suite(), layer_suite()},
        {SuiteId::stream, stream_suite(), stream_suite()},
        {SuiteId::keyframe, keyframe_suite(), keyframe_suite()},
        {SuiteId::light, light_suite(), light_suite()},
        {SuiteId::memory, memory_suite(), memory_suite()},
        {SuiteId::io_in, io_in_suite(), io_in_suite_of_today()},
        {SuiteId::io_out, io_out_suite(), io_out_suite_of_today()},
        {SuiteId::ansi, ansi_suite(), ansi_suite()},
        {SuiteId::adv_app, adv_app_suite(), adv_app_suite()},
    };
    for (const auto& [id, classic, today] : tables) {
        if (name == suite_info(id).name && version == suite_info(id).version(options.generation)) {
            suite = id;
            return options.generation == HostGeneration::classic ? classic : today;
        }
    }
    return nullptr;
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
            const void* table = session.suite_table(name, version, id);
            if (table == nullptr || listed(session.options.suites_not_offered, name, version)) {
                return kHostErrorMissingSuite;
            }
            if (listed(session.options.suites_empty, name, version)) {
                return kHostErrorNone;
            }
            ++session.suites_acquired[static_cast<std::size_t>(id)];
            *suite = table;
            return kHostErrorNone;
        },
        [&](CallValues& out) {
            const std::string acquired = std::string(name) + " " + std::to_string(version);
            out.text("suite", *suite == nullptr ? nullptr : acquired.c_str());
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
            if (session.suite_table(name, version, id) == nullptr ||
                session.suites_acquired[static_cast<std::size_t>(id)] == 0) {
                session.refuse(
                    RuleViolation::suite_not_acquired,
                    std::string(name) + " " + std::to_string(version) + " was released and is not acquired");
            }
            --session.suites_acquired[static_cast<std::size_t>(id)];
            return kHostErrorNone;
        });
}

}  // namespace

SPBasicSuite* basic_suite_table() {
    // Filled anew each time: the bundle could write through its pointer.
    static SPBasicSuite table;
    table = reserved_table<SPBasicSuite, SuiteId::basic>();
    table.AcquireSuite = acquire_suite;
    table.ReleaseSuite = release_suite;
    return &table;
}

void message_function(A_Err code, const A_char* text) {
    Session* session = Session::active();
    if (session == nullptr) {
        return;
    }
    CallScope call(*session, Fn::msg_func);
    if (call.logged()) {
        call.args().integer("code", code);
        call.args().text("text", text);
    }
    if (text == nullptr) {
        session->found(RuleViolation::bad_argument, "text is null");
    } else {
        session->project.messages.push_back({text, code});
    }
}

}  // namespace embedded
