#include "system/program_place.h"

namespace os {

std::vector<std::filesystem::path> places_beside(const std::filesystem::path& program,
                                                 const std::string& name) {
    const std::filesystem::path folder = program.parent_path();
    // VXR_INSTALLED_FOLDER leads from the folder of programs to the one of their own.
    std::vector<std::filesystem::path> places{folder / VXR_INSTALLED_FOLDER / name, folder / "../lib" / name,
                                              folder / name};
    for (std::filesystem::path& place : places) {
        place = place.lexically_normal();
    }
    return places;
}

}  // namespace os
