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
    const std::string path = scratch().write("scene.aec", input.rest_text());
    HostWithBundle bundle(options);
    if (bundle.loaded()) {
        const embedded::VerifyResult verified = bundle.host().verify(path);
        const embedded::CallbackResult imported = bundle.host().import_file(path);
        require(verified.importable || has_faults(options) || imported.code != kHostErrorNone ||
                    bundle.host().project().items.size() == 1,
                "nothing comes of a file that is not importable");
    }
    bundle.check(has_faults(options));
    return 0;
}
