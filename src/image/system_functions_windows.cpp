// Images through Windows' own imaging component, for builds without an image library: PNG, TIFF, JPEG and BMP
// are read and written. The code built in reads headers and writes TGA files. Lets no exception out.

#include "image/functions.h"
#include "image/imaging_windows.h"
#include "image/reading_windows.h"
#include "image/reporter.h"
#include "image/writing_windows.h"

namespace image {
namespace {

/// Runs `work`, which throws a refusal when it fails, and reports what it throws.
template <typename Work>
bool refusing(const Reporter& reporter, const Work& work) {
    return guarded(reporter, [&] {
        try {
            work();
            return true;
        } catch (const Refusal& refusal) {
            return reporter.fail(refusal.code, refusal.reason);
        }
    });
}

/// Straight colour is kept, because most of these formats hold straight colour.
AlphaBytes bytes_of(const AlphaOptions& alpha) {
    return alpha.pixels == AlphaPixels::straight ? AlphaBytes::kept : alpha.bytes;
}

}  // namespace

const Functions& system_functions() {
    static constexpr Functions kSystemFunctions{
        Functions::kVersion,
        [](const char* path, Header* header, Report report, void* reports) {
            return built_in_functions().probe(path, header, report, reports);
        },
        [](const char* path, const AlphaOptions* alpha, Texture* texture, Report report, void* reports) {
            const Reporter reporter(report, reports);
            return refusing(reporter, [&] { read_with_windows(path, bytes_of(*alpha), *texture, reporter); });
        },
        [](const char* path, const Texture* texture, const WriteOptions* options, Report report,
           void* reports) {
            const std::string named = options->format_name(path);
            const Container* const container = container_by_extension(named.c_str());
            const Reporter reporter(report, reports);
            if (container != nullptr) {
                return refusing(reporter, [&] {
                    write_with_windows(path, *container, *texture, bytes_of(options->alpha));
                });
            }
            if (built_in_functions().can_write(named.c_str())) {
                return built_in_functions().write(path, texture, options, report, reports);
            }
            return reporter.fail(Code::no_format, "PNG, TIFF, JPEG, BMP and TGA files are written");
        },
        [](const char* path) {
            return container_by_extension(path) != nullptr || built_in_functions().can_write(path);
        },
        &os::share_unfinished_files,
    };
    return kSystemFunctions;
}

}  // namespace image
