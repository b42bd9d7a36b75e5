#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Numbers in the form that exporters write: an optional minus sign and up to eight digits with an optional
// decimal point. They are converted eight bytes at a time, to the same bits as StrToReal and StrToVal give;
// every other form is left to those two.

namespace plain_number {

/// How many bytes before a number its conversion may read.
inline constexpr std::size_t kBytesBefore = 16;

/// The same byte eight times.
constexpr std::uint64_t eight(unsigned char byte) {
    return 0x0101010101010101U * byte;
}

/// Eight bytes, the first in the lowest byte.
inline std::uint64_t load_eight(const char* bytes) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::endian::native == std::endian::big) {
        value = __builtin_bswap64(value);
    }
    return value;
}

/// The number formed by eight digits, each a byte of 0 to 9, the first in the lowest byte.
constexpr std::uint32_t eight_digits(std::uint64_t digits) {
    // Combines pairs of digits, then of two-digit and of four-digit numbers, in parallel.
    digits = digits * 10 + (digits >> 8);
    digits = ((digits & 0x000000FF000000FFU) * 0x000F424000000064U +
              ((digits >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U) >>
             32;
    return static_cast<std::uint32_t>(digits);
}

inline constexpr std::size_t kMostDigits = 8;

/// Masks for the last 0 to 8 of eight bytes. The entry for 9 serves eight digits with a decimal point.
inline constexpr std::uint64_t kLastBytes[kMostDigits + 2] = {
    0,
    0xFF00000000000000U,
    0xFFFF000000000000U,
    0xFFFFFF0000000000U,
    0xFFFFFFFF00000000U,
    0xFFFFFFFFFF000000U,
    0xFFFFFFFFFFFF0000U,
    0xFFFFFFFFFFFFFF00U,
    0xFFFFFFFFFFFFFFFFU,
    0xFFFFFFFFFFFFFFFFU,
};

/// Reads the last `count` of eight characters as a number. Returns false when one of them is not a digit.
inline bool read_digits(std::uint64_t characters, std::size_t count, std::int32_t& number) {
    const std::uint64_t digits = (characters ^ eight('0')) & kLastBytes[count];
    if ((((digits + eight(0x76)) | digits) & eight(0x80)) != 0) {
        return false;
    }
    number = static_cast<std::int32_t>(eight_digits(digits));
    return true;
}

/// Splits the text from `begin`, after the sign, to `end` into its digits, as if there were no decimal point,
/// and the number of digits after the point. Returns false when it is not plain. Reads the kBytesBefore bytes
/// before `end`, whatever they are.
inline bool read_parts(const char* begin, const char* end, std::int32_t& digits, std::size_t& fraction) {
    const auto length = static_cast<std::size_t>(end - begin);
    if (length - 1 > kMostDigits) {  // 0 wraps around
        return false;
    }
    const std::uint64_t tail = load_eight(end - 8);
    // The highest bit of every byte that is a point. The byte after a point may wrongly be taken for another
    // point; it then counts as one of the digits, and the number is rejected.
    const std::uint64_t without = tail ^ eight('.');
    const std::uint64_t points = (without - eight(1)) & ~without & eight(0x80) & kLastBytes[length];
    fraction = 0;
    if (points == 0) {
        return length <= kMostDigits && read_digits(tail, length, digits);
    }
    fraction = static_cast<std::size_t>(std::countl_zero(points)) / 8;
    // The digits before the point move up by one, next to those after it.
    const std::uint64_t behind = kLastBytes[fraction];
    const std::uint64_t moved = load_eight(end - 9);
    return length > 1 && read_digits((tail & behind) | (moved & ~behind), length - 1, digits);
}

/// Reads the text from `begin` to `end`, which is not empty, as StrToReal does. Returns false and leaves
/// `value` unchanged when it is not plain, and for the few plain numbers close to the midpoint of two floats.
inline bool read_real(const char* begin, const char* end, float& value) {
    static constexpr double kScales[] = {1, 1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7};
    const std::size_t negative = *begin == '-' ? 1 : 0;
    std::int32_t digits = 0;
    std::size_t fraction = 0;
    if (!read_parts(begin + negative, end, digits, fraction)) {
        return false;
    }
    // The scale and the product are each rounded once, so the product is off by at most two units in the last
    // place. Rounding it to single precision gives the correctly rounded number unless it is that close to
    // the midpoint of two floats.
    const double product = static_cast<double>(digits) * kScales[fraction];
    constexpr std::uint64_t kDroppedBits = (std::uint64_t{1} << 29) - 1;
    constexpr std::uint64_t kMiddle = (kDroppedBits + 1) / 2;
    constexpr std::uint64_t kNear = 4;
    if ((std::bit_cast<std::uint64_t>(product) & kDroppedBits) - (kMiddle - kNear) <= 2 * kNear) {
        return false;
    }
    // The sign is set as a bit: signs are random, and a mispredicted branch costs more than the conversion.
    value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(static_cast<float>(product)) |
                                 (static_cast<std::uint32_t>(negative) << 31));
    return true;
}

/// Reads the text from `begin` to `end`, which is not empty, as StrToVal does. Returns false and leaves
/// `value` unchanged when it is not plain or has a decimal point.
inline bool read_integer(const char* begin, const char* end, std::int32_t& value) {
    const std::size_t negative = *begin == '-' ? 1 : 0;
    const auto length = static_cast<std::size_t>(end - begin) - negative;
    std::int32_t digits = 0;
    if (length - 1 >= kMostDigits || !read_digits(load_eight(end - 8), length, digits)) {
        return false;
    }
    value = negative != 0 ? -digits : digits;
    return true;
}

/// Whether `c` ends a number: any byte up to the blank.
inline bool is_separator(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

/// The result of looking for a number in a block of text.
struct Found {
    const char* behind = nullptr;  ///< the separator after a plain number, or null
    bool cut = false;              ///< null because the block ends inside a number
};

/// Reads the number at `at`, in a block that ends at `limit`, with `read`.
template <class Value>
Found find_number(const char* at, const char* limit, bool (*read)(const char*, const char*, Value&),
                  Value& value) {
    const char* behind = at;
    while (behind < limit && ((*behind >= '0' && *behind <= '9') || *behind == '.' || *behind == '-')) {
        ++behind;
    }
    if (behind == limit) {
        return {nullptr, true};
    }
    return {behind != at && is_separator(*behind) && read(at, behind, value) ? behind : nullptr, false};
}

/// How many bytes from `at` the two functions below read.
inline constexpr std::ptrdiff_t kShortBytes = 9;

/// Reads an integer of up to seven digits at `at`, as StrToVal does, and returns the separator after it.
/// Returns null and leaves `value` unchanged at anything else.
inline const char* find_short_integer(const char* at, std::int32_t& value) {
    const bool negative = *at == '-';
    const char* const begin = at + (negative ? 1 : 0);
    const char* const most = begin + kMostDigits - 1;
    const char* end = begin;
    std::int32_t number = 0;
    while (end < most && *end >= '0' && *end <= '9') {
        number = number * 10 + (*end - '0');
        ++end;
    }
    if (end == begin || !is_separator(*end)) {
        return nullptr;
    }
    value = negative ? -number : number;
    return end;
}

/// Reads a number with a decimal point and up to seven digits at `at`, as StrToReal does, and returns the
/// separator after it. Returns null and leaves `value` unchanged at anything else.
inline const char* find_short_real(const char* at, float& value) {
    static constexpr float kPowers[] = {1, 10, 100, 1e3F, 1e4F, 1e5F, 1e6F};
    const std::uint32_t negative = *at == '-' ? 1 : 0;
    at += negative;
    // Digits become 0 to 9. The highest bit of every byte that is not a digit; a digit after a byte that is
    // neither digit nor point may wrongly be taken for one.
    const std::uint64_t text = load_eight(at) ^ eight('0');
    const std::uint64_t others = ((text + eight(0x76)) | text) & eight(0x80);
    const std::uint64_t behind_point = others & (others - 1);
    if (behind_point == 0) {
        return nullptr;
    }
    const auto point = static_cast<std::size_t>(std::countr_zero(others)) / 8;
    const auto end = static_cast<std::size_t>(std::countr_zero(behind_point)) / 8;
    if (at[point] != '.' || !is_separator(at[end]) || end == 1) {
        return nullptr;
    }
    // The digits after the point move down next to those before it, and the last digit to the highest byte.
    const std::uint64_t moved = text >> 8;
    const std::uint64_t before = (others ^ (others - 1)) >> 8;
    const std::uint64_t digits = (moved ^ ((moved ^ text) & before)) << (8 * (9 - end));
    // Both are exact in single precision, since seven digits are less than 2^24, so their quotient is rounded
    // only once.
    const float magnitude =
        static_cast<float>(static_cast<std::int32_t>(eight_digits(digits))) / kPowers[end - point - 1];
    // The sign is set as a bit: signs are random, and a mispredicted branch costs more than the conversion.
    value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (negative << 31));
    return at + end;
}

}  // namespace plain_number
