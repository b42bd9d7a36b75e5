#pragma once

#include <functional>

#include "host/entry_points.h"
#include "support/recording_host.h"

/// Takes the place of the plug-in: this program's Main_VORTANXR_AE calls `entry`.
struct BridgedPlugin {
    using Entry = std::function<A_Err(SPBasicSuite* bridge)>;

    /// The arguments of the last call of Main_VORTANXR_AE.
    struct Arguments {
        SPBasicSuite* basic;
        A_long major;
        A_long minor;
        const A_char* file_path;
        const A_char* resource_path;
        AEGP_PluginID plugin_id;
        AEGP_GlobalRefcon* refcon;
    };
    static Entry entry;
    static Arguments arguments;
};

/// Calls EntryPointFunc on this host with `entry` as the plug-in's entry point.
A_Err enter(RecordingHost& host, const BridgedPlugin::Entry& entry);

/// The bridge's basic suite in front of the host, for a plug-in whose entry point does nothing.
SPBasicSuite* bridge_over(RecordingHost& host);

/// A suite acquired from the bridge; null on failure.
template <typename Suite>
const Suite* acquired(const SPBasicSuite* bridge, const char* name, A_long version) {
    const void* table = nullptr;
    return bridge->AcquireSuite(name, version, &table) == kHostErrorNone ? static_cast<const Suite*>(table)
                                                                         : nullptr;
}

/// A handle that is never dereferenced.
template <typename Handle>
Handle some_handle(std::uintptr_t address) {
    return reinterpret_cast<Handle>(address);
}
