#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "limit/limits.h"
#include "texture/value/row_set.h"
#include "texture/value/texture.h"
#include "texture/value/texture_report.h"

// Reads and writes layered texture files as plain values, for tools and image libraries: every alpha channel
// is kept and 8 bits stay 8 bits. (The plug-in itself reads into a bitmap with one alpha channel; see
// example_txl_image.h.) Safe to call from several threads.

struct TextureLimits {
    /// The most bytes of pixels and alpha channels of one texture together. The default, 4 GiB, holds the
    /// largest picture that is read, 2^30 RGB pixels, with one alpha channel.
    std::uint64_t decoded_bytes = static_cast<std::uint64_t>(limits::kDecodedBytes.value);
};

struct TextureReadOptions {
    TextureLimits limits;
    bool outline = false;  // also collect `TextureReading::chunks`
};

/// The result of reading a file: a texture or an error, never both, with the warnings and the outline of what
/// was read in either case. A diagnostic's place is an offset, and `within` holds one entry per chunk around
/// it:
/// {"502", "TaVx"}.
struct TextureReading {
    std::optional<Texture> texture;
    std::optional<diagnostic::Diagnostic> error;
    std::vector<diagnostic::Diagnostic> warnings;  // one per kind, by first occurrence
    std::vector<ChunkOutline::Layer> layers;       // the headers of all layers, in file order
    std::vector<ChunkOutline> chunks;              // the top level; empty unless requested
    RowSet colour_rows;                            // the rows of the picture that the file holds
};

/// Whether a file that begins with these bytes (8 are enough) declares itself a layered texture.
[[nodiscard]] bool begins_as_texture(std::span<const std::uint8_t> first_bytes);

/// Reads the file at `path`, which must be a regular file. Alpha channels take the names of their layers, in
/// UTF-8; an empty name becomes "Alpha", and a name that an earlier channel has is extended by ".2", ".3" and
/// so on.
///
/// Accepts what the plug-in accepts, with three exceptions: a file without a texture header and a picture
/// without pixels (both no_picture), and a colour mode that is neither grey nor RGB (unsupported) yield no
/// texture. Never throws.
[[nodiscard]] TextureReading read_texture(const std::string& path, const TextureReadOptions& options = {});

/// Writes `texture` to `path` and replaces an existing file. After an error the file is incomplete, and the
/// caller removes it. **Names of alpha channels are not stored**: the format's writer calls every layer
/// "Alpha", so they read back as "Alpha", "Alpha.2", "Alpha.3"... Returns nullopt on success, otherwise the
/// error: cannot_open, header_not_written or short_transfer from the file, no_picture for a texture without
/// pixels, bad_value for one whose parts do not fit each other (see validate_for_writing), over_limit for a
/// file of 2^31 - 1 bytes or more, which no reader accepts. Never throws.
[[nodiscard]] std::optional<diagnostic::Diagnostic> write_texture(const std::string& path,
                                                                  const Texture& texture);

/// The names of alpha channels that neither a written texture nor an image keeps, in their order. Names by
/// which a channel without a name is called, "A", "Alpha", "channel4" and the like with a number, are none.
[[nodiscard]] std::vector<std::string> names_without_room(const Texture& texture);

/// Explains why `texture` cannot be written. nullopt when it can: its mode is 2 or 4, its sizes are
/// positive, it has at most 2^30 pixels and fewer than 2^31 alphas, and its buffers have exactly the
/// documented sizes.
[[nodiscard]] std::optional<std::string> validate_for_writing(const Texture& texture);
