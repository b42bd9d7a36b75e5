#include "texture/kernel/expand_to_16_bits.h"

#include <algorithm>
#include <bit>

#include "texture/kernel/cache_hints.h"
#include "texture/kernel/u8x16.h"

namespace {

constexpr std::int64_t kBytesAtOnce = 16;  // bytes in, values out: two blocks of 16 bytes

template <ExpandInto To>
std::uint16_t expanded(unsigned char byte) {
    return static_cast<std::uint16_t>(To == ExpandInto::high_byte ? byte * 256 : byte);
}

template <ExpandInto To>
void expand(const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    for (std::int64_t i = 0; i < count; ++i) {
        values[i] = expanded<To>(bytes[i]);
    }
}

template <ExpandInto To>
void expand_and_prefetch(const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                         const std::uint16_t* next) {
    constexpr std::int64_t kLineValues = 32;  // in a cache line
    std::int64_t i = 0;
    for (; i + kLineValues <= count; i += kLineValues) {
        prefetch_to_write(next + i);
        expand<To>(bytes + i, kLineValues, values + i);
    }
    expand<To>(bytes + i, count - i, values + i);
}

template <ExpandInto To>
void stream(const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    constexpr bool kByteFirst = (To == ExpandInto::low_byte) == (std::endian::native == std::endian::little);
    // Values have even addresses, so a whole number of them precedes the first aligned block.
    const auto misplaced = static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(values) % 16);
    const std::int64_t head = std::min((16 - misplaced) % 16 / 2, count);
    expand<To>(bytes, head, values);
    std::int64_t i = head;
    const u8x16 zeros{};
    for (; i + kBytesAtOnce <= count; i += kBytesAtOnce) {
        const u8x16 block = load_u8x16(bytes + i);
        const u8x16 first = kByteFirst ? block : zeros;
        const u8x16 second = kByteFirst ? zeros : block;
        stream_u8x16(zip_low(first, second), values + i);
        stream_u8x16(zip_high(first, second), values + i + kBytesAtOnce / 2);
    }
    end_stream();
    expand<To>(bytes + i, count - i, values + i);
}

}  // namespace

void expand_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values,
                       const std::uint16_t* next) {
    if (to == ExpandInto::high_byte) {
        expand_and_prefetch<ExpandInto::high_byte>(bytes, count, values, next);
    } else {
        expand_and_prefetch<ExpandInto::low_byte>(bytes, count, values, next);
    }
}

void stream_to_16_bits(ExpandInto to, const unsigned char* bytes, std::int64_t count, std::uint16_t* values) {
    if (to == ExpandInto::high_byte) {
        stream<ExpandInto::high_byte>(bytes, count, values);
    } else {
        stream<ExpandInto::low_byte>(bytes, count, values);
    }
}
