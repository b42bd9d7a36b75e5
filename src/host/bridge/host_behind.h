#pragma once

#include "host/host_interface.h"

// The host that the bridge stands before. Written by EntryPointFunc alone, before the plug-in is told about
// the bridge; read by every call after that, from any thread.

namespace bridge {

struct HostBehind {
    const SPBasicSuite* basic = nullptr;  ///< the host's own
    AEGP_PluginID plugin_id = 0;
};

inline HostBehind host_behind;

/// One of the host's suites for the length of a scope; it is acquired from the host itself, whatever the
/// bridge holds.
template <typename Suite>
class HostSuite {
  public:
    HostSuite(const char* name, A_long version) : name_(name), version_(version) {
        if (host_behind.basic->AcquireSuite(name, version, &table_) != kHostErrorNone)
            table_ = nullptr;
    }
    ~HostSuite() {
        if (table_ != nullptr)
            host_behind.basic->ReleaseSuite(name_, version_);
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

}  // namespace bridge
