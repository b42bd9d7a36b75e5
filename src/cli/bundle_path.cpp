#include "cli/bundle_path.h"

#include <CLI/CLI.hpp>
#include <system_error>

#include "cli/platform.h"

namespace cli {
namespace {

constexpr const char* kBundle = "VORTANXR_AE.so";

}  // namespace

void add_bundle_option(CLI::App& app, std::string& path) {
    app.add_option("--bundle", path, "the plug-in to load instead of the one beside this program")
        ->type_name("PATH")
        ->envname("VXR_BUNDLE")
        ->group("The plug-in and its host");
}

std::vector<std::filesystem::path> bundle_places(const std::filesystem::path& program) {
    const std::filesystem::path folder = program.parent_path();
    // Installed first: VXR_INSTALLED_BUNDLE leads from the folder of programs to the bundle.
    std::vector<std::filesystem::path> places{folder / VXR_INSTALLED_BUNDLE, folder / "../lib" / kBundle,
                                              folder / kBundle};
    for (std::filesystem::path& place : places) {
        place = place.lexically_normal();
    }
    return places;
}

FoundBundle find_bundle(const std::string& chosen) {
    std::error_code error;
    if (!chosen.empty()) {
        const std::filesystem::path path = std::filesystem::absolute(chosen, error);
        return {error ? std::filesystem::path(chosen) : path, {}};
    }
    std::string looked;
    for (const std::filesystem::path& place : bundle_places(program_path())) {
        if (std::filesystem::is_regular_file(place, error)) {
            return {place, {}};
        }
        looked += (looked.empty() ? "" : ", ") + place.string();
    }
    return {{}, "no plug-in is in " + looked + "; name it with --bundle or VXR_BUNDLE"};
}

}  // namespace cli
