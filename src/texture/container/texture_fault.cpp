#include "texture/container/texture_fault.h"

#include <array>

#include "texture/container/hyper_file.h"

namespace {

using diagnostic::Severity;
using enum TextureFault;

constexpr auto kFaults = std::to_array<diagnostic::CodeRow<TextureFault>>({
    {cannot_open,
     {"cannot-open", Severity::error,
      "The file is missing, cannot be read or written, or is not a regular file."}},
    {empty_file, {"empty-file", Severity::error, "The file has no bytes."}},
    {not_a_texture,
     {"not-a-texture", Severity::error, "The file does not begin with the header of a texture."}},
    {header_not_written, {"header-not-written", Severity::error, "The header could not be written."}},
    {short_transfer,
     {"short-transfer", Severity::error, "The file ends inside a value, or the disk is full."}},
    {block_too_long,
     {"block-too-long", Severity::error,
      "A block claims more bytes than the file has left, or a row far more than they could hold."}},
    {wrong_tag, {"wrong-tag", Severity::error, "A value has another type than the format requires there."}},
    {stray_value,
     {"stray-value", Severity::error, "An item between chunks neither starts nor ends a chunk."}},
    {truncated, {"truncated", Severity::error, "The file ends inside an item that is being skipped."}},
    {wrong_direction,
     {"wrong-direction", Severity::error, "A chunk is being read from a file that is open for writing."}},
    {negative_size,
     {"negative-size", Severity::error,
      "The pixels or channels of a row, or the length of a block, are a negative number."}},
    {unsupported,
     {"unsupported", Severity::error,
      "The format does not have this version, colour mode or number of channels."}},
    {over_limit, {"over-limit", Severity::error, "The file or the picture exceeds a limit."}},
    {refused_picture,
     {"refused-picture", Severity::error,
      "The size of the picture was not accepted, for no other reason given."}},
    {out_of_memory, {"out-of-memory", Severity::error, "Memory could not be obtained."}},
    {no_picture,
     {"no-picture", Severity::error,
      "The file has no texture header, or its picture has no pixels (reported by the tools only)."}},
    {bad_value,
     {"bad-value", Severity::error,
      "The parts of a texture to be written do not fit each other (reported by the tools only)."}},
});
static_assert(diagnostic::in_order(kFaults, bad_value));

}  // namespace

std::span<const diagnostic::CodeRow<TextureFault>> texture_faults() {
    return kFaults;
}

const diagnostic::CodeInfo& code_info(TextureFault fault) {
    return kFaults[static_cast<std::size_t>(fault)].info;
}

std::optional<TextureFault> texture_fault(const diagnostic::Code& code) {
    for (const diagnostic::CodeRow<TextureFault>& row : kFaults) {
        if (code == row.code) {
            return row.code;
        }
    }
    return std::nullopt;
}

// Without `default`, so that the compiler finds a fault that has no code.
std::int32_t container_code(TextureFault fault) {
    switch (fault) {
        case cannot_open:
        case short_transfer:
        case block_too_long:
            return PrivateHyperFile::kErrorFile;
        case not_a_texture:
        case header_not_written:
        case wrong_tag:
            return PrivateHyperFile::kErrorFormat;
        case stray_value:
            return PrivateHyperFile::kErrorStrayValue;
        case truncated:
            return PrivateHyperFile::kErrorTruncated;
        case wrong_direction:
            return PrivateHyperFile::kErrorDirection;
        case negative_size:
        case unsupported:
        case over_limit:
        case refused_picture:
        case out_of_memory:
            return PrivateHyperFile::kErrorRefused;
        case empty_file:
        case no_picture:
        case bad_value:
            return 0;
    }
    return 0;
}
