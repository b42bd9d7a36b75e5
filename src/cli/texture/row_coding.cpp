#include "cli/texture/row_coding.h"

#include <cstddef>

namespace cli {
namespace {

std::int64_t& counter_of(ChannelCoding& coding, TextureObserver::RowOutcome outcome) {
    switch (outcome) {
        case TextureObserver::RowOutcome::raw:
            return coding.raw;
        case TextureObserver::RowOutcome::packed:
            return coding.packed;
        case TextureObserver::RowOutcome::raw_short:
            return coding.raw_short;
        case TextureObserver::RowOutcome::packed_bad:
            return coding.packed_bad;
        case TextureObserver::RowOutcome::unknown_flag:
            break;
    }
    return coding.unknown_flag;
}

}  // namespace

ChannelCoding& ChannelCoding::operator+=(const ChannelCoding& other) {
    raw += other.raw;
    packed += other.packed;
    raw_short += other.raw_short;
    packed_bad += other.packed_bad;
    unknown_flag += other.unknown_flag;
    coded_bytes += other.coded_bytes;
    decoded_bytes += other.decoded_bytes;
    return *this;
}

std::vector<ChannelCoding> channel_codings(const ChunkOutline& chunk) {
    std::vector<ChannelCoding> channels;
    for (const TextureObserver::RowBlock& block : chunk.blocks) {
        const auto channel = static_cast<std::size_t>(block.channel);
        if (channel >= channels.size()) {
            channels.resize(channel + 1);
        }
        ++counter_of(channels[channel], block.outcome);
        channels[channel].coded_bytes += block.coded_bytes;
        channels[channel].decoded_bytes += chunk.rows.has_value() ? chunk.rows->count : 0;
    }
    return channels;
}

ChannelCoding total_coding(const std::vector<ChunkOutline>& chunks) {
    ChannelCoding total;
    for (const ChunkOutline& chunk : chunks) {
        for (const ChannelCoding& channel : channel_codings(chunk)) {
            total += channel;
        }
        total += total_coding(chunk.children);
    }
    return total;
}

double compression_ratio(const ChannelCoding& coding) {
    return coding.coded_bytes == 0
               ? 0
               : static_cast<double>(coding.decoded_bytes) / static_cast<double>(coding.coded_bytes);
}

}  // namespace cli
