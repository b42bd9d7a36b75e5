#pragma once

// Function tables. Every slot of a table that this host does not implement holds a function of its own that
// reports which slot was called and fails.

#include <array>
#include <bit>
#include <cstddef>
#include <utility>

#include "embedded/suites/functions.h"
#include "host/host_interface.h"

namespace embedded {

/// Reports the call; kHostErrorGeneric.
A_Err reserved_slot_called(SuiteId suite, std::size_t slot_index);

/// Stands in slot `Slot`. Takes no arguments: whatever the caller passed is left where the calling convention
/// put it.
template <SuiteId Suite, std::size_t Slot>
A_Err reserved_slot() {
    return reserved_slot_called(Suite, Slot);
}

template <SuiteId Suite, std::size_t... Slots>
std::array<ReservedSlot, sizeof...(Slots)> reserved_slots(std::index_sequence<Slots...>) {
    return {reinterpret_cast<ReservedSlot>(&reserved_slot<Suite, Slots>)...};
}

/// A table of which every slot is reserved; the suite then puts its functions into the slots that it has.
template <class Table, SuiteId Suite>
Table reserved_table() {
    static_assert(sizeof(Table) % sizeof(ReservedSlot) == 0);
    return std::bit_cast<Table>(
        reserved_slots<Suite>(std::make_index_sequence<sizeof(Table) / sizeof(ReservedSlot)>()));
}

}  // namespace embedded
