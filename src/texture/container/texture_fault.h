#pragma once

#include <cstdint>

/// Everything that can be wrong with a texture file or in the way of reading or writing one. Stable: tools,
/// exit codes and tests rely on these, never on the texts.
enum class TextureFault {
    cannot_open,         ///< missing, unreadable, a folder, a pipe, a device, or not writable
    empty_file,          ///< no bytes at all
    not_a_texture,       ///< too short for the header, other magic, or other ident
    header_not_written,  ///< the first 8 bytes could not be written
    short_transfer,      ///< the file ended inside a value, or the disk is full
    block_too_long,      ///< a block, string or row claims more than the rest of the file can hold
    wrong_tag,           ///< a value of one type where another must stand
    stray_value,         ///< a value where only chunks may stand
    truncated,           ///< the file ended inside a chunk that was being skipped
    wrong_direction,     ///< a chunk is being read from a file that is open for writing
    negative_size,       ///< a count below 0
    unsupported,         ///< a version, colour mode or channel count that this format does not have
    over_limit,          ///< larger or deeper than is read or written
    refused_picture,     ///< the target did not accept the texture's size
    out_of_memory,       ///< memory could not be obtained
    no_picture,          ///< a sound file without a texture header
    bad_value,           ///< a texture to write whose parts do not fit each other
};

/// The container's sticky error code for a fault. 0 for those that the container does not know as errors.
[[nodiscard]] std::int32_t container_code(TextureFault fault);

/// The fault's stable name for scripts: its identifier as above, with hyphens: "stray-value".
[[nodiscard]] const char* fault_name(TextureFault fault);
