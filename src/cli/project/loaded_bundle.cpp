#include "cli/project/loaded_bundle.h"

namespace cli {

ExitCode load_bundle(embedded::Host& host, const FoundBundle& bundle, std::string& problem) {
    embedded::LoadResult loaded;
    loaded.error = bundle.error;
    if (loaded.ok()) {
        loaded = host.load(bundle.path);
    }
    if (loaded.ok()) {
        return ExitCode::fine;
    }
    problem = "the plug-in was not loaded: " + loaded.error;
    return loaded.entry.code != kHostErrorNone ? ExitCode::refused : ExitCode::cannot_read_or_write;
}

std::string end_text(const embedded::CallbackResult& result) {
    // A classic host gets an exception, today's the error.
    return result.missing_suite || result.code == kHostErrorMissingSuite
               ? "because the host does not offer a suite"
               : "with host error " + std::to_string(result.code);
}

}  // namespace cli
