#include "texture/pack_bits.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::int64_t kLongestPacket = 128;
constexpr std::int64_t kShortestRun = 3;
constexpr unsigned char kNoOperation = 0x80;

// The coded side of the encoder. The control byte of a packet is only known when the packet is complete, so
// its place is reserved first. Positions are 64-bit: they step past a capacity of 2^31 - 1.
class PacketWriter {
  public:
    PacketWriter(unsigned char* dst, std::int64_t capacity_bytes) : dst_(dst), capacity_(capacity_bytes) {}

    [[nodiscard]] bool AddRun(unsigned char value, std::int64_t count) {
        if (literal_length_ > 0) {
            StoreLiteralControl();
            if (!ReserveControl())
                return false;
        }
        if (Full())
            return false;
        dst_[control_] = static_cast<unsigned char>(1 - count);
        dst_[position_] = value;
        // Reserved without a test of the capacity: when nothing follows the byte is given back, and when
        // something follows the position behind it is tested before anything is stored.
        control_ = position_ + 1;
        position_ += 2;
        literal_length_ = 0;
        return true;
    }

    [[nodiscard]] bool AddLiteral(unsigned char value) {
        if (Full())
            return false;
        dst_[position_++] = value;
        if (++literal_length_ < kLongestPacket)
            return true;
        StoreLiteralControl();
        // Deliberately fails here even if no input is left.
        return ReserveControl();
    }

    [[nodiscard]] std::int32_t Finish() {
        if (literal_length_ == 0)
            return static_cast<std::int32_t>(position_ - 1);
        StoreLiteralControl();
        return static_cast<std::int32_t>(position_);
    }

  private:
    [[nodiscard]] bool Full() const { return position_ >= capacity_; }

    [[nodiscard]] bool ReserveControl() {
        if (Full())
            return false;
        control_ = position_++;
        literal_length_ = 0;
        return true;
    }

    void StoreLiteralControl() { dst_[control_] = static_cast<unsigned char>(literal_length_ - 1); }

    unsigned char* dst_;
    std::int64_t capacity_;
    std::int64_t position_ = 1;
    std::int64_t control_ = 0;
    std::int64_t literal_length_ = 0;
};

// How many of the `left` bytes at `src` equal the first, 128 at most.
std::int64_t RunLength(const unsigned char* src, std::int64_t left) {
    const std::int64_t limit = std::min(left, kLongestPacket);
    std::int64_t length = 1;
    while (length < limit && src[length] == src[0])
        ++length;
    return length;
}

}  // namespace

std::int32_t PackBitsEncode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                            std::int32_t dstLen) {
    if (srcLen <= 0)
        return 0;
    PacketWriter writer(dst, dstLen);
    std::int64_t left = srcLen;
    while (left > 0) {
        std::int64_t consumed = 1;
        bool stored = false;
        if (left >= kShortestRun && src[1] == src[0] && src[2] == src[0]) {
            consumed = RunLength(src, left);
            stored = writer.AddRun(*src, consumed);
        } else {
            stored = writer.AddLiteral(*src);
        }
        if (!stored)
            return 0;
        src += consumed;
        left -= consumed;
    }
    return writer.Finish();
}

bool PackBitsDecode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst, std::int32_t dstLen) {
    std::int64_t in = srcLen;
    std::int64_t out = dstLen;
    if (out <= 0)
        return in <= 0;
    while (out > 0 && in > 0) {
        const unsigned char control = *src++;
        --in;
        if (control == kNoOperation)
            continue;
        std::int64_t length = 0;
        if (control > kNoOperation) {
            // Deliberately no test that the value byte lies inside the input: at its end the byte behind it
            // is taken, `in` becomes -1, and that counts as used up.
            length = std::min<std::int64_t>(257 - control, out);
            std::memset(dst, *src++, static_cast<std::size_t>(length));
            --in;
        } else {
            // No byte left copies nothing, and leaves output that is still wanted.
            length = std::min({std::int64_t{control} + 1, in, out});
            std::memcpy(dst, src, static_cast<std::size_t>(length));
            src += length;
            in -= length;
        }
        dst += length;
        out -= length;
    }
    return out <= 0 && in <= 0;
}
