#include "texture/container/texture_fault.h"

#include "texture/container/hyper_file.h"

// No `default` in either: the compiler then spots a fault without a code or a name.

std::int32_t container_code(TextureFault fault) {
    switch (fault) {
        case TextureFault::cannot_open:
        case TextureFault::short_transfer:
        case TextureFault::block_too_long:
            return PrivateHyperFile::kErrorFile;
        case TextureFault::not_a_texture:
        case TextureFault::header_not_written:
        case TextureFault::wrong_tag:
            return PrivateHyperFile::kErrorFormat;
        case TextureFault::stray_value:
            return PrivateHyperFile::kErrorStrayValue;
        case TextureFault::truncated:
            return PrivateHyperFile::kErrorTruncated;
        case TextureFault::wrong_direction:
            return PrivateHyperFile::kErrorDirection;
        case TextureFault::negative_size:
        case TextureFault::unsupported:
        case TextureFault::over_limit:
        case TextureFault::refused_picture:
        case TextureFault::out_of_memory:
            return PrivateHyperFile::kErrorRefused;
        case TextureFault::empty_file:
        case TextureFault::no_picture:
        case TextureFault::bad_value:
            return 0;
    }
    return 0;
}

const char* fault_name(TextureFault fault) {
    switch (fault) {
        case TextureFault::cannot_open:
            return "cannot-open";
        case TextureFault::empty_file:
            return "empty-file";
        case TextureFault::not_a_texture:
            return "not-a-texture";
        case TextureFault::header_not_written:
            return "header-not-written";
        case TextureFault::short_transfer:
            return "short-transfer";
        case TextureFault::block_too_long:
            return "block-too-long";
        case TextureFault::wrong_tag:
            return "wrong-tag";
        case TextureFault::stray_value:
            return "stray-value";
        case TextureFault::truncated:
            return "truncated";
        case TextureFault::wrong_direction:
            return "wrong-direction";
        case TextureFault::negative_size:
            return "negative-size";
        case TextureFault::unsupported:
            return "unsupported";
        case TextureFault::over_limit:
            return "over-limit";
        case TextureFault::refused_picture:
            return "refused-picture";
        case TextureFault::out_of_memory:
            return "out-of-memory";
        case TextureFault::no_picture:
            return "no-picture";
        case TextureFault::bad_value:
            return "bad-value";
    }
    return "";
}
