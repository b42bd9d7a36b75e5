// Importing with the built bundle in the embedded host. The option bytes say which host it is and what goes
// wrong (host_script.h); the rest is the file, beside which there is some footage.

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
        // A host offers nothing else to the import; whoever asks for it all the same gets what the words say.
        bundle.host().import_file(path);
        require(verified.importable == scene.starts_with("VORTAN XR"),
                "importable is what begins with the nine letters, whatever words follow");
    }
    bundle.check(has_faults(options));
    return 0;
}
