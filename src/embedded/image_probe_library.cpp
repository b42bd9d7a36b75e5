#include "embedded/image_library.h"
#include "embedded/image_probe.h"
#include "system/files.h"

namespace embedded {
namespace {

constexpr const char* kProbe = "vxr_probe_image";

}  // namespace

std::optional<ImageFacts> probe_image(const std::string& path, std::string& error) {
    // Regular files only: opening a pipe would wait for somebody to write into it.
    if (!os::is_regular_file(path, error))
        return std::nullopt;
    const auto probe = image_library_function<decltype(vxr_probe_image)>(kProbe, error);
    ImageFacts facts;
    if (probe == nullptr || !probe(path, facts, error))
        return std::nullopt;
    return facts;
}

std::string image_library_note() {
    return {};
}

std::string image_library_problem() {
    std::string problem;
    (void)find_in_image_library(kProbe, problem);
    return problem;
}

}  // namespace embedded
