#include "texture/kernel/expand_to_16_bits.h"

#include <algorithm>
#include <bit>

#include "texture/kernel/u8x16.h"
#include "texture/kernel/cache_hints.h"

namespace {

constexpr std::int64_t kBytesAtOnce = 16;  // bytes in, values out: two blocks of 16 bytes

template <WidenedTo To>
std::uint16_t Widened(unsigned char byte) {
    return static_cast<std::uint16_t>(To == WidenedTo::high_byte ? byte * 256 : byte);
}

template <WidenedTo To>
void Widen(const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    for (std::int64_t i = 0; i < count; ++i)
        values[i] = Widened<To>(bytes[i]);
}

template <WidenedTo To>
void WidenAndFetch(const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                   const std::uint16_t* next) {
    constexpr std::int64_t kLineValues = 32;  // in a cache line
    std::int64_t i = 0;
    for (; i + kLineValues <= count; i += kLineValues) {
        FetchToWrite(next + i);
        Widen<To>(bytes + i, kLineValues, values + i);
    }
    Widen<To>(bytes + i, count - i, values + i);
}

template <WidenedTo To>
void Stream(const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    constexpr bool kByteFirst = (To == WidenedTo::low_byte) == (std::endian::native == std::endian::little);
    // Values lie at even addresses, so a whole number of them is in front of the first block.
    const auto misplaced = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(values) % 16);
    const std::int64_t head = std::min((16 - misplaced) % 16 / 2, count);
    Widen<To>(bytes, head, values);
    std::int64_t i = head;
    const Bytes16 zeros{};
    for (; i + kBytesAtOnce <= count; i += kBytesAtOnce) {
        const Bytes16 block = LoadBytes16(bytes + i);
        const Bytes16 first = kByteFirst ? block : zeros;
        const Bytes16 second = kByteFirst ? zeros : block;
        StreamBytes16(ZipLow(first, second), values + i);
        StreamBytes16(ZipHigh(first, second), values + i + kBytesAtOnce / 2);
    }
    EndStream();
    Widen<To>(bytes + i, count - i, values + i);
}

}  // namespace

void WidenBytes(WidenedTo to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                const std::uint16_t* next) {
    if (to == WidenedTo::high_byte)
        WidenAndFetch<WidenedTo::high_byte>(bytes, count, values, next);
    else
        WidenAndFetch<WidenedTo::low_byte>(bytes, count, values, next);
}

void StreamWidenedBytes(WidenedTo to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    if (to == WidenedTo::high_byte)
        Stream<WidenedTo::high_byte>(bytes, count, values);
    else
        Stream<WidenedTo::low_byte>(bytes, count, values);
}
