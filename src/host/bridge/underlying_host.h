#pragma once

#include <atomic>
#include <thread>

#include "host/bridge/guarded_call.h"
#include "host/current_interface.h"

// The host that the bridge stands in front of, and its suites.

namespace bridge {

/// Written by EntryPointFunc alone, before the plug-in learns of the bridge; read by every later call, on any
/// thread.
struct UnderlyingHost {
    const SPBasicSuite* basic = nullptr;  ///< the host's own
    AEGP_PluginID plugin_id = 0;
    std::thread::id main_thread;  ///< the one that called EntryPointFunc
};

inline UnderlyingHost underlying_host;

/// Current hosts draw on other threads, where not every function of theirs may be called.
inline bool on_main_thread() {
    return std::this_thread::get_id() == underlying_host.main_thread;
}

/// One of the host's suites for the length of a scope, acquired from the host itself, whatever the bridge
/// holds.
template <typename Suite>
class HostSuite {
  public:
    HostSuite(const char* name, A_long version) : name_(name), version_(version) {
        if (answer_of([this] { return underlying_host.basic->AcquireSuite(name_, version_, &table_); }) !=
            kHostErrorNone) {
            table_ = nullptr;
        }
    }
    ~HostSuite() {
        if (table_ != nullptr) {
            answer_of([this] { return underlying_host.basic->ReleaseSuite(name_, version_); });
        }
    }
    HostSuite(const HostSuite&) = delete;
    HostSuite& operator=(const HostSuite&) = delete;

    /// Null when the host does not offer the suite.
    [[nodiscard]] const Suite* get() const { return static_cast<const Suite*>(table_); }

  private:
    const char* name_;
    A_long version_;
    const void* table_ = nullptr;
};

/// The reference count of one of the host's suites: the plug-in acquires and releases the classic suite, and
/// the bridge acquires and releases the host's with it. Any thread may acquire, call and release at any time.
class ReferenceCount {
  public:
    /// After the host has given `table`. Hosts give the same table every time.
    void add(const void* table) {
        table_.store(table);
        count_.fetch_add(1);
    }

    /// Before the host gets the suite back. False if there is no reference left to remove.
    bool remove() {
        int count = count_.load();
        while (count > 0) {
            if (count_.compare_exchange_weak(count, count - 1)) {
                return true;
            }
        }
        return false;
    }

    /// Null without a reference. The address itself stays after the last reference is removed: clearing it
    /// could take it from a thread that has just acquired the suite again.
    [[nodiscard]] const void* table() const { return count_.load() > 0 ? table_.load() : nullptr; }

    /// Removes every reference, for the next host.
    void reset() {
        count_.store(0);
        table_.store(nullptr);
    }

  private:
    std::atomic<const void*> table_ = nullptr;
    std::atomic<int> count_ = 0;
};

/// The reference count of the current suite with this table.
template <typename Suite>
inline ReferenceCount reference_count;

/// The host's table; null when the suite is not held.
template <typename Suite>
const Suite* current_suite() {
    return static_cast<const Suite*>(reference_count<Suite>.table());
}

/// A function with the classic signature that calls the current one, where the two are the same:
/// Forward<&AEGP_ProjSuite8::AEGP_GetProjectByIndex>::call. 13 when the suite is not held. Never throws.
template <auto Function>
struct Forward;

template <typename Suite, typename... Arguments, A_Err (*Suite::*Function)(Arguments...)>
struct Forward<Function> {
    static A_Err call(Arguments... arguments) {
        const Suite* suite = current_suite<Suite>();
        return suite == nullptr ? kHostErrorMissingSuite
                                : answer_of([&] { return (suite->*Function)(arguments...); });
    }
};

}  // namespace bridge
