#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace cli {

class Options;

/// Adds `--bundle PATH`, with the environment variable VXR_BUNDLE, to a verb that loads the plug-in.
void add_bundle_option(Options& options, std::string& path);

/// Where a bundle may be when nobody says: beside the program, as in the build folder and as installed.
std::vector<std::filesystem::path> bundle_places(const std::filesystem::path& program);

/// A bundle to load, or why there is none.
struct FoundBundle {
    std::filesystem::path path;
    std::string error;  ///< empty when there is one
};

/// `chosen` when it is not empty, else the first place with a file. The error names the places.
FoundBundle find_bundle(const std::string& chosen);

}  // namespace cli
