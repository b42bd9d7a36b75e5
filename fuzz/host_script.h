#pragma once

#include <cstddef>

#include "embedded/host.h"
#include "input.h"
#include "support/lost_memory.h"

/// How many option bytes take_host_options takes.
inline constexpr std::size_t kHostOptionBytes = 13;

/// A host as the option bytes say:
///   0      bit 0, a classic host; then which version
///   1      the preference for unlabeled alpha; 0: absent
///   2, 3   a suite that is not offered, and one that is acquired as nothing; 0: none
///   4..12  three times which call fails: a function (0: none), the number of the call (from 1), an error
[[nodiscard]] embedded::HostOptions take_host_options(Input& input);

/// Whether something was made to go wrong.
[[nodiscard]] bool has_faults(const embedded::HostOptions& options);

/// Whether the host may keep from the bundle what it would give back: the picture of a texture is behind a
/// memory handle, and a host that does not show that handle, or what is behind it, loses the picture.
/// Deliberate.
[[nodiscard]] bool may_lose_memory(const embedded::HostOptions& options);

/// A host with the built bundle in it, which stays in memory when the host goes.
class HostWithBundle {
  public:
    explicit HostWithBundle(const embedded::HostOptions& options);

    [[nodiscard]] bool loaded() const { return loaded_; }
    [[nodiscard]] embedded::Host& host() { return host_; }

    /// Unloads the bundle, then: the project is sound, and the bundle has broken no rule that it keeps
    /// whatever goes wrong; and where nothing was made to, none but that absurd numbers of a file reach the
    /// host.
    void check(bool faulty);

  private:
    LostMemory lost_memory_;
    embedded::Host host_;
    bool loaded_ = false;
};
