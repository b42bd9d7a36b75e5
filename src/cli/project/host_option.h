#pragma once

#include <string>

#include "embedded/host_options.h"

namespace cli {

class Options;

/// What `--host` says when nobody does: where people work.
inline constexpr const char* kUsualHost = "today";

/// Adds `--host`, with the older name `--host-version`, to a verb that loads the plug-in.
void add_host_option(Options& options, std::string& kind);

/// A host of this kind, which add_host_option() has checked, and nothing wrong with it.
embedded::HostOptions host_of_kind(const std::string& kind);

}  // namespace cli
