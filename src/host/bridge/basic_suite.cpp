#include "host/bridge/basic_suite.h"

#include <cstring>

#include "host/bridge/classic_suites.h"
#include "host/bridge/guarded_call.h"
#include "host/bridge/held_suites.h"
#include "host/bridge/host_behind.h"

namespace bridge {
namespace {

SPBasicSuite bridge_basic_suite;

// A suite that the bridge knows in two versions.
struct BridgedSuite {
    const char* name;
    A_long classic_version;
    A_long today_version;
    const void* (*classic_table)();
    HeldSuite* today;
    // How often the host's own classic suite was handed out. Null where that never happens: a callback that
    // is registered past the bridge would let exceptions into the host, and get a basic suite without the
    // bridge.
    HeldSuite* classic;
};

template <auto Suite>
const void* table_of() {
    return Suite();
}

// The host's own classic suites. In the order of the rows below.
HeldSuite classic_persistent_data;
HeldSuite classic_proj;
HeldSuite classic_footage;
HeldSuite classic_io_in;
HeldSuite classic_io_out;

constexpr BridgedSuite kBridgedSuites[] = {
    {"AEGP Register Suite", 4, 6, table_of<register_suite>, &held_suite<AEGP_RegisterSuite6>, nullptr},
    {"AEGP File Import Manager Suite", 2, 3, table_of<file_import_manager_suite>,
     &held_suite<AEGP_FileImportManagerSuite3>, nullptr},
    {"AEGP Persistent Data Suite", 1, 3, table_of<persistent_data_suite>,
     &held_suite<AEGP_PersistentDataSuite3>, &classic_persistent_data},
    {"AEGP Proj Suite", 5, 8, table_of<proj_suite>, &held_suite<AEGP_ProjSuite8>, &classic_proj},
    {"AEGP Footage Suite", 7, 11, table_of<footage_suite>, &held_suite<AEGP_FootageSuite11>,
     &classic_footage},
    {"AEGP IO In Suite", 1, 5, table_of<io_in_suite>, &held_suite<AEGP_IOInSuite5>, &classic_io_in},
    {"AEGP IO Out Suite", 1, 7, table_of<io_out_suite>, &held_suite<AEGP_IOOutSuite7>, &classic_io_out},
};

const BridgedSuite* bridged_suite(const char* name, A_long version) {
    for (const BridgedSuite& suite : kBridgedSuites)
        if (name != nullptr && version == suite.classic_version && std::strcmp(name, suite.name) == 0)
            return &suite;
    return nullptr;
}

// The host's suite. A success that yields nothing counts as the host's missing-suite error.
A_Err acquire_from_host(const char* name, A_long version, const void** table) {
    const A_Err err = host_behind.basic->AcquireSuite(name, version, table);
    return err == kHostErrorNone && *table == nullptr ? kHostErrorMissingSuite : err;
}

A_Err acquire_bridged(const BridgedSuite& suite, const void** table) {
    const void* host_table = nullptr;
    const A_Err err = acquire_from_host(suite.name, suite.today_version, &host_table);
    if (err == kHostErrorNone) {
        suite.today->hold(host_table);
        *table = suite.classic_table();
        return kHostErrorNone;
    }
    // A host between the generations, which has the classic suite in place of today's, is understood as it
    // is: its functions are those that the plug-in was written for.
    host_table = nullptr;
    if (suite.classic != nullptr &&
        acquire_from_host(suite.name, suite.classic_version, &host_table) == kHostErrorNone) {
        suite.classic->hold(host_table);
        *table = host_table;
        return kHostErrorNone;
    }
    note_missing_suite(suite.name, suite.today_version);
    return err;
}

A_Err acquire_suite(const char* name, A_long version, const void** table) {
    if (table == nullptr)
        return kHostErrorParameter;
    *table = nullptr;
    const BridgedSuite* bridged = bridged_suite(name, version);
    if (bridged != nullptr)
        return acquire_bridged(*bridged, table);
    const A_Err err = host_behind.basic->AcquireSuite(name, version, table);
    if (err != kHostErrorNone || *table == nullptr)
        note_missing_suite(name, version);
    return err;
}

A_Err release_suite(const char* name, A_long version) {
    const BridgedSuite* bridged = bridged_suite(name, version);
    if (bridged == nullptr)
        return host_behind.basic->ReleaseSuite(name, version);
    if (bridged->today->let_go())
        return host_behind.basic->ReleaseSuite(name, bridged->today_version);
    if (bridged->classic != nullptr && bridged->classic->let_go())
        return host_behind.basic->ReleaseSuite(name, version);
    return kHostErrorParameter;  // it is not held
}

}  // namespace

SPBasicSuite* basic_suite_over(const SPBasicSuite* host, AEGP_PluginID plugin_id) {
    host_behind = {host, plugin_id};
    for (const BridgedSuite& suite : kBridgedSuites) {
        suite.today->reset();
        if (suite.classic != nullptr)
            suite.classic->reset();
    }
    forget_registrations();
    // The host's functions for memory and names are called by the plug-in as they are.
    bridge_basic_suite = *host;
    bridge_basic_suite.AcquireSuite = acquire_suite;
    bridge_basic_suite.ReleaseSuite = release_suite;
    return &bridge_basic_suite;
}

const SPBasicSuite* basic_suite() {
    return &bridge_basic_suite;
}

}  // namespace bridge
