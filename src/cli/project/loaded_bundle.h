#pragma once

#include <string>

#include "cli/exit_codes.h"
#include "cli/project/bundle_path.h"
#include "embedded/host.h"

namespace cli {

/// Loads the bundle into the host. When that fails `problem` says why in one sentence: refused when the
/// bundle's entry point failed, cannot_read_or_write when there was nothing to load.
ExitCode load_bundle(embedded::Host& host, const FoundBundle& bundle, std::string& problem);

/// How a callback ended that did not succeed: "with host error 4".
std::string end_text(const embedded::CallbackResult& result);

}  // namespace cli
