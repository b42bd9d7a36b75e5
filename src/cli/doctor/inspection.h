#pragma once

#include <functional>
#include <string>

#include "cli/doctor/diagnosis.h"
#include "embedded/host_options.h"

namespace cli::doctor {

/// Loads a file in the embedded host of a generation; the program uses load_apart() of load_test.h.
using RunLoadTest = std::function<LoadTest(const std::string& binary, embedded::HostGeneration generation)>;

/// Which plug-ins are loaded: loading runs code of the file.
enum class Loading {
    never,
    ours,  ///< those with the entry that is called after VORTAN XR
    any,
};

/// Reads a bundle, which is a file or a macOS folder, as each kind of host does, and loads it if that is
/// wanted and possible here.
[[nodiscard]] Diagnosis inspect(const std::string& bundle, const RunLoadTest& run_load_test,
                                Loading loading = Loading::any);

}  // namespace cli::doctor
