#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "image/codes.h"
#include "texture/value/texture.h"

// Image files: what the host needs to know about footage, and conversion to textures and back. OpenImageIO
// does the work, in a module that is loaded when pixels are needed or a header is of an unusual form. Builds
// without it read the headers of common formats and write TGA; on Windows they read and write the formats of
// the system's own imaging component. Safe to call from several threads.

namespace image {

/// What a host needs to know about an image file before the file becomes footage.
struct Header {
    std::int32_t width_px = 0;  ///< of the whole picture; the file may hold a part of it
    std::int32_t height_px = 0;
    std::int32_t channels = 0;          ///< alpha included
    std::int32_t bits_per_channel = 0;  ///< as stored, not as decoded: 8, 16, 32...
    bool has_alpha = false;
    bool alpha_premultiplied = false;
};

/// A header or an error, never both.
struct Probe {
    std::optional<Header> header;
    std::optional<diagnostic::Diagnostic> error;
};

/// Reads the header of a regular file. Errors: cannot_open, not_an_image, gave_up.
[[nodiscard]] Probe probe(const std::string& path);

/// How bytes are carried over between a texture and an image format that stores the other kind of alpha: PNG
/// and most formats store straight alpha, OpenEXR stores premultiplied colour.
enum class AlphaBytes : std::uint8_t {
    kept,       ///< every byte is carried over as stored; converting there and back loses nothing
    converted,  ///< colour is multiplied or divided where image and texture differ; 8 bits lose some
                ///< precision
};

/// What the colour of a texture is. No texture says so: the plug-in calls every one with alpha premultiplied,
/// and the pixels show what they are (see texture/value/alpha_use.h).
enum class AlphaPixels : std::uint8_t { premultiplied, straight };

struct AlphaOptions {
    AlphaBytes bytes = AlphaBytes::kept;
    AlphaPixels pixels = AlphaPixels::premultiplied;  ///< of the texture, not of the image
};

struct WriteOptions {
    AlphaOptions alpha;
    /// The extension that chooses the format: "png". Empty for that of the path.
    std::string format;
    /// Called with the number of rows that have been handed to the format's writer; may be empty.
    std::function<void(std::int64_t rows)> on_rows;

    void row_written(std::int64_t rows) const {
        if (on_rows) {
            on_rows(rows);
        }
    }
    /// The name whose extension chooses the format.
    [[nodiscard]] std::string format_name(const char* path) const {
        return format.empty() ? std::string(path) : "image." + format;
    }
};

/// A texture or an error, never both.
struct Reading {
    std::optional<Texture> texture;
    std::vector<diagnostic::Diagnostic> diagnostics;  ///< the error alone, or the warnings
};

// The three functions below throw std::runtime_error when the image library cannot be loaded or runs out of
// memory.

/// Reads an image at 8 bits a channel: the first image of the file, at full resolution. Warns when that
/// leaves something out.
[[nodiscard]] Reading read(const std::string& path, const AlphaOptions& alpha = {});

/// What became of a file that was to be written.
struct Writing {
    std::optional<diagnostic::Diagnostic> error;
    std::vector<diagnostic::Diagnostic> warnings;  ///< empty beside an error
};

/// Writes `texture` in the format that the extension of `path` or the options name. A format that can say
/// whether its colour is multiplied by alpha, as TIFF does, says what `options` say about the texture.
/// Refuses a format that has no room for all channels, and warns when names have none. An existing file at
/// `path` stays until the new one is complete.
[[nodiscard]] Writing write(const std::string& path, const Texture& texture,
                            const WriteOptions& options = {});

/// Whether `write` knows the format that the extension of `path` names.
[[nodiscard]] bool can_write(const std::string& path);

/// Why the image library cannot be loaded; empty when it can, and in builds without it. Loads the library.
[[nodiscard]] std::string library_problem();

/// What a build without an image library cannot do, for users; empty in builds with it.
[[nodiscard]] std::string build_note();

}  // namespace image
