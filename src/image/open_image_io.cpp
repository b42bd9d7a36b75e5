// OpenImageIO behind the function table: the module vxr_image_library.so. Only this file and the two
// oiio_*.cpp include its headers. Lets no exception out.

#include <OpenImageIO/export.h>

#include <exception>
#include <string>
#include <utility>

#include "image/functions.h"
#include "image/oiio_reading.h"
#include "image/oiio_report.h"
#include "image/oiio_writing.h"

namespace image {

std::string library_reason(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) {
        text.pop_back();
    }
    return text.empty() ? "the image library gives no reason" : text;
}

namespace {

constexpr Functions kFunctions{
    Functions::kVersion,
    [](const char* path, Header* header, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return probe_with_library(path, *header, reporter); });
    },
    [](const char* path, const AlphaOptions* alpha, Texture* texture, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return read_with_library(path, *alpha, *texture, reporter); });
    },
    [](const char* path, const Texture* texture, const WriteOptions* options, Report report, void* reports) {
        const Reporter reporter(report, reports);
        return guarded(reporter, [&] { return write_with_library(path, *texture, *options, reporter); });
    },
    [](const char* path) {
        try {
            return library_has_writer(path);
        } catch (const std::exception&) {
            return false;
        }
    },
    &os::share_unfinished_files,
};

}  // namespace
}  // namespace image

OIIO_EXPORT const image::Functions* vxr_image_functions() {
    return &image::kFunctions;
}
