#pragma once

#include <cstdint>

#include "texture/container/hyper_file.h"
#include "texture/file/memory.h"
#include "texture/txl/texture_observer.h"

// The rows of a pixel-rows chunk, which textures and layers store alike: for each row and each of its
// channels a flag and a block with that channel's bytes, one a pixel.

using PixelRowsHeader = TextureObserver::PixelRows;

/// Reads the five values that open the chunk and shows them to the container's observer. Returns 1 for
/// success; no value is judged.
int read_pixel_rows_header(PrivateHyperFile* hf, PixelRowsHeader* header);

/// Reads the rows behind a header, one at a time:
///
///     PixelRowReader rows(hf, header, file_row_bytes);
///     if (!rows.begin()) return failure;
///     while (rows.next()) use(rows.row(), rows.bytes());
///     if (hf->GetError() != 0) return failure;
///
/// One buffer serves all rows. It begins as zeros and is deliberately not cleared between rows: a channel
/// with an unknown flag keeps the bytes of the row before, and what the caller changed in the buffer counts
/// as such.
class PixelRowReader {
  public:
    /// `file_row_bytes` counts the bytes of all rows of the file, over all its chunks of rows.
    PixelRowReader(PrivateHyperFile* hf, const PixelRowsHeader& header, std::int64_t& file_row_bytes)
        : hf_(hf), header_(header), file_row_bytes_(file_row_bytes) {}

    /// Judges the header and obtains the buffers. False with error -7 for negative sizes, for rows above
    /// limits::kRowBytes and when memory is short; with error 1 for rows of more bytes than the rest of the
    /// file could hold at the best rate of the row coding, before anything is allocated.
    [[nodiscard]] bool begin();

    /// Reads the next row. False after the last one, or with the container's error set: to -7 when the rows
    /// of the file give more than limits::kRepairedBytes allows.
    [[nodiscard]] bool next();

    /// The row's number in the picture; past the last row of any picture it stays at 2^31 - 1.
    [[nodiscard]] std::int32_t row() const;

    /// count * channels bytes, the channels of a pixel side by side. The caller may change them.
    [[nodiscard]] unsigned char* bytes() const { return row_.get(); }

  private:
    bool count_row();
    [[nodiscard]] std::int64_t kept_planes() const;
    [[nodiscard]] unsigned char* plane(std::int32_t channel) const;
    bool read_channel(std::int32_t channel);
    TextureObserver::RowOutcome decode(std::uint8_t flag, const unsigned char* block, std::int32_t byte_count,
                                       unsigned char* plane) const;
    void store_channel(std::int32_t channel);
    void take_channel(std::int32_t channel);

    PrivateHyperFile* hf_;
    PixelRowsHeader header_;
    std::int64_t& file_row_bytes_;
    MemBlock row_;
    MemBlock planes_;  // decoded channels of a row
    std::int64_t rows_read_ = 0;
};

/// Writes rows of `width` pixels and 1 or 3 `channels`, one byte a pixel each: for each row the caller fills
/// bytes() and calls write_row.
class PixelRowWriter {
  public:
    PixelRowWriter(PrivateHyperFile* hf, std::int32_t width, std::int32_t channels)
        : hf_(hf), width_(width), channels_(channels) {}

    /// Obtains the buffers; false with error -7 when memory is short or a row is above limits::kRowBytes.
    [[nodiscard]] bool begin();

    /// width * channels bytes, zero at the beginning.
    [[nodiscard]] unsigned char* bytes() const { return row_.get(); }

    /// Stores each channel of the row packed where that is shorter, else raw. False with the container's
    /// error set.
    bool write_row();

  private:
    bool write_channel(const unsigned char* plane);

    PrivateHyperFile* hf_;
    std::int32_t width_;
    std::int32_t channels_;
    MemBlock row_;
    MemBlock planes_;
    MemBlock packed_;
};
