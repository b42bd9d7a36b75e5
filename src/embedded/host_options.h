#pragma once

// What kind of host the bundle meets, and what goes wrong in it.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/host_interface.h"

namespace embedded {

struct InterfaceVersion {
    A_long major = 11;
    A_long minor = 0;
};

struct SuiteName {
    std::string name;
    A_long version = 0;
    friend bool operator==(const SuiteName&, const SuiteName&) = default;
};

/// The `nth` call (from 1) of `function` does nothing and returns `code`.
struct Fault {
    std::string function;
    int nth = 1;
    A_Err code = kHostErrorGeneric;
};

struct HostOptions {
    InterfaceVersion version;
    std::vector<SuiteName> suites_not_offered;  ///< acquiring fails with kHostErrorMissingSuite
    std::vector<SuiteName> suites_empty;        ///< acquiring succeeds and yields nothing
    std::vector<Fault> faults;
    /// "Pref_DEFAULT_UNLABELED_ALPHA" of "Main Pref Section": absent, or this byte.
    std::optional<std::uint8_t> alpha_preference;
};

/// "9.31"; nothing when it is not two decimal numbers with a full stop between.
std::optional<InterfaceVersion> parse_interface_version(std::string_view text);

/// "AEGP Comp Suite:9"; nothing when there is no name or no version. Any name is taken.
std::optional<SuiteName> parse_suite_name(std::string_view text);

/// "AEGP_CreateComp:2:4"; nothing when a part is missing, the count is below 1, the code is 0, or the
/// function is not one of failable_functions().
std::optional<Fault> parse_fault(std::string_view text);

/// One function of this host.
struct HostFunction {
    std::string suite;
    A_long version = 0;
    std::string function;
};

/// Every function that a fault can be asked of, AcquireSuite and ReleaseSuite of "SPBasicSuite" included.
/// What returns no error code (sin, cos, strcpy) cannot fail.
const std::vector<HostFunction>& failable_functions();

/// The suites that this host offers.
const std::vector<SuiteName>& offered_suites();

}  // namespace embedded
