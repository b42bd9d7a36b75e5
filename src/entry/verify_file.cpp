#include "entry/verify_file.h"

#include <cstdio>
#include <cstring>

#include "system/open_regular_file.h"

A_Err VerifyFileImportable(const A_char* path, AE_FIM_Refcon /*refcon*/, A_Boolean* importable) {
    constexpr char kSignature[] = "VORTAN XR";
    constexpr std::size_t kSignatureBytes = sizeof kSignature - 1;
    *importable = 0;
    std::FILE* file = path != nullptr ? os::open_regular_file(path) : nullptr;
    if (file == nullptr)
        return kHostErrorNone;
    // Cleared, so that a file shorter than the signature is compared with NULs; two bytes more than the
    // signature are read and do not count.
    char head[kSignatureBytes + 2] = {};
    const std::size_t read = std::fread(head, 1, sizeof head, file);
    *importable = read >= kSignatureBytes && std::memcmp(head, kSignature, kSignatureBytes) == 0 ? 1 : 0;
    return std::fclose(file) == 0 ? kHostErrorNone : kHostErrorGeneric;
}
