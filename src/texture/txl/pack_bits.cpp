#include "texture/txl/pack_bits.h"

#include <algorithm>
#include <cstring>

#include "texture/kernel/equal_bytes.h"

namespace {

constexpr std::int64_t kLongestPacket = 128;
constexpr unsigned char kNoOperation = 0x80;
constexpr unsigned char kNothing = 0;

// Most packets of a picture are short. A packet of at most this many bytes is moved as exactly this many,
// which needs no branch on its length.
constexpr std::int64_t kShort = 16;
constexpr std::int64_t kShortLiteral = 32;

constexpr std::uint64_t kEachByte = 0x0101010101010101;  // multiplied by a byte: that byte eight times

// Moves `length` bytes, rounded up to pieces of kShort. Packets are too short for a call to memcpy, and the
// code that compilers inline for a small unknown length is slower than the call.
void move_pieces(const unsigned char* src, unsigned char* dst, std::int64_t length) {
    for (std::int64_t i = 0; i < length; i += kShort) {
        std::memcpy(dst + i, src + i, kShort);
    }
}

// The output side of the encoder. The control byte of a packet is known only when the packet is complete, so
// its place is reserved first. Positions are 64-bit because they can step past a capacity of 2^31 - 1.
class PacketWriter {
  public:
    PacketWriter(unsigned char* dst, std::int64_t capacity_bytes) : dst_(dst), capacity_(capacity_bytes) {}

    [[nodiscard]] bool add_run(unsigned char value, std::int64_t count) {
        if (literal_pending_) {
            if (full()) {
                return false;
            }
            control_ = position_++;
            literal_pending_ = false;
        }
        if (full()) {
            return false;
        }
        dst_[control_] = static_cast<unsigned char>(1 - count);
        dst_[position_] = value;
        // Reserved without checking the capacity: if nothing follows, the byte is given back; if something
        // does, the position after it is checked before anything is stored.
        control_ = position_ + 1;
        position_ += 2;
        return true;
    }

    // Adds the `length` bytes at `src`, which end at the next run or at the end of the row. `readable` bytes
    // may be read at `src`.
    [[nodiscard]] bool add_literal(const unsigned char* src, std::int64_t length, std::int64_t readable) {
        for (; length >= kLongestPacket; length -= kLongestPacket, src += kLongestPacket) {
            // Deliberately fails without room for the next control byte, even if no input is left: the
            // encoder reserves that byte at once.
            if (position_ + kLongestPacket >= capacity_) {
                return false;
            }
            move_pieces(src, dst_ + position_, kLongestPacket);
            dst_[control_] = static_cast<unsigned char>(kLongestPacket - 1);
            control_ = position_ + kLongestPacket;
            position_ = control_ + 1;
            readable -= kLongestPacket;
        }
        if (length == 0) {
            return true;
        }
        if (position_ + length > capacity_) {
            return false;
        }
        if (length <= kShortLiteral && readable >= kShortLiteral && position_ + kShortLiteral <= capacity_) {
            std::memcpy(dst_ + position_, src, kShortLiteral);
        } else {
            std::memcpy(dst_ + position_, src, static_cast<std::size_t>(length));
        }
        dst_[control_] = static_cast<unsigned char>(length - 1);
        position_ += length;
        literal_pending_ = true;
        return true;
    }

    [[nodiscard]] std::int32_t finish() const {
        return static_cast<std::int32_t>(literal_pending_ ? position_ : position_ - 1);
    }

  private:
    [[nodiscard]] bool full() const { return position_ >= capacity_; }

    unsigned char* dst_;
    std::int64_t capacity_;
    std::int64_t position_ = 1;
    std::int64_t control_ = 0;
    bool literal_pending_ = false;  // the packet before `position_` is a literal of fewer than 128 bytes
};

// The positions of the decoder in its input and output.
struct Progress {
    const unsigned char* src;
    unsigned char* dst;
    std::int64_t in;   // bytes left at src
    std::int64_t out;  // bytes wanted at dst
};

// Decodes packets as long as both buffers have room to move them in pieces of kShort bytes; later packets
// overwrite the excess. Stops before the first packet without that room.
void decode_with_room(Progress& at) {
    const unsigned char* src = at.src;
    unsigned char* dst = at.dst;
    const unsigned char* const src_end = src + at.in;
    unsigned char* const dst_end = dst + at.out;
    while (src_end - src > 1 && dst_end - dst >= kShort) {
        const unsigned char control = *src;
        if (control == kNoOperation) {
            ++src;
            continue;
        }
        const bool run = control > kNoOperation;
        const std::int64_t length = run ? 257 - control : control + 1;
        if (length <= kShort && src_end - src > kShort) {
            // Selects the literal's bytes or the repeated value of the run by a mask, because a branch would
            // be unpredictable.
            const std::uint64_t mask = run ? ~std::uint64_t{0} : 0;
            const std::uint64_t value = src[1] * kEachByte;
            std::uint64_t bytes[2];
            static_assert(sizeof bytes == kShort);
            std::memcpy(bytes, src + 1, sizeof bytes);
            bytes[0] = (bytes[0] & ~mask) | (value & mask);
            bytes[1] = (bytes[1] & ~mask) | (value & mask);
            std::memcpy(dst, bytes, sizeof bytes);
        } else if (run && dst_end - dst >= kLongestPacket) {
            const std::uint64_t value = src[1] * kEachByte;
            const std::uint64_t bytes[2] = {value, value};
            for (std::int64_t i = 0; i < length; i += kShort) {
                std::memcpy(dst + i, bytes, sizeof bytes);
            }
        } else if (!run && dst_end - dst >= kLongestPacket && src_end - src > kLongestPacket) {
            move_pieces(src + 1, dst, length);
        } else {
            break;
        }
        src += run ? 2 : length + 1;
        dst += length;
    }
    at = {src, dst, src_end - src, dst_end - dst};
}

// Decodes one packet byte by byte. `behind` is the byte after the input.
void decode_packet(Progress& at, const unsigned char* behind) {
    const unsigned char control = *at.src++;
    --at.in;
    if (control == kNoOperation) {
        return;
    }
    std::int64_t length = 0;
    if (control > kNoOperation) {
        // Deliberately does not require the value byte to lie inside the input, which is the settled
        // behaviour: at the end of the input the byte after it is taken, `in` becomes -1, and the input
        // counts as used up.
        length = std::min<std::int64_t>(257 - control, at.out);
        std::memset(at.dst, at.in > 0 ? *at.src : *behind, static_cast<std::size_t>(length));
        ++at.src;
        --at.in;
    } else {
        // With no input left this copies nothing and leaves output unfilled.
        length = std::min({std::int64_t{control} + 1, at.in, at.out});
        std::memcpy(at.dst, at.src, static_cast<std::size_t>(length));
        at.src += length;
        at.in -= length;
    }
    at.dst += length;
    at.out -= length;
}

bool decode(Progress at, const unsigned char* behind) {
    while (at.out > 0 && at.in > 0) {
        decode_with_room(at);
        if (at.out > 0 && at.in > 0) {
            decode_packet(at, behind);
        }
    }
    return at.out <= 0 && at.in <= 0;
}

}  // namespace

std::int32_t pack_bits_encode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                              std::int32_t dstLen) {
    if (srcLen <= 0) {
        return 0;
    }
    PacketWriter writer(dst, dstLen);
    EqualBytes equal(src, srcLen);
    std::int64_t place = 0;
    while (place < srcLen) {
        const std::int64_t run = equal.next_even(place);
        if (run > place && !writer.add_literal(src + place, run - place, srcLen - place)) {
            return 0;
        }
        place = run;
        if (place == srcLen) {
            break;
        }
        // The two bytes after an even place belong to the run as well.
        const std::int64_t longest = std::min<std::int64_t>(run + kLongestPacket, srcLen);
        place = equal.next_uneven(run, longest - 2) + 2;
        if (!writer.add_run(src[run], place - run)) {
            return 0;
        }
    }
    return writer.finish();
}

bool pack_bits_decode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                      std::int32_t dstLen) {
    return decode({src, dst, srcLen, dstLen}, srcLen > 0 ? src + srcLen : &kNothing);
}

bool pack_bits_decode_block(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                            std::int32_t dstLen) {
    return decode({src, dst, srcLen, dstLen}, &kNothing);
}
