#pragma once

// The function table of every suite, one source file each. The tables live as long as the process. Every slot
// that this host does not implement holds a function of its own that reports which slot was called and fails.

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

#include "embedded/suites/functions.h"
#include "host/current_interface.h"
#include "host/host_interface.h"

namespace embedded {

const AEGP_RegisterSuite4* registration_suite();
const AEGP_RegisterSuite6* registration_suite_of_today();
const AEGP_FileImportManagerSuite2* import_manager_suite();
const AEGP_FileImportManagerSuite3* import_manager_suite_of_today();
const AEGP_UtilitySuite7* utility_suite();
const AEGP_PersistentDataSuite1* persistent_data_suite();
const AEGP_PersistentDataSuite3* persistent_data_suite_of_today();
const AEGP_ProjSuite5* project_suite();
const AEGP_ProjSuite8* project_suite_of_today();
const AEGP_ItemSuite10* item_suite();
const AEGP_ItemSuite13* unicode_item_suite();
const AEGP_FootageSuite7* footage_suite();
const AEGP_FootageSuite11* footage_suite_of_today();
const AEGP_CompSuite9* comp_suite();
const AEGP_CompSuite15* unicode_comp_suite();
const AEGP_LayerSuite11* layer_suite();
const AEGP_StreamSuite7* stream_suite();
const AEGP_KeyframeSuite3* keyframe_suite();
const AEGP_LightSuite2* light_suite();
const AEGP_MemorySuite1* memory_suite();
const AEGP_IOInSuite1* io_in_suite();
const AEGP_IOInSuite5* io_in_suite_of_today();
const AEGP_IOOutSuite1* io_out_suite();
const AEGP_IOOutSuite7* io_out_suite_of_today();
const PF_ANSISuite1* ansi_suite();
const PF_AEAdvAppSuite1* adv_app_suite();

/// Reports the call and returns kHostErrorGeneric.
A_Err reserved_slot_called(SuiteId suite, std::size_t slot_index);

/// The function in slot `Slot`. It takes no arguments and ignores those that the caller passed.
template <SuiteId Suite, std::size_t Slot>
A_Err reserved_slot() {
    return reserved_slot_called(Suite, Slot);
}

template <SuiteId Suite, std::size_t... Slots>
std::array<ReservedSlot, sizeof...(Slots)> reserved_slots(std::index_sequence<Slots...>) {
    return {reinterpret_cast<ReservedSlot>(&reserved_slot<Suite, Slots>)...};
}

/// A table whose slots are all reserved; the suite then sets those that it implements.
template <class Table, SuiteId Suite>
Table reserved_table() {
    static_assert(sizeof(Table) % sizeof(ReservedSlot) == 0);
    return std::bit_cast<Table>(
        reserved_slots<Suite>(std::make_index_sequence<sizeof(Table) / sizeof(ReservedSlot)>()));
}

}  // namespace embedded
