#include <cstdio>

#include "embedded/image_header.h"
#include "embedded/image_probe.h"
#include "system/files.h"
#include "system/input_file.h"

namespace embedded {

std::optional<ImageFacts> probe_image(const std::string& path, std::string& error) {
    // Regular files only: opening a pipe would wait for somebody to write into it.
    if (!os::is_regular_file(path, error))
        return std::nullopt;
    const os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        error = "the file may not be read";
        return std::nullopt;
    }
    const auto read_at = [&file](std::uint64_t offset_bytes, char* data, std::size_t bytes) {
        constexpr std::uint64_t kFarthest = std::uint64_t{1} << 62;
        return offset_bytes <= kFarthest &&
               ::fseeko(file.get(), static_cast<off_t>(offset_bytes), SEEK_SET) == 0 &&
               std::fread(data, 1, bytes, file.get()) == bytes;
    };
    return read_image_header(read_at, path, error);
}

std::string image_library_note() {
    return std::string("This program is built without an image library: it reads the headers of ") +
           kImageHeaderFormats + " footage, which is all that an import needs, and no pixels of images.";
}

std::string image_library_problem() {
    return {};
}

}  // namespace embedded
