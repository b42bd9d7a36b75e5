#pragma once

#include <cstdint>

#include "texture/container/hyper_file.h"
#include "texture/file/memory.h"
#include "texture/txl/texture_observer.h"

// The rows of a pixel-rows chunk, which textures and layers store in the same way: for each row and each of
// its channels, a flag and a block of that channel's bytes, one per pixel.

using PixelRowsHeader = TextureObserver::PixelRows;

/// Reads the five values at the start of the chunk and tells the filter's observer. Returns 1 on success;
/// does not check the values.
int read_pixel_rows_header(PrivateHyperFile* hf, PixelRowsHeader* header);

/// Reads the rows that follow a header, one at a time:
///
///     PixelRowReader rows(hf, header, file_row_bytes);
///     if (!rows.begin()) return failure;
///     while (rows.next()) use(rows.row(), rows.bytes());
///     if (hf->GetError() != 0) return failure;
///
/// All rows share one buffer. It starts as zeros and is deliberately not cleared between rows: the format
/// keeps the bytes of the previous row for a channel with an unknown flag, including any changes that the
/// caller made to the buffer.
class PixelRowReader {
  public:
    /// `file_row_bytes` counts the bytes of all rows of the file, across all its pixel-rows chunks.
    PixelRowReader(PrivateHyperFile* hf, const PixelRowsHeader& header, std::int64_t& file_row_bytes)
        : hf_(hf), header_(header), file_row_bytes_(file_row_bytes) {}

    /// Checks the header and allocates the buffers. A negative number of rows is no rows. False with error -7
    /// for other negative sizes, for rows above limits::kRowBytes and when memory is short. False with error
    /// 1, before anything is allocated, for rows that exceed by more than limits::kRepairedBytes what the
    /// rest of the file could hold at the best compression of the row coding.
    [[nodiscard]] bool begin();

    /// Reads the next row. False after the last row, or with the container's error set: to -7 when the file's
    /// rows decode to more than limits::kRepairedBytes allows.
    [[nodiscard]] bool next();

    /// The row's number in the picture, at most 2^31 - 1, which is below every picture.
    [[nodiscard]] std::int32_t row() const;

    /// The row: count * channels bytes, interleaved. The caller may change them.
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
    MemBlock planes_;  // the decoded channels of a row
    std::int64_t rows_read_ = 0;
};

/// Writes rows of `width` pixels with 1 or 3 `channels` of one byte each. For each row, the caller fills
/// bytes() and calls write_row.
class PixelRowWriter {
  public:
    PixelRowWriter(PrivateHyperFile* hf, std::int32_t width, std::int32_t channels)
        : hf_(hf), width_(width), channels_(channels) {}

    /// Allocates the buffers. False with error -7 when memory is short or a row exceeds limits::kRowBytes.
    [[nodiscard]] bool begin();

    /// The row to be filled: width * channels bytes, interleaved; initially zeros.
    [[nodiscard]] unsigned char* bytes() const { return row_.get(); }

    /// Writes each channel of the row, packed where that is shorter and raw otherwise. False with the
    /// container's error set.
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
