#pragma once

// What tests do to a host and its users do not: stand where a bundle stands, without one, and act between
// host and bundle.

#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "embedded/host.h"

namespace embedded {

/// Where control passes between the host and the bundle.
enum class Passage { call_begins, call_ends, callback_begins, callback_ends };

/// Is told of every passage. `what` is the function's name for a call into the host, before anything is done
/// and after everything is done, and for a callback the name that findings give it. Must not throw.
using Watcher = std::function<void(Passage passage, std::string_view what)>;

class TestHost : public Host {
  public:
    explicit TestHost(HostOptions options = {}) : Host(std::move(options)) {}

    /// Null ends the watch.
    void watch(Watcher watcher);

    /// Calls an entry point that is already in this process. Throws std::logic_error when it is not one for
    /// the host's generation.
    LoadResult load_entry(AEGP_PluginInitFunc entry);
    LoadResult load_entry(AEGP_PluginInitFuncCurrent entry);

    // --- what a bundle is given

    [[nodiscard]] SPBasicSuite* basic_suite();
    /// Acquires a suite and leaves it acquired. Null if the host does not offer it.
    template <class Table>
    const Table* acquire(const char* name, A_long version) {
        const void* table = nullptr;
        basic_suite()->AcquireSuite(name, version, &table);
        return static_cast<const Table*>(table);
    }
    [[nodiscard]] AEGP_PluginID plugin_id() const;
    /// The first argument of every function of an input module.
    [[nodiscard]] AEIO_BasicData* basic_data();
    /// A new, empty in-spec for `path`; disposed of like the others.
    Id new_in_spec(const std::string& path);
    [[nodiscard]] AEIO_InSpecH in_spec_handle(Id in_spec) const;
    /// A new out-spec whose file path is `path`.
    AEIO_OutSpecH new_out_spec(const std::string& path);

    /// Runs `body` as the host runs a callback: the missing-suite exception becomes a result, any other
    /// exception goes on to the caller, and afterwards the rules are checked. Findings give it as `name`.
    CallbackResult run(const std::string& name, const std::function<A_Err()>& body);
};

}  // namespace embedded
