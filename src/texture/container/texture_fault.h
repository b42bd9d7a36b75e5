#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "diagnostic/diagnostic.h"

/// Everything that keeps a texture file from being read or written.
enum class TextureFault : std::uint8_t {
    cannot_open,         ///< missing, unreadable, a folder, a pipe, a device, or not writable
    empty_file,          ///< no bytes at all
    not_a_texture,       ///< too short for the header, or another magic or ident
    header_not_written,  ///< the first 8 bytes could not be written
    short_transfer,      ///< the file ended inside a value, or the disk is full
    block_too_long,      ///< a block, string or row claims more than the rest of the file can hold
    wrong_tag,           ///< a value of another type than the format has in this place
    stray_value,         ///< a value between chunks
    truncated,           ///< the file ended inside an item that was being skipped
    wrong_direction,     ///< a chunk is being read from a file that is open for writing
    negative_size,       ///< a count below 0
    unsupported,         ///< a version, colour mode or channel count that the format does not have
    over_limit,          ///< larger or deeper than is read or written
    refused_picture,     ///< the target did not accept the texture's size
    out_of_memory,       ///< memory could not be obtained
    no_picture,          ///< a sound file without a texture header or without pixels
    bad_value,           ///< a texture to write whose parts do not fit each other
};

/// The row of each fault, in the order of the enumeration. Every one is an error.
[[nodiscard]] std::span<const diagnostic::CodeRow<TextureFault>> texture_faults();
[[nodiscard]] const diagnostic::CodeInfo& code_info(TextureFault fault);

/// The fault that a diagnostic's code stands for; nullopt for a code of another table.
[[nodiscard]] std::optional<TextureFault> texture_fault(const diagnostic::Code& code);

/// The container's sticky error code for a fault; 0 for faults that are not errors of the container.
[[nodiscard]] std::int32_t container_code(TextureFault fault);

/// Is told of failures, for tools that owe a person more than "it failed". The plug-in has none.
class FailureObserver {
  public:
    FailureObserver(const FailureObserver&) = delete;
    FailureObserver& operator=(const FailureObserver&) = delete;
    virtual ~FailureObserver() = default;

    /// The container's error was set. The place is the offset of the tag of the item read last, if any was;
    /// the file's name and the chunks around the place are left to the observer. Called again when a skip
    /// replaces the error by another: the last call holds.
    virtual void on_failure(const diagnostic::Diagnostic& /*failure*/) {}

  protected:
    FailureObserver() = default;
};
