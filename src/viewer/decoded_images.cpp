#include "viewer/decoded_images.h"

#include <map>
#include <utility>

#include "image/functions.h"

namespace viewer {
namespace {

struct DecodedImage {
    Texture image;
    std::string problem;  ///< why there is none
};

std::map<std::string, DecodedImage>& decoded_images() {
    static std::map<std::string, DecodedImage> images;
    return images;
}

bool read_decoded(const char* path, const image::AlphaOptions* /*alpha*/, Texture* texture,
                  image::Report report, void* reports) {
    const auto found = decoded_images().find(path);
    if (found == decoded_images().end()) {
        report(reports, image::Code::not_an_image, "the page has not decoded it");
        return false;
    }
    if (!found->second.problem.empty()) {
        report(reports, image::Code::not_an_image, found->second.problem.c_str());
        return false;
    }
    *texture = found->second.image;
    return true;
}

}  // namespace

void read_decoded_images() {
    static const image::Functions kFunctions = [] {
        image::Functions functions = image::built_in_functions();
        functions.read = &read_decoded;
        return functions;
    }();
    image::replace_built_in_functions(kFunctions);
}

void keep_decoded_image(const std::string& path, Texture image) {
    decoded_images()[path] = {std::move(image), {}};
}

void keep_undecodable_image(const std::string& path, const std::string& reason) {
    decoded_images()[path] = {{}, reason};
}

bool has_decoded_image(const std::string& path) {
    return decoded_images().contains(path);
}

void keep_only_images(const std::set<std::string>& paths) {
    std::erase_if(decoded_images(), [&](const auto& one) { return !paths.contains(one.first); });
}

}  // namespace viewer
