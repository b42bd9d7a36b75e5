#include "host/bridge/basic_suite.h"

#include <cstring>

#include "host/bridge/guarded_call.h"
#include "host/bridge/pictures.h"
#include "host/bridge/reports.h"
#include "host/bridge/underlying_host.h"
#include "host/entry_points.h"

namespace bridge {
namespace {

SPBasicSuite bridge_basic_suite;

// A suite for which the bridge hands out its own table, mostly to translate the classic version to the
// current one.
struct BridgedSuite {
    const char* name;
    A_long classic_version;
    A_long current_version;
    const void* (*classic_table)();
    ReferenceCount* current;
    // Counts the host's own classic suite. Null where the bridge never hands that one out: a callback that is
    // registered past the bridge would let exceptions into the host and get a basic suite without the bridge.
    ReferenceCount* classic;
    // The table over the host's own classic suite; null where that one is handed out itself.
    const void* (*table_over_classic)() = nullptr;
    // The version that a report of the missing suite names: the least that is enough.
    A_long needed_version = current_version;
};

template <auto Suite>
const void* table_of() {
    return Suite();
}

// For the classic suites that a host may offer instead of the current ones, in the order of the rows below.
ReferenceCount classic_persistent_data;
ReferenceCount classic_proj;
ReferenceCount classic_item;
ReferenceCount classic_footage;
ReferenceCount classic_io_in;
ReferenceCount classic_io_out;

constexpr BridgedSuite kBridgedSuites[] = {
    {"AEGP Register Suite", 4, 6, table_of<register_suite>, &reference_count<AEGP_RegisterSuite6>, nullptr},
    {"AEGP File Import Manager Suite", 2, 3, table_of<file_import_manager_suite>,
     &reference_count<AEGP_FileImportManagerSuite3>, nullptr},
    {"AEGP Persistent Data Suite", 1, 3, table_of<persistent_data_suite>,
     &reference_count<AEGP_PersistentDataSuite3>, &classic_persistent_data},
    {"AEGP Proj Suite", 5, 8, table_of<proj_suite>, &reference_count<AEGP_ProjSuite8>, &classic_proj},
    {"AEGP Footage Suite", 7, 11, table_of<footage_suite>, &reference_count<AEGP_FootageSuite11>,
     &classic_footage},
    {"AEGP Item Suite", 10, 13, table_of<item_suite>, &reference_count<AEGP_ItemSuite13>, &classic_item,
     nullptr, 10},
    {"AEGP Comp Suite", 9, 15, table_of<comp_suite>, &reference_count<AEGP_CompSuite15>,
     &reference_count<AEGP_CompSuite9>, table_of<narrow_comp_suite>, 9},
    {"AEGP IO In Suite", 1, 5, table_of<io_in_suite>, &reference_count<AEGP_IOInSuite5>, &classic_io_in},
    {"AEGP IO Out Suite", 1, 7, table_of<io_out_suite>, &reference_count<AEGP_IOOutSuite7>, &classic_io_out},
    // Current hosts still offer these. The bridge adds to what their functions do (named_suites.cpp,
    // service_suites.cpp).
    {"AEGP Light Suite", 2, 2, table_of<light_suite>, &reference_count<AEGP_LightSuite2>, nullptr},
    {"AEGP Memory Suite", 1, 1, table_of<memory_suite>, &reference_count<AEGP_MemorySuite1>, nullptr},
    {"AEGP Stream Suite", 7, 7, table_of<stream_suite>, &reference_count<AEGP_StreamSuite7>, nullptr},
    {"AEGP Utility Suite", 7, 7, table_of<utility_suite>, &reference_count<AEGP_UtilitySuite7>, nullptr},
};

const BridgedSuite* bridged_suite(const char* name, A_long version) {
    for (const BridgedSuite& suite : kBridgedSuites) {
        if (name != nullptr && version == suite.classic_version && std::strcmp(name, suite.name) == 0) {
            return &suite;
        }
    }
    return nullptr;
}

// A success without a table counts as the host's missing-suite error.
A_Err acquire_from_host(const char* name, A_long version, const void** table) {
    const A_Err err = answer_of([=] { return underlying_host.basic->AcquireSuite(name, version, table); });
    return err == kHostErrorNone && *table == nullptr ? kHostErrorMissingSuite : err;
}

A_Err acquire_bridged(const BridgedSuite& suite, const void** table) {
    const void* host_table = nullptr;
    const A_Err err = acquire_from_host(suite.name, suite.current_version, &host_table);
    if (err == kHostErrorNone) {
        suite.current->add(host_table);
        *table = suite.classic_table();
        return kHostErrorNone;
    }
    // A host that has the classic suite instead of the current one is called directly: its functions are
    // those that the plug-in was written for.
    host_table = nullptr;
    if (suite.classic != nullptr &&
        acquire_from_host(suite.name, suite.classic_version, &host_table) == kHostErrorNone) {
        suite.classic->add(host_table);
        *table = suite.table_over_classic == nullptr ? host_table : suite.table_over_classic();
        return kHostErrorNone;
    }
    note_missing_suite(suite.name, suite.needed_version);
    return err;
}

A_Err acquire_suite(const char* name, A_long version, const void** table) {
    if (table == nullptr) {
        return kHostErrorParameter;
    }
    *table = nullptr;
    const BridgedSuite* bridged = bridged_suite(name, version);
    if (bridged != nullptr) {
        return acquire_bridged(*bridged, table);
    }
    const A_Err err = answer_of([=] { return underlying_host.basic->AcquireSuite(name, version, table); });
    if (err != kHostErrorNone || *table == nullptr) {
        note_missing_suite(name, version);
    }
    return err;
}

// The suite handler releases suites in its destructor, which must not throw.
A_Err release_to_host(const char* name, A_long version) {
    return answer_of([=] { return underlying_host.basic->ReleaseSuite(name, version); });
}

A_Err release_suite(const char* name, A_long version) {
    const BridgedSuite* bridged = bridged_suite(name, version);
    if (bridged == nullptr) {
        return release_to_host(name, version);
    }
    if (bridged->current->remove()) {
        return release_to_host(name, bridged->current_version);
    }
    if (bridged->classic != nullptr && bridged->classic->remove()) {
        return release_to_host(name, version);
    }
    return kHostErrorParameter;  // not held
}

}  // namespace

SPBasicSuite* basic_suite_over(const SPBasicSuite* host, AEGP_PluginID plugin_id) {
    underlying_host = {host, plugin_id, std::this_thread::get_id()};
    forget_waiting_reports();
    forget_pictures();
    for (const BridgedSuite& suite : kBridgedSuites) {
        suite.current->reset();
        if (suite.classic != nullptr) {
            suite.classic->reset();
        }
    }
    forget_registrations();
    // The plug-in calls the host's functions for memory and names directly.
    bridge_basic_suite = *host;
    bridge_basic_suite.AcquireSuite = acquire_suite;
    bridge_basic_suite.ReleaseSuite = release_suite;
    return &bridge_basic_suite;
}

const SPBasicSuite* basic_suite() {
    return &bridge_basic_suite;
}

}  // namespace bridge

A_Err EntryPointFunc(SPBasicSuite* basic, A_long majorVersion, A_long minorVersion, AEGP_PluginID pluginId,
                     AEGP_GlobalRefcon* refcon) {
    // Without it no suite can be reached, not even the one that reports.
    if (basic == nullptr) {
        return kHostErrorMissingSuite;
    }
    SPBasicSuite* bridge_suite = bridge::basic_suite_over(basic, pluginId);
    return bridge::guarded([=] {
        return Main_VORTANXR_AE(bridge_suite, majorVersion, minorVersion, nullptr, nullptr, pluginId, refcon);
    });
}
