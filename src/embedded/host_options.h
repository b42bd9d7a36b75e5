#pragma once

// Which host the bundle meets, and which of its calls fail.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_interface.h"

namespace embedded {

struct InterfaceVersion {
    A_long major = 0;
    A_long minor = 0;
    friend bool operator==(const InterfaceVersion&, const InterfaceVersion&) = default;
};

/// The generations of hosts differ in the bundle's entry point, in the versions of seven suites, and in how
/// paths are written.
enum class HostGeneration {
    classic,  ///< interface 9.x to 12.x: narrow paths
    today,    ///< 13.0 and later: UTF-16 paths
};

/// "classic", "today"
const char* generation_label(HostGeneration generation);

/// The interface version unless the options give another: 11.0 and 13.0.
InterfaceVersion usual_version(HostGeneration generation);

/// A host as a user names it.
struct HostKind {
    HostGeneration generation = HostGeneration::classic;
    InterfaceVersion version;
    friend bool operator==(const HostKind&, const HostKind&) = default;
};

struct SuiteName {
    std::string name;
    A_long version = 0;
    friend bool operator==(const SuiteName&, const SuiteName&) = default;
};

/// The `nth` call of `function`, counted from 1, does nothing and returns `code`.
struct Fault {
    std::string function;
    int nth = 1;
    A_Err code = kHostErrorGeneric;
};

struct HostOptions {
    HostGeneration generation = HostGeneration::today;
    /// Either generation takes any version; without one it has its usual one.
    std::optional<InterfaceVersion> version;
    std::vector<SuiteName> suites_not_offered;  ///< acquiring fails with kHostErrorMissingSuite
    std::vector<SuiteName> suites_empty;        ///< acquiring succeeds and yields nothing
    std::vector<Fault> faults;
    /// The calls of AEGP_IsAddLayerValid, counted from 1, that answer "no"; adding that layer then fails.
    std::vector<int> layers_refused;
    /// The preference for the length of stills, and of nulls made without a duration. Unset: as long as their
    /// composition.
    std::optional<A_Time> still_duration;
    /// The byte of "Pref_DEFAULT_UNLABELED_ALPHA" in "Main Pref Section"; without one the preference does not
    /// exist.
    std::optional<std::uint8_t> alpha_preference;

    [[nodiscard]] InterfaceVersion interface_version() const {
        return version.value_or(usual_version(generation));
    }

    /// Current hosts from interface 13.5 on draw frames on another thread, from a copy of the project.
    [[nodiscard]] bool draws_from_copies() const {
        const InterfaceVersion has = interface_version();
        return generation == HostGeneration::today && (has.major > 13 || (has.major == 13 && has.minor >= 5));
    }
};

/// "classic" or "today" with the usual version, "9.31" with its own generation, or both as in
/// "today:25.3"; nothing for any other text.
std::optional<HostKind> parse_host(std::string_view text);

/// "9.31"; nothing unless it is two decimal numbers with a full stop between them.
std::optional<InterfaceVersion> parse_interface_version(std::string_view text);

/// "AEGP Comp Suite:9"; nothing without a name or a version. Any name is accepted.
std::optional<SuiteName> parse_suite_name(std::string_view text);

/// "AEGP_CreateComp:2:4"; nothing when a part is missing, the count is below 1, the code is 0, or the
/// function is not among failable_functions().
std::optional<Fault> parse_fault(std::string_view text);

/// One function of this host.
struct HostFunction {
    std::string suite;
    std::string function;
};

/// Every function that a fault can be set for, including AcquireSuite and ReleaseSuite of "SPBasicSuite".
/// Functions without an error code (sin, cos, strcpy) cannot fail.
const std::vector<HostFunction>& failable_functions();

/// The suites that a host of this generation offers.
std::vector<SuiteName> offered_suites(HostGeneration generation);

}  // namespace embedded
