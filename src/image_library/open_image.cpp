#include "image_library/open_image.h"

#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "system/files.h"
#include "system/open_regular_file.h"

namespace image_library {
namespace {

/// The library's name of the format that files with the extension of `path` have; empty when it knows none.
std::string format_by_extension(const std::string& path) {
    static const std::map<std::string, std::vector<std::string>> kFormats = OIIO::get_extension_map();
    std::string extension = os::text_of(os::path_of(path).extension());
    if (extension.empty()) {
        return {};
    }
    extension = OIIO::Strutil::lower(extension.substr(1));
    for (const auto& [format, extensions] : kFormats) {
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end()) {
            return format;
        }
    }
    return {};
}

}  // namespace

OpenImage OpenImage::open(const std::string& path, const OIIO::ImageSpec& config, std::string& error) {
    os::InputFile file = os::open_input_file(path);
    if (file == nullptr) {
        if (os::is_regular_file(path, error)) {
            error = "the file may not be read";
        }
        return {};
    }
    const std::string name = os::name_of_open_file(file.get(), path.c_str());
    // Where the name is another, the library does not see the extension by which it would choose. It asks all
    // formats in turn when it is not told one, or when that one fails.
    error.clear();
    if (const std::string format = format_by_extension(path); !format.empty()) {
        OIIO::ImageSpec spec;
        if (auto input = OIIO::ImageInput::create(format); input != nullptr) {
            if (input->open(name, spec, config)) {
                return {std::move(file), std::move(input)};
            }
            error = input->geterror();
        }
        (void)OIIO::geterror();  // so that it is not told for the next file
    }
    if (auto input = OIIO::ImageInput::open(name, &config); input != nullptr) {
        return {std::move(file), std::move(input)};
    }
    const std::string last = OIIO::geterror();
    error = OIIO::Strutil::replace(error.empty() ? last : error, name, path, true);
    return {std::move(file), nullptr};
}

}  // namespace image_library
