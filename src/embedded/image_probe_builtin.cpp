#include <fstream>

#include "embedded/image_header.h"
#include "embedded/image_probe.h"
#include "system/files.h"

namespace embedded {

std::optional<ImageFacts> probe_image(const std::string& path, std::string& error) {
    // Regular files only: opening a pipe would wait for somebody to write into it.
    if (!os::is_regular_file(path, error))
        return std::nullopt;
    std::ifstream file(os::native_path(path), std::ios::binary);
    if (!file) {
        error = "the file may not be read";
        return std::nullopt;
    }
    return read_image_header(file, path, error);
}

std::string image_library_note() {
    return std::string("This program is built without an image library: it reads the headers of ") +
           kImageHeaderFormats + " footage, which is all that an import needs, and no pixels of images.";
}

std::string image_library_problem() {
    return {};
}

}  // namespace embedded
