#pragma once

#include <functional>

#include "host/entry_points.h"
#include "support/recording_host.h"

/// Stands where the plug-in stands: this program's Main_VORTANXR_AE calls `entry`.
struct BridgedPlugin {
    using Entry = std::function<A_Err(SPBasicSuite* bridge)>;

    /// What the entry got beside the basic suite, the last time.
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

/// The result of EntryPointFunc on this host, while the plug-in's entry does this.
A_Err enter(RecordingHost& host, const BridgedPlugin::Entry& entry);

/// The bridge's basic suite over the host, for a plug-in that does nothing at its entry.
SPBasicSuite* bridge_over(RecordingHost& host);

/// A suite by the bridge; null when there is none.
template <typename Suite>
const Suite* acquired(const SPBasicSuite* bridge, const char* name, A_long version) {
    const void* table = nullptr;
    return bridge->AcquireSuite(name, version, &table) == kHostErrorNone ? static_cast<const Suite*>(table)
                                                                         : nullptr;
}

/// A handle that nobody looks into.
template <typename Handle>
Handle some_handle(std::uintptr_t address) {
    return reinterpret_cast<Handle>(address);
}
