#pragma once

#include <cstdint>
#include <vector>

#include "texture/value/texture_report.h"

namespace cli {

/// How one channel of a pixel-rows chunk is coded, all rows together.
struct ChannelCoding {
    std::int64_t raw = 0;           ///< rows stored as they are
    std::int64_t packed = 0;        ///< rows packed
    std::int64_t raw_short = 0;     ///< raw rows with too few bytes, which read as 0
    std::int64_t packed_bad = 0;    ///< packed rows that do not unpack, which read as 0
    std::int64_t unknown_flag = 0;  ///< rows with an unknown flag, which repeat the previous row
    std::int64_t coded_bytes = 0;   ///< of all blocks, excluding tags and counts
    std::int64_t decoded_bytes = 0;

    [[nodiscard]] std::int64_t rows() const { return raw + packed + raw_short + packed_bad + unknown_flag; }
    ChannelCoding& operator+=(const ChannelCoding& other);
};

/// One entry for each channel of a pixel-rows chunk that has rows; empty for every other chunk.
std::vector<ChannelCoding> channel_codings(const ChunkOutline& chunk);

/// All channels of these chunks and of the chunks inside them.
ChannelCoding total_coding(const std::vector<ChunkOutline>& chunks);

/// Decoded bytes per coded byte; 0 when nothing is coded.
double compression_ratio(const ChannelCoding& coding);

}  // namespace cli
