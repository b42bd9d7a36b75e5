// Imports a file through the built bundle in the embedded host. The option bytes choose the host and its
// failures (host_script.h); the rest is the file, with some footage beside it.

#include "check.h"
#include "footage.h"
#include "host_script.h"
#include "input.h"

const std::size_t kOptionBytes = kHostOptionBytes;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const embedded::HostOptions options = take_host_options(input);
    put_footage_into(scratch());
    const std::string_view scene = input.rest_text();
    const std::string path = scratch().write("scene.aec", scene);
    HostWithBundle bundle(options);
    if (bundle.loaded()) {
        const embedded::VerifyResult verified = bundle.host().verify(path);
        // A host imports only what is importable. Importing the file all the same must be safe, too.
        bundle.host().import_file(path);
        require(verified.importable == scene.starts_with("VORTAN XR"),
                "a file is importable exactly when it begins with the nine letters");
    }
    bundle.check(has_faults(options));
    return 0;
}
