#pragma once

#include <cstddef>

#include "embedded/host.h"
#include "input.h"
#include "support/lost_memory.h"

/// The number of option bytes that take_host_options reads.
inline constexpr std::size_t kHostOptionBytes = 13;

/// The host that the option bytes describe:
///   0      bit 0, a classic host; then which version
///   1      the preference for unlabeled alpha; 0: absent
///   2, 3   a suite that the host does not offer, and one whose slots are empty; 0: none
///   4..12  three failing calls, each a function (0: none), the number of the call (from 1), and an error
[[nodiscard]] embedded::HostOptions take_host_options(Input& input);

/// Whether any call fails or any suite is missing or empty.
[[nodiscard]] bool has_faults(const embedded::HostOptions& options);

/// Whether the bundle may be unable to free what it owns. Deliberate: the picture of a texture lies behind a
/// memory handle, and a host that withholds that handle, or its contents, loses the picture.
[[nodiscard]] bool may_lose_memory(const embedded::HostOptions& options);

/// Keeps the built bundle in memory while hosts load and unload it, so that the fuzzer's counters stay where
/// they are. It must load.
void keep_bundle();

/// A host with the built bundle loaded. The bundle stays in memory after the host is gone.
class HostWithBundle {
  public:
    explicit HostWithBundle(const embedded::HostOptions& options);

    [[nodiscard]] bool loaded() const { return loaded_; }
    [[nodiscard]] embedded::Host& host() { return host_; }

    /// Checks the project, unloads the bundle and checks again. The bundle must keep every rule of the host;
    /// a faulty host excuses only what it makes impossible. Absurd numbers of a file may reach any host.
    void check(bool faulty);

  private:
    LostMemory lost_memory_;
    embedded::Host host_;
    bool loaded_ = false;
};
