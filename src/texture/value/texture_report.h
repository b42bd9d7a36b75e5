#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/code.h"
#include "texture/txl/texture_observer.h"

/// Something in a texture file that was repaired or skipped while it was read.
enum class TextureNotice : std::uint8_t {
    row_cleared,          ///< a channel of a row could not be decoded and became 0
    row_repeated,         ///< a channel of a row has an unknown flag and kept the previous row
    chunk_skipped,        ///< a chunk that the reader does not know
    layer_without_alpha,  ///< a layer in a colour mode without alpha; its channel stays 0
    outside_picture,      ///< rows that lie partly or wholly outside the picture
    second_header,        ///< a texture header after another: the picture started over
    cut_off,              ///< the file ended between two items inside a chunk
    rows_missing,         ///< the picture, or one of its alpha channels, has more rows than the file
};

/// The row of each notice, in the order of the enumeration. Every one is a warning; its remedy says what the
/// notice means for the picture.
[[nodiscard]] std::span<const diagnostic::CodeRow<TextureNotice>> texture_notices();
[[nodiscard]] const diagnostic::CodeInfo& code_info(TextureNotice notice);

/// A chunk as it was found in a file.
struct ChunkOutline {
    struct Layer {
        std::int32_t color_mode = 0;
        std::vector<std::uint8_t> attributes;  // 5 bytes, zeros where the file has fewer
        std::string name;                      // UTF-8, as stored
    };

    std::int32_t id = 0;
    std::int32_t version = 0;
    std::int64_t offset_bytes = 0;
    std::int64_t size_bytes = 0;  // from the start tag to the end tag, inclusive; -1 without an end
    bool handled = false;         // false: skipped
    std::optional<Layer> layer;   // of a layer header
    std::optional<TextureObserver::PixelRows> rows;  // of pixel rows
    std::vector<TextureObserver::RowBlock> blocks;   // of pixel rows, in file order
    std::vector<ChunkOutline> children;
};

/// The name of a chunk: its four characters ("TaVx") if they are letters, digits, spaces or underscores,
/// otherwise its number ("502").
[[nodiscard]] std::string chunk_name(std::int32_t id);

/// Joins names of chunks: "502 > 599 > 110100 > 501 > TaVx". Empty at the top level of a file.
[[nodiscard]] std::string chunk_path(const std::vector<std::string>& within);
