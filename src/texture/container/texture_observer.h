#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "texture/container/texture_fault.h"

namespace limits {
struct Limit;
}

/// Told what the reader and the writer of texture files find, for tools that owe a person more than "it
/// failed". The plug-in has none. Offsets are bytes from the start of the file. Told while the file is being
/// read, in file order; nothing that is passed outlives the call.
class TextureObserver {
  public:
    /// How one channel of one row was coded, and what became of it.
    enum class RowOutcome : std::uint8_t {
        raw,           ///< flag 0, stored as it is
        packed,        ///< flag 1, decoded
        raw_short,     ///< flag 0 with fewer bytes than pixels: the channel of the row became 0
        packed_bad,    ///< flag 1, did not decode to the row's length: the channel of the row became 0
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

    TextureObserver(const TextureObserver&) = delete;
    TextureObserver& operator=(const TextureObserver&) = delete;
    virtual ~TextureObserver() = default;

    /// A chunk begins inside those that have begun and not ended; `offset_bytes` is that of its start tag.
    virtual void ChunkStart(std::int32_t /*id*/, std::int32_t /*version*/, std::int64_t /*offset_bytes*/) {}

    /// The chunk that began last has ended; `end_bytes` is just past its end tag. `handled` is false when it
    /// was skipped, wholly or after its handler gave up without an error. A chunk that the file's end or an
    /// error cut off never ends.
    virtual void ChunkEnd(std::int64_t /*end_bytes*/, bool /*handled*/) {}

    /// The opening values of a pixel-rows chunk, before they are judged.
    virtual void PixelRowsStart(const PixelRows& /*header*/) {}
    virtual void Row(const RowBlock& /*block*/) {}

    /// A layer header, before the target is asked for a channel.
    virtual void Layer(const LayerHeader& /*header*/) {}

    /// The container's error was set, inside the chunks that have begun and not ended; `offset_bytes` is that
    /// of the tag of the item read last. Told again when a skip turns the error into another: the last holds.
    virtual void Failed(TextureFault /*fault*/, std::int64_t /*offset_bytes*/,
                        const std::string& /*reason*/) {}

    /// The failure that is told next comes of this limit.
    virtual void OverLimit(const limits::Limit& /*limit*/) {}

  protected:
    TextureObserver() = default;
};
