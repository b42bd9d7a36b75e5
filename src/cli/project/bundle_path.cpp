#include "cli/project/bundle_path.h"

#include "cli/options.h"
#include "system/files.h"
#include "system/program_place.h"

namespace cli {
namespace {

constexpr const char* kBundle = VXR_BUNDLE_NAME;

}  // namespace

void add_bundle_option(Options& options, std::string& path) {
    options.option("--bundle", path, "the plug-in to load instead of the one beside this program")
        .value_name("PATH")
        .environment("VXR_BUNDLE")
        .group("The plug-in and its host");
}

std::vector<std::filesystem::path> bundle_places(const std::filesystem::path& program) {
    return os::places_beside(program, kBundle);
}

FoundBundle find_bundle(const std::string& chosen) {
    if (!chosen.empty()) {
        return {os::path_of(os::absolute_path(chosen)), {}};
    }
    std::string looked;
    for (const std::filesystem::path& place : bundle_places(os::program_path())) {
        std::string why_not;
        if (os::is_regular_file(os::text_of(place), why_not)) {
            return {place, {}};
        }
        looked += (looked.empty() ? "" : ", ") + os::text_of(place);
    }
    return {{}, "no plug-in is in " + looked + "; name it with --bundle or VXR_BUNDLE"};
}

}  // namespace cli
