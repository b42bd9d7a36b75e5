#include "embedded/image_library.h"

#include <filesystem>
#include <memory>

#include "system/files.h"
#include "system/program_place.h"

namespace embedded {
namespace {

constexpr const char* kModule = "vxr_image_library.so";

struct Loaded {
    std::unique_ptr<os::DynamicLibrary> module;  // null after a problem
    std::string problem;
};

Loaded load() {
    std::string looked;
    for (const std::filesystem::path& place : os::places_beside(os::program_path(), kModule)) {
        std::string why_not;
        if (os::is_regular_file(os::text_of(place), why_not)) {
            Loaded loaded;
            loaded.module = os::DynamicLibrary::open(place, loaded.problem);
            if (loaded.module == nullptr)
                loaded.problem = "images need the image library, which was not loaded: " + loaded.problem;
            return loaded;
        }
        looked += (looked.empty() ? "" : ", ") + os::text_of(place);
    }
    return {nullptr, "images need the image library, and it is in none of " + looked};
}

/// Never freed: the library's own threads and tables would have to outlive what they belong to.
const Loaded& loaded_once() {
    static const Loaded* const loaded = new Loaded(load());
    return *loaded;
}

}  // namespace

os::DynamicLibrary::Function find_in_image_library(const char* name, std::string& problem) {
    const Loaded& loaded = loaded_once();
    if (loaded.module == nullptr) {
        problem = loaded.problem;
        return nullptr;
    }
    const os::DynamicLibrary::Function function = loaded.module->function(name);
    if (function == nullptr)
        problem = std::string(kModule) + " has no function " + name + ": it is of another version";
    return function;
}

}  // namespace embedded
