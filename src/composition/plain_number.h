#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

// Numbers in the form that exporters write: an optional minus sign and up to eight digits, a point among them
// or not. They are converted eight bytes at a time, to the same bits as StrToReal and StrToVal give; every
// other form is left to those.

/// The words of a block of text end at its separators: all bytes up to the blank. Keeps where they are.
template <std::size_t kBlockBytes>
class SeparatorMap {
  public:
    /// Looks at `count` bytes from `block`, at most kBlockBytes; reads up to seven more.
    void Build(const char* block, std::size_t count);

    /// How many bytes window() tells about.
    static constexpr std::size_t kWindowBytes = 64;

    /// One bit for each of the bytes from `from` on, the first in the lowest place: whether it is a
    /// separator. `from` is less than kBlockBytes; behind the end there are none.
    [[nodiscard]] std::uint64_t Window(std::size_t from) const {
        const std::size_t word = from / kWindowBytes;
        const std::size_t bit = from % kWindowBytes;
        return (words_[word] >> bit) | ((words_[word + 1] << 1) << (kWindowBytes - 1 - bit));
    }

  private:
    static constexpr std::size_t kWords = kBlockBytes / kWindowBytes + 1;
    std::uint64_t words_[kWords + 1] = {};  // and one of none
};

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

}  // namespace plain_number

template <std::size_t kBlockBytes>
void SeparatorMap<kBlockBytes>::Build(const char* block, std::size_t count) {
    using plain_number::eight;
    for (std::size_t word = 0; word < kWords; ++word) {
        std::uint64_t bits = 0;
        for (std::size_t byte = 0; byte < kWindowBytes; byte += 8) {
            const std::size_t at = word * kWindowBytes + byte;
            if (at >= count) {
                break;
            }
            const std::uint64_t text = plain_number::load_eight(block + at);
            // 0x80 for a byte above the blank, then for every other, then one bit each.
            const std::uint64_t above = ((text & eight(0x7F)) + eight(0x7F - ' ')) | text;
            const std::uint64_t separators = ~above & eight(0x80);
            bits |= ((separators >> 7) * 0x0102040810204080U >> 56) << byte;
        }
        words_[word] = bits;
    }
    if (count < kBlockBytes) {
        words_[count / kWindowBytes] &= ~(~std::uint64_t{0} << (count % kWindowBytes));
    }
}
