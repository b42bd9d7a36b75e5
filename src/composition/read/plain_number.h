#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Numbers in the form that exporters write: an optional minus sign and up to eight digits, a point among them
// or not. They are converted eight bytes at a time, to the same bits as StrToReal and StrToVal give; every
// other form is left to those.

namespace plain_number {

/// Bytes before a number that its conversion may look at.
inline constexpr std::size_t kBytesBefore = 16;

/// The same byte eight times.
constexpr std::uint64_t eight(unsigned char byte) {
    return 0x0101010101010101U * byte;
}

/// Eight bytes, the first in the lowest place.
inline std::uint64_t load_eight(const char* bytes) {
    std::uint64_t value = 0;
    std::memcpy(&value, bytes, sizeof value);
    if constexpr (std::endian::native == std::endian::big) {
        value = __builtin_bswap64(value);
    }
    return value;
}

/// The number of eight digits, each a byte of 0 to 9, the first in the lowest place.
constexpr std::uint32_t eight_digits(std::uint64_t digits) {
    // Pairs of digits become numbers of two, of four and of eight digits, all at once.
    digits = digits * 10 + (digits >> 8);
    digits = ((digits & 0x000000FF000000FFU) * 0x000F424000000064U +
              ((digits >> 16) & 0x000000FF000000FFU) * 0x0000271000000001U) >>
             32;
    return static_cast<std::uint32_t>(digits);
}

inline constexpr std::size_t kMostDigits = 8;

/// For each number of bytes up to all eight: the last so many of them. One more count is one more digit and
/// the point.
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

/// The number that the last `count` of eight characters are, at most all of them. False when one is no digit.
inline bool read_digits(std::uint64_t characters, std::size_t count, std::int32_t& number) {
    const std::uint64_t digits = (characters ^ eight('0')) & kLastBytes[count];
    if ((((digits + eight(0x76)) | digits) & eight(0x80)) != 0) {
        return false;
    }
    number = static_cast<std::int32_t>(eight_digits(digits));
    return true;
}

/// Takes the text from `begin`, behind the sign, to `end` apart: its digits as if there were no point, and
/// how many of them are behind the point. False when it is not plain. Looks at the kBytesBefore bytes before
/// `end`, whatever they are.
inline bool read_parts(const char* begin, const char* end, std::int32_t& digits, std::size_t& fraction) {
    const auto length = static_cast<std::size_t>(end - begin);
    if (length - 1 > kMostDigits) {  // 0 wraps around
        return false;
    }
    const std::uint64_t tail = load_eight(end - 8);
    // The highest bit of every byte that is a point. Behind a point the byte one above may be taken for
    // another; what is one then stands among the digits, and the number is none.
    const std::uint64_t without = tail ^ eight('.');
    const std::uint64_t points = (without - eight(1)) & ~without & eight(0x80) & kLastBytes[length];
    fraction = 0;
    if (points == 0) {
        return length <= kMostDigits && read_digits(tail, length, digits);
    }
    fraction = static_cast<std::size_t>(std::countl_zero(points)) / 8;
    // The digits before the point move up by one, to those behind it.
    const std::uint64_t behind = kLastBytes[fraction];
    const std::uint64_t moved = load_eight(end - 9);
    return length > 1 && read_digits((tail & behind) | (moved & ~behind), length - 1, digits);
}

/// Reads the text from `begin` to `end`, which is not empty, as StrToReal does. False, `value` being left
/// alone, when it is not plain, and for the few plain ones that lie near the middle between two floats.
inline bool read_real(const char* begin, const char* end, float& value) {
    static constexpr double kScales[] = {1, 1e-1, 1e-2, 1e-3, 1e-4, 1e-5, 1e-6, 1e-7};
    const std::size_t negative = *begin == '-' ? 1 : 0;
    std::int32_t digits = 0;
    std::size_t fraction = 0;
    if (!read_parts(begin + negative, end, digits, fraction)) {
        return false;
    }
    // The scale and the product are rounded once each, so the product is off by two units of its last place
    // at most. Rounding it to single precision gives what rounding the number itself would give, unless it
    // lies as near as that to the middle between two floats.
    const double product = static_cast<double>(digits) * kScales[fraction];
    constexpr std::uint64_t kDroppedBits = (std::uint64_t{1} << 29) - 1;
    constexpr std::uint64_t kMiddle = (kDroppedBits + 1) / 2;
    constexpr std::uint64_t kNear = 4;
    if ((std::bit_cast<std::uint64_t>(product) & kDroppedBits) - (kMiddle - kNear) <= 2 * kNear) {
        return false;
    }
    // The sign as a bit: signs come as they like, and a wrongly predicted branch costs more than the
    // conversion.
    value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(static_cast<float>(product)) |
                                 (static_cast<std::uint32_t>(negative) << 31));
    return true;
}

/// Reads the text from `begin` to `end`, which is not empty, as StrToVal does. False, `value` being left
/// alone, when it is not plain or has a point.
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

/// Words end at these: all bytes up to the blank.
inline bool is_separator(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}

/// What stands at a place of a block of text.
struct Found {
    const char* behind = nullptr;  ///< the separator behind a plain number, or null
    bool cut = false;              ///< null because the block ends inside of a number
};

/// The number at `at` of a block that ends at `limit`, read by `read`.
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

/// How many bytes from `at` on the two below look at.
inline constexpr std::ptrdiff_t kShortBytes = 9;

/// Reads an integer of up to seven digits at `at`, as StrToVal does, and returns the separator behind it.
/// Null, `value` being left alone, at anything else.
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

/// Reads a number with a point and up to seven digits at `at`, as StrToReal does, and returns the separator
/// behind it. Null, `value` being left alone, at anything else.
inline const char* find_short_real(const char* at, float& value) {
    static constexpr float kPowers[] = {1, 10, 100, 1e3F, 1e4F, 1e5F, 1e6F};
    const std::uint32_t negative = *at == '-' ? 1 : 0;
    at += negative;
    // Digits become 0 to 9. The highest bit of every byte that is no digit; behind a byte that is neither
    // digit nor point a digit may be taken for another.
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
    // The digits behind the point move down to those before it, and the last of all to the highest place.
    const std::uint64_t moved = text >> 8;
    const std::uint64_t before = (others ^ (others - 1)) >> 8;
    const std::uint64_t digits = (moved ^ ((moved ^ text) & before)) << (8 * (9 - end));
    // Both are exact in single precision, seven digits being less than 2^24, so their quotient is rounded
    // once.
    const float magnitude =
        static_cast<float>(static_cast<std::int32_t>(eight_digits(digits))) / kPowers[end - point - 1];
    // The sign as a bit: signs come as they like, and a wrongly predicted branch costs more than the
    // conversion.
    value = std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (negative << 31));
    return at + end;
}

}  // namespace plain_number
