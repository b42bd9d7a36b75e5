// "AEGP Memory Suite" 1, "AEGP Stream Suite" 7 and "AEGP Utility Suite" 7, which current hosts offer
// unchanged. The plug-in calls functions of the last two in destructors, so Forward lets no exception out.

#include "host/bridge/basic_suite.h"
#include "host/bridge/reports.h"
#include "host/bridge/spec_use.h"
#include "host/bridge/underlying_host.h"

namespace bridge {
namespace {

using Memory = AEGP_MemorySuite1;

A_Err new_mem_handle(AEGP_PluginID plugin_id, const A_char* what, AEGP_MemSize size_bytes, AEGP_MemFlag flags,
                     AEGP_MemHandle* handle) {
    if (OwnMemory* own = SpecUse::memory_for_new_handles()) {
        return own->allocate(size_bytes, handle);
    }
    return Forward<&Memory::AEGP_NewMemHandle>::call(plugin_id, what, size_bytes, flags, handle);
}

A_Err free_mem_handle(AEGP_MemHandle handle) {
    if (OwnMemory* own = SpecUse::memory_with(handle)) {
        return own->free(handle);
    }
    return Forward<&Memory::AEGP_FreeMemHandle>::call(handle);
}

A_Err lock_mem_handle(AEGP_MemHandle handle, void** address) {
    if (const OwnMemory* own = SpecUse::memory_with(handle)) {
        *address = own->address(handle);
        return kHostErrorNone;
    }
    return Forward<&Memory::AEGP_LockMemHandle>::call(handle, address);
}

A_Err unlock_mem_handle(AEGP_MemHandle handle) {
    return SpecUse::memory_with(handle) != nullptr ? kHostErrorNone
                                                   : Forward<&Memory::AEGP_UnlockMemHandle>::call(handle);
}

A_Err report_info(AEGP_PluginID plugin_id, const A_char* text) {
    if (SpecUse::reports_are_the_bridges()) {
        return kHostErrorNone;
    }
    if (!on_main_thread()) {
        keep_report(plugin_id, text);
        return kHostErrorNone;
    }
    return Forward<&AEGP_UtilitySuite7::AEGP_ReportInfo>::call(plugin_id, text);
}

}  // namespace

const AEGP_MemorySuite1* memory_suite() {
    static constexpr AEGP_MemorySuite1 kTable = [] {
        AEGP_MemorySuite1 suite = {};
        suite.AEGP_NewMemHandle = new_mem_handle;
        suite.AEGP_FreeMemHandle = free_mem_handle;
        suite.AEGP_LockMemHandle = lock_mem_handle;
        suite.AEGP_UnlockMemHandle = unlock_mem_handle;
        return suite;
    }();
    return &kTable;
}

const AEGP_StreamSuite7* stream_suite() {
    static constexpr AEGP_StreamSuite7 kTable = [] {
        using Host = AEGP_StreamSuite7;
        AEGP_StreamSuite7 suite = {};
        suite.AEGP_GetNewLayerStream = Forward<&Host::AEGP_GetNewLayerStream>::call;
        suite.AEGP_DisposeStream = Forward<&Host::AEGP_DisposeStream>::call;
        suite.AEGP_SetStreamValue = Forward<&Host::AEGP_SetStreamValue>::call;
        return suite;
    }();
    return &kTable;
}

const AEGP_UtilitySuite7* utility_suite() {
    static constexpr AEGP_UtilitySuite7 kTable = [] {
        using Host = AEGP_UtilitySuite7;
        AEGP_UtilitySuite7 suite = {};
        suite.AEGP_ReportInfo = report_info;
        suite.AEGP_StartUndoGroup = Forward<&Host::AEGP_StartUndoGroup>::call;
        suite.AEGP_EndUndoGroup = Forward<&Host::AEGP_EndUndoGroup>::call;
        return suite;
    }();
    return &kTable;
}

}  // namespace bridge
