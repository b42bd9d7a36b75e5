#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "limit/limits.h"
#include "texture/value/texture.h"
#include "texture/value/texture_report.h"

// Layered texture files as plain values, for tools and image libraries: every alpha channel is kept and 8
// bits stay 8 bits. (The plug-in itself reads into the host's picture, which has one alpha; see
// example_txl_image.h.) Safe to call from several threads.

struct TextureLimits {
    /// Pixels and alpha channels of one texture together. 4 GiB hold the largest picture that is read, 2^30
    /// pixels in RGB, with one alpha channel.
    std::uint64_t decoded_bytes = static_cast<std::uint64_t>(limits::kDecodedBytes.value);
};

struct TextureReadOptions {
    TextureLimits limits;
    bool outline = false;  // also collect `TextureReading::chunks`
};

/// What came of reading a file: a texture or an error, never both. Warnings and the outline of what was read
/// are there in either case.
struct TextureReading {
    std::optional<Texture> texture;
    std::optional<diagnostic::Diagnostic> error;
    std::vector<diagnostic::Diagnostic> warnings;  // in the order of their first places
    std::vector<ChunkOutline::Layer> layers;       // the headers of all layers, in file order
    std::vector<ChunkOutline> chunks;              // the top level of the file; empty unless asked for
};

/// Whether a file beginning with these bytes (8 are enough) says that it is a layered texture.
[[nodiscard]] bool begins_as_texture(std::span<const std::uint8_t> first_bytes);

/// Reads the file at `path`, a regular file. Alpha channels are named as their layers are, in UTF-8; an empty
/// name becomes "Alpha", and a name that an earlier channel has gets ".2", ".3" and so on behind it.
///
/// Accepts what the plug-in accepts, with two exceptions: a file without a texture header (no_picture) and
/// one whose colour mode is neither grey nor RGB (unsupported) give no texture. Never throws.
[[nodiscard]] TextureReading read_texture(const std::string& path, const TextureReadOptions& options = {});

/// Writes `texture` to `path`, replacing what was there; after an error the file is incomplete and the
/// caller's to remove. **Names of alpha channels are not stored**: the format's writer calls every layer
/// "Alpha", so they read back as "Alpha", "Alpha.2", "Alpha.3"... Returns the error, nullopt when all was
/// written: cannot_open, header_not_written or short_transfer from the file, bad_value for a texture whose
/// parts do not fit each other (see validate_for_writing), over_limit for a file of 2^31 - 1 bytes or more,
/// which no reader takes. Never throws.
[[nodiscard]] std::optional<diagnostic::Diagnostic> write_texture(const std::string& path,
                                                                  const Texture& texture);

/// Why `texture` cannot be written; nullopt for a sound one: a mode of 2 or 4, sizes that are not negative
/// with at most 2^30 pixels in all, buffers of exactly the size their comments say, and fewer than 2^31
/// alphas.
[[nodiscard]] std::optional<std::string> validate_for_writing(const Texture& texture);
