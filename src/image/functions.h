#pragma once

#include <cstdint>
#include <string>

#include "image/image.h"
#include "system/signal_cleanup.h"

// The function table between image.h and what implements it: the OpenImageIO module, Windows' own imaging
// component, or the code built in.

namespace image {

/// Receives one error or warning. `reason` is copied.
using Report = void (*)(void* reports, Code code, const char* reason);

/// Plain C functions. `path` names a file as in system/files.h. False means failure, after exactly one error
/// was reported. The module lets no exception out and reports it as `gave_up` instead. Module and program are
/// built together, so both know the types; `version` guards against a module of another build.
struct Functions {
    static constexpr std::uint32_t kVersion = 4;  // raise it with every change of the table or of its types

    std::uint32_t version;
    bool (*probe)(const char* path, Header* header, Report report, void* reports);
    /// Reports warnings on success.
    bool (*read)(const char* path, const AlphaOptions* alpha, Texture* texture, Report report, void* reports);
    /// Reports warnings on success.
    bool (*write)(const char* path, const Texture* texture, const WriteOptions* options, Report report,
                  void* reports);
    bool (*can_write)(const char* path);
    /// Called once, before all others: the files that this code writes are the program's to clean up.
    void (*share)(os::UnfinishedFiles& of_program);
};

/// The functions of the module, which is loaded on the first call and never unloaded. Null when there is no
/// module beside the program, or it cannot be loaded or has another version; `problem` then says so and where
/// it was looked for.
[[nodiscard]] const Functions* library_functions(std::string& problem);

/// What is there without a library: headers of common formats, no pixels, and TGA files to write.
[[nodiscard]] const Functions& built_in_functions();

/// Has builds without a library use these instead: for a program whose pixels come from elsewhere. Call it
/// before any image is looked at; `functions` lives as long as the program.
void replace_built_in_functions(const Functions& functions);

#if defined(_WIN32)
/// What Windows' own imaging component can do: PNG, TIFF, JPEG and BMP are read and written. The rest is
/// built in.
[[nodiscard]] const Functions& system_functions();
#endif

}  // namespace image

/// The one function that the module exports.
extern "C" const image::Functions* vxr_image_functions();
