#include "texture/pixel_rows.h"

#include <algorithm>
#include <limits>
#include <string>

#include "texture/pack_bits.h"
#include "texture/txl_ids.h"

namespace {

using RowOutcome = TextureObserver::RowOutcome;

/// A packet of two bytes gives 128 at most, and the last run of a block may borrow its second byte.
constexpr std::int64_t kMostBytesPerCodedByte = 64;

MemBlock zeroed(std::int64_t size_bytes) {
    // Null means that there is no memory, and the C library may answer a request for nothing with null.
    return MemBlock(static_cast<unsigned char*>(MemAllocZeroed(std::max<std::int64_t>(size_bytes, 1))));
}

int no_memory(PrivateHyperFile* hf, std::int64_t row_bytes) {
    return hf->Fail(TextureFault::out_of_memory,
                    [&] { return "no memory for rows of " + std::to_string(row_bytes) + " bytes"; });
}

int too_wide(PrivateHyperFile* hf, std::int64_t row_bytes) {
    return hf->Fail(TextureFault::over_limit, [&] {
        return "rows of " + std::to_string(row_bytes) + " bytes, at most " + std::to_string(kMaxRowBytes) +
               " are allowed";
    });
}

}  // namespace

int ReadPixelRowsHeader(PrivateHyperFile* hf, PixelRowsHeader* header) {
    hf->ReadLong(&header->x);
    hf->ReadLong(&header->y);
    hf->ReadLong(&header->count);
    hf->ReadLong(&header->rows);
    hf->ReadLong(&header->channels);
    if (hf->GetError() != 0) {
        return 0;
    }
    if (hf->GetObserver() != nullptr) {
        hf->GetObserver()->PixelRowsStart(*header);
    }
    return 1;
}

bool PixelRowReader::Begin() {
    const std::int32_t count = header_.count;
    const std::int32_t rows = header_.rows;
    const std::int32_t channels = header_.channels;
    if (count < 0 || rows < 0 || channels < 0) {
        return hf_->Fail(TextureFault::negative_size, [&] {
            return std::to_string(rows) + " rows of " + std::to_string(count) + " pixels with " +
                   std::to_string(channels) + " channels";
        }) != 0;
    }
    // Below 2^62: the factors have 31 bits each.
    const std::int64_t row_bytes = std::int64_t{count} * channels;
    if (row_bytes > kMaxRowBytes) {
        return too_wide(hf_, row_bytes) != 0;
    }
    if (rows == 0 || channels == 0) {
        return true;
    }
    const std::int64_t left = std::int64_t{hf_->GetLength()} - hf_->GetPosition();
    if (row_bytes > kMostBytesPerCodedByte * (left + 1)) {
        return hf_->Fail(TextureFault::block_too_long, [&] {
            return "rows of " + std::to_string(row_bytes) + " bytes where the file has " +
                   std::to_string(left) + " left, which cannot hold one";
        }) != 0;
    }
    row_ = zeroed(row_bytes);
    scratch_ = zeroed(count);
    return (row_ != nullptr && scratch_ != nullptr) || no_memory(hf_, row_bytes) != 0;
}

bool PixelRowReader::Next() {
    if (rows_read_ >= header_.rows || header_.channels < 1 || !CountRow()) {
        return false;
    }
    for (std::int32_t channel = 0; channel < header_.channels; ++channel) {
        if (!ReadChannel(channel)) {
            return false;
        }
    }
    ++rows_read_;
    return true;
}

// Sound rows never come near the bound: what they give is at most the best rate.
bool PixelRowReader::CountRow() {
    const std::int64_t limit = kMostBytesPerCodedByte * hf_->GetLength() + kMaxRepairedBytes;
    file_row_bytes_ += std::int64_t{header_.count} * header_.channels;
    return file_row_bytes_ <= limit || hf_->Fail(TextureFault::over_limit, [&] {
        return "rows of " + std::to_string(file_row_bytes_) + " bytes so far, a file of this size gives " +
               std::to_string(limit) + " at most";
    }) != 0;
}

std::int32_t PixelRowReader::row() const {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(header_.y + rows_read_ - 1, std::numeric_limits<std::int32_t>::max()));
}

bool PixelRowReader::ReadChannel(std::int32_t channel) {
    std::uint8_t flag = 0;
    void* data = nullptr;
    std::int32_t byte_count = 0;
    if (hf_->ReadUChar(&flag) == 0 || hf_->ReadMemory(&data, &byte_count) == 0) {
        return false;
    }
    const MemBlock block(static_cast<unsigned char*>(data));
    const RowOutcome outcome = Store(flag, block.get(), byte_count, channel);
    if (TextureObserver* observer = hf_->GetObserver(); observer != nullptr) {
        observer->Row({header_.y + rows_read_, channel, flag, outcome, byte_count, hf_->GetItemOffset()});
    }
    return true;
}

RowOutcome PixelRowReader::Store(std::uint8_t flag, const unsigned char* block, std::int32_t byte_count,
                                 std::int32_t channel) {
    const std::int32_t count = header_.count;
    if (flag == kRowRaw) {
        if (byte_count < count) {
            ClearChannel(channel);
            return RowOutcome::raw_short;
        }
        StorePlane(block, channel);
        return RowOutcome::raw;
    }
    if (flag == kRowPacked) {
        // The byte that the decoder may look at past the block is the one that ReadMemory puts there.
        if (!PackBitsDecode(block, byte_count, scratch_.get(), count)) {
            ClearChannel(channel);
            return RowOutcome::packed_bad;
        }
        StorePlane(scratch_.get(), channel);
        return RowOutcome::packed;
    }
    // Deliberately nothing: the channel keeps the bytes of the row before.
    return RowOutcome::unknown_flag;
}

void PixelRowReader::StorePlane(const unsigned char* plane, std::int32_t channel) {
    unsigned char* target = row_.get() + channel;
    for (std::int32_t i = 0; i < header_.count; ++i, target += header_.channels) {
        *target = plane[i];
    }
}

void PixelRowReader::ClearChannel(std::int32_t channel) {
    unsigned char* target = row_.get() + channel;
    for (std::int32_t i = 0; i < header_.count; ++i, target += header_.channels) {
        *target = 0;
    }
}

bool PixelRowWriter::Begin() {
    const std::int64_t row_bytes = std::int64_t{width_} * channels_;
    if (row_bytes > kMaxRowBytes) {
        return too_wide(hf_, row_bytes) != 0;
    }
    row_ = zeroed(row_bytes);
    plane_ = zeroed(width_);
    packed_ = zeroed(std::int64_t{2} * width_);
    return (row_ != nullptr && plane_ != nullptr && packed_ != nullptr) || no_memory(hf_, row_bytes) != 0;
}

bool PixelRowWriter::WriteRow() {
    // 2^31 - 1 is enough room for a row near the limit too: packed rows are longer by 1 in 128 at most.
    const auto capacity = static_cast<std::int32_t>(
        std::min<std::int64_t>(std::int64_t{2} * width_, std::numeric_limits<std::int32_t>::max()));
    for (std::int32_t channel = 0; channel < channels_; ++channel) {
        const unsigned char* source = row_.get() + channel;
        for (std::int32_t i = 0; i < width_; ++i, source += channels_) {
            plane_.get()[i] = *source;
        }
        const std::int32_t packed_bytes = PackBitsEncode(plane_.get(), width_, packed_.get(), capacity);
        // 0 says that the row could not be packed, which no row of at least one pixel does in this room.
        if (packed_bytes > 0 && packed_bytes < width_) {
            hf_->WriteUChar(kRowPacked);
            hf_->WriteMemory(packed_.get(), packed_bytes);
        } else {
            hf_->WriteUChar(kRowRaw);
            hf_->WriteMemory(plane_.get(), width_);
        }
        if (hf_->GetError() != 0) {
            return false;
        }
    }
    return true;
}
