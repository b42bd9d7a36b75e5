#pragma once

#include <atomic>

#include "host/today_interface.h"

// Today's suites that the bridge holds because somebody holds the classic ones. Any thread may acquire, call
// and release at any time.

namespace bridge {

/// One suite of the host's, and how often it is held.
class HeldSuite {
  public:
    /// After the host has given `table`. Hosts give the same table every time.
    void hold(const void* table) {
        table_.store(table);
        count_.fetch_add(1);
    }

    /// Before the host gets it back. False, and nothing changed, when it was not held.
    bool let_go() {
        int count = count_.load();
        while (count > 0) {
            if (count_.compare_exchange_weak(count, count - 1))
                return true;
        }
        return false;
    }

    /// Null when it is not held. The address itself is kept when the last holder lets go: clearing it could
    /// take it from somebody who has just acquired the suite again.
    [[nodiscard]] const void* table() const { return count_.load() > 0 ? table_.load() : nullptr; }

    /// Nobody holds it: for the next host.
    void reset() {
        count_.store(0);
        table_.store(nullptr);
    }

  private:
    std::atomic<const void*> table_ = nullptr;
    std::atomic<int> count_ = 0;
};

/// Today's suite with this table.
template <typename Suite>
inline HeldSuite held_suite;

/// The host's table; null when it is not held.
template <typename Suite>
const Suite* today() {
    return static_cast<const Suite*>(held_suite<Suite>.table());
}

/// A function with the classic signature that calls today's, where the two are the same:
/// Forward<&AEGP_ProjSuite8::AEGP_GetProjectByIndex>::call. 13 when the suite is not held.
template <auto Function>
struct Forward;

template <typename Suite, typename... Arguments, A_Err (*Suite::*Function)(Arguments...)>
struct Forward<Function> {
    static A_Err call(Arguments... arguments) {
        const Suite* suite = today<Suite>();
        return suite == nullptr ? kHostErrorMissingSuite : (suite->*Function)(arguments...);
    }
};

}  // namespace bridge
