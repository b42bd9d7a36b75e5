#include <filesystem>
#include <memory>

#include "image/functions.h"
#include "system/dynamic_library.h"
#include "system/files.h"
#include "system/program_path.h"

// Loads the module. Most of what the tools do needs no image, and binding the 250 libraries of OpenImageIO
// takes longer than most of it.

namespace image {
namespace {

constexpr const char* kModule = "vxr_image_library.so";
constexpr const char* kEntry = "vxr_image_functions";

struct Loaded {
    std::unique_ptr<os::DynamicLibrary> module;
    const Functions* functions = nullptr;  // null when there is a problem
    std::string problem;
};

Loaded open_module(const std::filesystem::path& place) {
    Loaded loaded;
    loaded.module = os::DynamicLibrary::open(place, loaded.problem);
    if (loaded.module == nullptr) {
        loaded.problem = "images need the image library, which cannot be loaded: " + loaded.problem;
        return loaded;
    }
    const auto entry = reinterpret_cast<decltype(&vxr_image_functions)>(loaded.module->function(kEntry));
    if (entry == nullptr) {
        loaded.problem =
            std::string(kModule) + " has no function " + kEntry + ": it belongs to another version";
        return loaded;
    }
    const Functions* const functions = entry();
    if (functions->version != Functions::kVersion) {
        loaded.problem = std::string(kModule) + " has version " + std::to_string(functions->version) +
                         " of the functions; this program needs version " +
                         std::to_string(Functions::kVersion);
        return loaded;
    }
    functions->share(os::unfinished_files());
    loaded.functions = functions;
    return loaded;
}

Loaded load() {
    std::string looked;
    for (const std::filesystem::path& place : os::paths_beside(os::own_program(), kModule)) {
        std::string why_not;
        if (os::is_regular_file(os::text_of(place), why_not)) {
            return open_module(place);
        }
        looked += (looked.empty() ? "" : ", ") + os::text_of(place);
    }
    return {nullptr, nullptr, "images need the image library, which is in none of " + looked};
}

}  // namespace

const Functions* library_functions(std::string& problem) {
    // Never freed: OpenImageIO has threads and tables of its own, which must not outlive its code.
    static const Loaded* const loaded = new Loaded(load());
    problem = loaded->problem;
    return loaded->functions;
}

}  // namespace image
