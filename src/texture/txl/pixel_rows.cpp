#include "texture/txl/pixel_rows.h"

#include <algorithm>
#include <limits>
#include <string>

#include "limit/limits.h"
#include "texture/kernel/planes.h"
#include "texture/txl/pack_bits.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image_filter.h"

namespace {

using RowOutcome = TextureObserver::RowOutcome;

/// The number of channels of RGB rows, which are kept as planes while a row is read or written.
constexpr std::int32_t kJoinedChannels = 3;

MemBlock zeroed(std::int64_t size_bytes) {
    // At least one byte: null means failure here, and the C library may return null for an empty request.
    return MemBlock(static_cast<unsigned char*>(allocate_zeroed(std::max<std::int64_t>(size_bytes, 1))));
}

int no_memory(PrivateHyperFile* hf, std::int64_t row_bytes) {
    return hf->Fail(TextureFault::out_of_memory,
                    [&] { return "no memory for rows of " + std::to_string(row_bytes) + " bytes"; });
}

int too_wide(PrivateHyperFile* hf, std::int64_t row_bytes) {
    return hf->Fail(TextureFault::over_limit, limits::kRowBytes, [&] {
        return "rows of " + std::to_string(row_bytes) + " bytes; at most " +
               std::to_string(limits::kRowBytes.value) + " are allowed";
    });
}

}  // namespace

int read_pixel_rows_header(PrivateHyperFile* hf, PixelRowsHeader* header) {
    hf->ReadLong(&header->x);
    hf->ReadLong(&header->y);
    hf->ReadLong(&header->count);
    hf->ReadLong(&header->rows);
    hf->ReadLong(&header->channels);
    if (hf->GetError() != 0) {
        return 0;
    }
    if (TextureObserver* const observer = TXLImageFilter::ObserverOf(hf); observer != nullptr) {
        observer->on_pixel_rows(*header);
    }
    return 1;
}

bool PixelRowReader::begin() {
    const std::int32_t count = header_.count;
    const std::int32_t rows = header_.rows;
    const std::int32_t channels = header_.channels;
    if (count < 0 || channels < 0) {
        return hf_->Fail(TextureFault::negative_size, [&] {
            return "rows of " + std::to_string(count) + " pixels with " + std::to_string(channels) +
                   " channels";
        }) != 0;
    }
    // Below 2^62: the factors have 31 bits each.
    const std::int64_t row_bytes = std::int64_t{count} * channels;
    if (row_bytes > limits::kRowBytes.value) {
        return too_wide(hf_, row_bytes) != 0;
    }
    if (rows <= 0 || channels == 0) {
        return true;
    }
    const std::int64_t left = std::int64_t{hf_->GetLength()} - hf_->GetPosition();
    if (row_bytes - limits::kRepairedBytes.value > limits::kRowRate.value * (left + 1)) {
        return hf_->Fail(TextureFault::block_too_long, limits::kRowRate, [&] {
            return "rows of " + std::to_string(row_bytes) + " bytes where the file has " +
                   std::to_string(left) + " left, too few even for one row";
        }) != 0;
    }
    row_ = zeroed(row_bytes);
    planes_ = zeroed(count * kept_planes());
    return (row_ != nullptr && planes_ != nullptr) || no_memory(hf_, row_bytes) != 0;
}

bool PixelRowReader::next() {
    if (rows_read_ >= header_.rows || header_.channels < 1 || !count_row()) {
        return false;
    }
    for (std::int32_t channel = 0; channel < header_.channels; ++channel) {
        if (!read_channel(channel)) {
            return false;
        }
    }
    if (header_.channels == kJoinedChannels) {
        join_planes(plane(0), plane(1), plane(2), header_.count, row_.get());
    }
    ++rows_read_;
    return true;
}

// Sound rows never reach this bound: they decode at most at the best compression.
bool PixelRowReader::count_row() {
    const std::int64_t most = limits::kRowRate.value * hf_->GetLength() + limits::kRepairedBytes.value;
    file_row_bytes_ += std::int64_t{header_.count} * header_.channels;
    return file_row_bytes_ <= most || hf_->Fail(TextureFault::over_limit, limits::kRepairedBytes, [&] {
        return "rows of " + std::to_string(file_row_bytes_) +
               " bytes so far; a file of this size yields at most " + std::to_string(most);
    }) != 0;
}

std::int32_t PixelRowReader::row() const {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(header_.y + rows_read_ - 1, std::numeric_limits<std::int32_t>::max()));
}

std::int64_t PixelRowReader::kept_planes() const {
    return header_.channels == kJoinedChannels ? kJoinedChannels : 1;
}

// Where a channel is decoded: into the row itself if it has one channel, into a plane of its own if three
// planes are joined at the end of the row, otherwise into one plane that all channels share in turn.
unsigned char* PixelRowReader::plane(std::int32_t channel) const {
    if (header_.channels == 1) {
        return row_.get();
    }
    return planes_.get() + (header_.channels == kJoinedChannels ? std::int64_t{header_.count} * channel : 0);
}

bool PixelRowReader::read_channel(std::int32_t channel) {
    std::uint8_t flag = 0;
    const unsigned char* block = nullptr;
    std::int32_t byte_count = 0;
    if (hf_->ReadUChar(&flag) == 0 || hf_->ReadMemoryInPlace(&block, &byte_count) == 0) {
        return false;
    }
    const RowOutcome outcome = decode(flag, block, byte_count, plane(channel));
    if (outcome == RowOutcome::unknown_flag) {
        // Deliberately not an error and not cleared: by the format's rule the channel keeps the previous row.
        if (header_.channels == kJoinedChannels) {
            take_channel(channel);
        }
    } else if (header_.channels != 1 && header_.channels != kJoinedChannels) {
        store_channel(channel);
    }
    if (TextureObserver* const observer = TXLImageFilter::ObserverOf(hf_); observer != nullptr) {
        observer->on_row({header_.y + rows_read_, channel, flag, outcome, byte_count, hf_->GetItemOffset()});
    }
    return true;
}

RowOutcome PixelRowReader::decode(std::uint8_t flag, const unsigned char* block, std::int32_t byte_count,
                                  unsigned char* plane) const {
    const std::int32_t count = header_.count;
    if (flag == kRowRaw) {
        if (byte_count < count) {
            std::fill_n(plane, count, static_cast<unsigned char>(0));
            return RowOutcome::raw_short;
        }
        MemCopy(block, plane, count);
        return RowOutcome::raw;
    }
    if (flag == kRowPacked) {
        if (!pack_bits_decode_block(block, byte_count, plane, count)) {
            std::fill_n(plane, count, static_cast<unsigned char>(0));
            return RowOutcome::packed_bad;
        }
        return RowOutcome::packed;
    }
    return RowOutcome::unknown_flag;
}

void PixelRowReader::store_channel(std::int32_t channel) {
    const unsigned char* source = plane(channel);
    unsigned char* target = row_.get() + channel;
    for (std::int32_t i = 0; i < header_.count; ++i, target += header_.channels) {
        *target = source[i];
    }
}

void PixelRowReader::take_channel(std::int32_t channel) {
    unsigned char* target = plane(channel);
    const unsigned char* source = row_.get() + channel;
    for (std::int32_t i = 0; i < header_.count; ++i, source += header_.channels) {
        target[i] = *source;
    }
}

bool PixelRowWriter::begin() {
    const std::int64_t row_bytes = std::int64_t{width_} * channels_;
    if (row_bytes > limits::kRowBytes.value) {
        return too_wide(hf_, row_bytes) != 0;
    }
    row_ = zeroed(row_bytes);
    planes_ = zeroed(channels_ == kJoinedChannels ? row_bytes : 1);
    packed_ = zeroed(std::int64_t{2} * width_);
    return (row_ != nullptr && planes_ != nullptr && packed_ != nullptr) || no_memory(hf_, row_bytes) != 0;
}

bool PixelRowWriter::write_row() {
    if (channels_ == 1) {
        return write_channel(row_.get());
    }
    unsigned char* const first = planes_.get();
    unsigned char* const second = first + width_;
    unsigned char* const third = second + width_;
    split_pixels(row_.get(), width_, first, second, third);
    return write_channel(first) && write_channel(second) && write_channel(third);
}

bool PixelRowWriter::write_channel(const unsigned char* plane) {
    // 2^31 - 1 is enough even for a row at the limit: packing lengthens a row by at most 1 byte in 128.
    const auto capacity = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{2} * width_, std::numeric_limits<std::int32_t>::max()));
    const std::int32_t packed_bytes = pack_bits_encode(plane, width_, packed_.get(), capacity);
    // 0 means that the row could not be packed; with this much room that never happens to a non-empty row.
    if (packed_bytes > 0 && packed_bytes < width_) {
        hf_->WriteUChar(kRowPacked);
        hf_->WriteMemory(packed_.get(), packed_bytes);
    } else {
        hf_->WriteUChar(kRowRaw);
        hf_->WriteMemory(plane, width_);
    }
    return hf_->GetError() == 0;
}
