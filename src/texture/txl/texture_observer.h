#pragma once

#include <cstdint>
#include <span>

#include "texture/container/texture_fault.h"

/// Is told what a load finds, in file order and while the file is being read. Changes nothing of what is
/// read. Offsets are bytes from the start of the file; nothing that is passed outlives the call. Every event
/// does nothing unless overridden.
class TextureObserver : public FailureObserver {
  public:
    /// How one channel of one row was coded, and what became of it.
    enum class RowOutcome : std::uint8_t {
        raw,           ///< flag 0, taken as it is
        packed,        ///< flag 1, decoded
        raw_short,     ///< flag 0 with fewer bytes than pixels: the channel of the row became 0
        packed_bad,    ///< flag 1 that did not decode to the row's length: the channel of the row became 0
        unknown_flag,  ///< any other flag: the channel kept the bytes of the row before
    };

    struct PixelRows {
        std::int32_t x, y;      // pixels, of the first row
        std::int32_t count;     // pixels per row
        std::int32_t rows;      // number of rows
        std::int32_t channels;  // planes per row, one byte per pixel each
    };

    struct RowBlock {
        std::int64_t row;  // as numbered in the picture
        std::int32_t channel;
        std::uint8_t flag;
        RowOutcome outcome;
        std::int32_t coded_bytes;
        std::int64_t offset_bytes;  // of the block's tag
    };

    struct LayerHeader {
        std::int32_t color_mode;
        std::span<const unsigned char> attributes;
        std::span<const std::uint16_t> name;  // code units as stored
    };

    /// A chunk begins inside the chunks that are open. `offset_bytes` is that of its start tag.
    virtual void on_chunk_start(std::int32_t /*id*/, std::int32_t /*version*/,
                                std::int64_t /*offset_bytes*/) {}

    /// The innermost open chunk has ended; `end_bytes` is just past its end tag. `handled` is false when the
    /// chunk was skipped, as a whole or after its handler gave up without an error. A chunk that an error or
    /// the end of the file cuts off never ends.
    virtual void on_chunk_end(std::int64_t /*end_bytes*/, bool /*handled*/) {}

    /// The opening values of a pixel-rows chunk, before they are checked.
    virtual void on_pixel_rows(const PixelRows& /*header*/) {}
    virtual void on_row(const RowBlock& /*block*/) {}

    /// A layer header, before the target is asked for a channel.
    virtual void on_layer(const LayerHeader& /*header*/) {}
};
