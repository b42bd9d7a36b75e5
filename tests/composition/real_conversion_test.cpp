#include "composition/read/real_conversion.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>

namespace {

// The functions that this system has, by name.
template <class Real>
std::map<std::string, RealAtStart<Real> (*)(const char*)> conversions() {
    return {
#if defined(__cpp_lib_to_chars)
        {"C++ library", real_by_cpp_library<Real>},
#endif
#if !defined(_WIN32)
            {"C library", real_by_c_library<Real>},
#endif
    };
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Case {
    const char* why;
    std::string text;
    std::size_t length;
    float value;
    bool in_range = true;
};

TEST(RealConversion, ReadsTheSameExtentAndValueByEitherLibrary) {
    constexpr auto kFar = static_cast<float>(kInfinity);
    const Case cases[] = {
        {"whole number", "40", 2, 40},
        {"text behind it", "40 }", 2, 40},
        {"no digit before the point", ".5", 2, 0.5F},
        {"no digit behind the point", "5.x", 2, 5},
        {"a second point ends it", "1.2.3", 3, 1.2F},
        {"exponent", "12.5e+3", 7, 12500},
        {"exponent in capitals", "2E-1", 4, 0.2F},
        {"an exponent letter without digits is no part of it", "7E", 1, 7},
        {"nor is one with a sign alone", "7e+x", 1, 7},
        {"hexadecimal", "0x1F", 4, 31},
        {"hexadecimal in capitals with a fraction", "0X1.8", 5, 1.5F},
        {"hexadecimal without a digit before the point", "0x.8", 4, 0.5F},
        {"hexadecimal exponent", "0x1p4", 5, 16},
        {"hexadecimal exponent without digits", "0x1p", 3, 1},
        {"letters e are digits there", "0x1e2", 5, 482},
        {"a prefix alone is the zero before the x", "0x", 1, 0},
        {"a prefix and a point", "0x.", 1, 0},
        {"a prefix and an exponent", "0x.p1", 1, 0},
        {"a prefix and a sign", "0x-5", 1, 0},
        {"a prefix and a name", "0xinf", 1, 0},
        {"infinity", "inf", 3, kFar},
        {"infinity in full, in any case", "iNFiniTY", 8, kFar},
        {"infinity in part", "infinit", 3, kFar},
        {"too large", "1e39", 4, kFar, false},
        {"too large by an endless exponent", "1e99999999999999999999999", 25, kFar, false},
        {"too large by digits alone", "1" + std::string(400, '0'), 401, kFar, false},
        {"too large hexadecimal", "0x1p128", 7, kFar, false},
        {"rounds to too large", "3.4028235677973367e38", 21, kFar, false},
        {"largest", "3.40282347e38", 13, std::numeric_limits<float>::max()},
        {"smallest", "1.4e-45", 7, std::numeric_limits<float>::denorm_min()},
        {"too small", "1e-60", 5, 0, false},
        {"too small by zeros alone", "0." + std::string(400, '0') + "1", 403, 0, false},
        {"too small hexadecimal", "0x1p-151", 8, 0, false},
        {"zero with a huge exponent", "0e999", 5, 0},
        {"zero with a tiny exponent", "0.0e-999", 8, 0},
        {"many digits and an exponent that brings them back", "1" + std::string(60, '0') + "e-60", 65, 1},
        {"nothing", "", 0, 0},
        {"a minus sign, which the caller takes", "-5", 0, 0},
        {"a plus sign, which the caller takes", "+5", 0, 0},
        {"a blank", " 5", 0, 0},
        {"a lone point", ".", 0, 0},
        {"a point and an exponent", ".e5", 0, 0},
        {"a word", "abc", 0, 0},
        {"part of a name", "in", 0, 0},
    };
    for (const auto& [library, convert] : conversions<float>()) {
        for (const Case& c : cases) {
            SCOPED_TRACE(library + ": " + c.why);
            const RealAtStart<float> number = convert(c.text.c_str());
            EXPECT_EQ(number.length, c.length);
            EXPECT_EQ(number.value, c.value);
            EXPECT_EQ(number.in_range, c.in_range);
        }
    }
}

TEST(RealConversion, ReadsNotANumberWithAndWithoutANote) {
    const std::pair<const char*, std::size_t> cases[] = {
        {"nan", 3},   {"NaN", 3},  {"nan()", 5},    {"nan(0x7_Fz)", 11},
        {"nan(a", 3}, {"nan(", 3}, {"nan(a-b)", 3}, {"nanx", 3},
    };
    for (const auto& [library, convert] : conversions<double>()) {
        for (const auto& [text, length] : cases) {
            SCOPED_TRACE(library + ": " + text);
            const RealAtStart<double> number = convert(text);
            EXPECT_EQ(number.length, length);
            EXPECT_TRUE(number.in_range);
            EXPECT_EQ(std::bit_cast<std::uint64_t>(number.value), 0x7FF8000000000000U);
        }
    }
}

TEST(RealConversion, ReachesTheRangeOfDoubles) {
    const struct {
        const char* text;
        double value;
        bool in_range;
    } cases[] = {
        {"1.7976931348623157e308", std::numeric_limits<double>::max(), true},
        {"1.7976931348623159e308", kInfinity, false},
        {"5e-324", std::numeric_limits<double>::denorm_min(), true},
        {"2e-324", 0, false},
        {"0x1p-1074", std::numeric_limits<double>::denorm_min(), true},
        {"0x1p1024", kInfinity, false},
    };
    for (const auto& [library, convert] : conversions<double>()) {
        for (const auto& c : cases) {
            SCOPED_TRACE(library + ": " + c.text);
            const RealAtStart<double> number = convert(c.text);
            EXPECT_EQ(number.value, c.value);
            EXPECT_EQ(number.in_range, c.in_range);
        }
    }
}

#if defined(__cpp_lib_to_chars) && !defined(_WIN32)

// The sanitizers take ten times as long for the same work.
#if defined(VXR_SANITIZED)
constexpr int kShare = 10;
#else
constexpr int kShare = 1;
#endif
constexpr int kTexts = 1'000'000 / kShare;

class RandomTexts {
  public:
    std::string next() {
        switch (below(8)) {
            case 0:
                return digits(25, kDecimal) + "." + digits(25, kDecimal) + exponent("e", 2);
            case 1:
                return digits(9, kDecimal) + "." + digits(9, kDecimal) + exponent("E", 3);
            case 2:
                return (below(2) == 0 ? "0x" : "0X") + digits(20, kHexadecimal) + "." +
                       digits(20, kHexadecimal) + exponent("p", 3);
            case 3:
                return beside_midpoint<float, std::uint32_t>();
            case 4:
                return beside_midpoint<double, std::uint64_t>();
            case 5:
                return kNames[below(static_cast<unsigned>(std::size(kNames)))] + digits(2, "(a)_0y.");
            case 6:
                return digits(12, "0123456789.-+abcdefABCDEFxXpPiInN");
            default:
                return digits(4, kDecimal) + "." + digits(3, kDecimal);
        }
    }

  private:
    static constexpr std::string_view kDecimal = "0123456789";
    static constexpr std::string_view kHexadecimal = "0123456789abcdefABCDEF";
    static constexpr const char* kNames[] = {"inf", "Infinity", "nan", "NAN(", "nan(1",
                                             "0x",  "0x.",      "1e",  "1p"};

    unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    std::string digits(unsigned most, std::string_view from) {
        std::string text;
        for (unsigned i = below(most + 1); i > 0; --i) {
            text += from[below(static_cast<unsigned>(from.size()))];
        }
        return text;
    }

    std::string exponent(const char* letter, unsigned most) {
        static constexpr const char* kSigns[] = {"", "-", "+"};
        return below(2) == 0 ? "" : letter + (kSigns[below(3)] + digits(most, kDecimal));
    }

    // The exact digits of the number halfway between two neighbours, or with one digit more or less, where a
    // conversion that rounds twice or stops early goes wrong.
    template <class Real, class Bits>
    std::string beside_midpoint() {
        const auto low = std::bit_cast<Real>(static_cast<Bits>(random_()) & (~Bits{0} >> 1U));
        if (!std::isfinite(low)) {
            return "inf";
        }
        const Real high = std::nextafter(low, std::numeric_limits<Real>::infinity());
        const long double middle = static_cast<long double>(low) + (static_cast<long double>(high) - low) / 2;
        std::array<char, 1200> text{};
        const int length =
            std::snprintf(text.data(), text.size(), "%.*Le", std::is_same_v<Real, float> ? 160 : 780, middle);
        std::string written(text.data(), static_cast<std::size_t>(length));
        const std::size_t letter = written.find('e');
        if (letter != std::string::npos && below(3) != 0) {
            written.insert(letter, below(2) == 0 ? "1" : "");
            written[letter - 1] = static_cast<char>('0' + below(10));
        }
        return written;
    }

    std::mt19937_64 random_{19};
};

struct Counts {
    int numbers = 0;
    int out_of_range = 0;
    int not_finite = 0;
    int none = 0;
};

template <class Real, class Bits>
void compare(const std::string& text, Counts& counts) {
    const RealAtStart<Real> one = real_by_cpp_library<Real>(text.c_str());
    const RealAtStart<Real> other = real_by_c_library<Real>(text.c_str());
    EXPECT_EQ(one.length, other.length) << text;
    EXPECT_EQ(one.in_range, other.in_range) << text;
    EXPECT_EQ(std::bit_cast<Bits>(one.value), std::bit_cast<Bits>(other.value)) << text;
    counts.numbers += one.length != 0 && one.in_range && std::isfinite(one.value) ? 1 : 0;
    counts.out_of_range += one.in_range ? 0 : 1;
    counts.not_finite += one.in_range && !std::isfinite(one.value) ? 1 : 0;
    counts.none += one.length == 0 ? 1 : 0;
}

TEST(RealConversion, BothLibrariesGiveTheSameBitsOnAMillionTexts) {
    RandomTexts texts;
    Counts counts;
    for (int i = 0; i < kTexts && !HasFailure(); ++i) {
        const std::string text = texts.next();
        compare<float, std::uint32_t>(text, counts);
        compare<double, std::uint64_t>(text, counts);
    }
    // Each kind of result occurs often enough to mean something.
    EXPECT_GT(counts.numbers, kTexts);
    EXPECT_GT(counts.out_of_range, kTexts / 100);
    EXPECT_GT(counts.not_finite, kTexts / 20);
    EXPECT_GT(counts.none, kTexts / 20);
}

#endif

}  // namespace
