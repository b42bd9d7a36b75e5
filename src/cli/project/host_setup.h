#pragma once

// From the options of a verb to an embedded host with the plug-in loaded.

#include <filesystem>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "embedded/host.h"
#include "embedded/host_options.h"

namespace cli {

class Options;

/// Adds `--bundle PATH`, with the environment variable VXR_BUNDLE, to a verb that loads the plug-in.
void add_bundle_option(Options& options, std::string& path);

/// Where the bundle may be when the user names none: beside the program, as in the build folder and as
/// installed.
[[nodiscard]] std::vector<std::filesystem::path> bundle_places(const std::filesystem::path& program);

/// A bundle to load, or why there is none.
struct FoundBundle {
    std::filesystem::path path;
    std::string error;  ///< empty when there is one
};

/// `chosen` when it is not empty, else the first place with a file. The error names the places.
[[nodiscard]] FoundBundle find_bundle(const std::string& chosen);

/// The value of `--host` without the option: the kind of host that artists use.
inline constexpr const char* kUsualHost = "today";

/// Adds `--host`, with the older name `--host-version`, to a verb that loads the plug-in.
void add_host_option(Options& options, std::string& kind);

/// The options of a host of this kind, which add_host_option() has checked. Everything else is as usual.
[[nodiscard]] embedded::HostOptions host_of_kind(const std::string& kind);

/// Loads the bundle into the host. On failure `problem` says why in one sentence: refused when the bundle's
/// entry point failed, cannot_read_or_write when there was nothing to load.
ExitCode load_bundle(embedded::Host& host, const FoundBundle& bundle, std::string& problem);

/// How a failed callback ended: "with host error 4".
[[nodiscard]] std::string end_text(const embedded::CallbackResult& result);

}  // namespace cli
