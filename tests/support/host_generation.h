#pragma once

/// Which suites and paths a host of the tests has, and which of the two entry points it calls.
enum class HostGeneration {
    classic,  ///< narrow paths, the suite versions that the plug-in is written for
    current,  ///< UTF-16 paths, seven suites in newer versions only
};
