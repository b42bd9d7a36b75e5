#include "composition/read/number_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct RealCase {
    const char* why;
    std::string text;
    int result;
    float value;
};

TEST(StrToReal, TableOfTexts) {
    constexpr float kUntouched = -77.0F;
    const RealCase cases[] = {
        {"whole number", "40", 1, 40.0F},
        {"decimal", "1.0667", 1, 1.0667F},
        {"plus sign", "+2.5", 1, 2.5F},
        {"minus sign", "-12.5e+3", 1, -12500.0F},
        {"no digit before the point", ".5", 1, 0.5F},
        {"no digit after the point", "5.", 1, 5.0F},
        {"blanks before it", " \t\r\n5", 1, 5.0F},
        {"a second point ends it", "1.2.3", 1, 1.2F},
        {"an exponent letter without digits is no part of it", "7E", 1, 7.0F},
        {"nor is one with a sign alone", "7E+", 1, 7.0F},
        {"hexadecimal", "0x1F", 1, 31.0F},
        {"hexadecimal with a fraction", "0X1.8", 1, 1.5F},
        {"a hexadecimal point without digits leaves the zero before the x", "0x.", 1, 0.0F},
        {"hexadecimal fraction without a digit before the point", "0x.8", 1, 0.5F},
        {"negative hexadecimal", "-0x10", 1, -16.0F},
        {"hexadecimal exponent", "0x1p4", 1, 16.0F},
        {"infinity by name", "inf", 1, kInfinity},
        {"negative infinity by name", "-Infinity", 1, -kInfinity},
        {"beyond the range", "3.5e38", 1, kInfinity},
        {"beyond the range of a double", "-1e999", 1, -kInfinity},
        {"beyond it by digits alone", "1" + std::string(400, '0'), 1, kInfinity},
        {"beyond it with an endless exponent", "1e99999999999999999999999", 1, kInfinity},
        {"hexadecimal beyond the range", "0x1" + std::string(40, '0'), 1, kInfinity},
        {"largest of all", "3.40282347e38", 1, std::numeric_limits<float>::max()},
        {"smallest above zero", "1.4e-45", 1, std::numeric_limits<float>::denorm_min()},
        {"below the smallest", "1e-60", 1, 0.0F},
        {"below the smallest of a double", "1e-999", 1, 0.0F},
        {"below it by zeros alone", "0." + std::string(400, '0') + "1", 1, 0.0F},
        {"many digits and an exponent that brings them back", "1" + std::string(60, '0') + "e-60", 1, 1.0F},
        {"zero with a huge exponent", "0e999", 1, 0.0F},
        {"nothing", "", -1, kUntouched},
        {"blanks alone", " \t", -1, kUntouched},
        {"a lone minus sign", "-", 0, kUntouched},
        {"two signs", "--5", 0, kUntouched},
        {"mixed signs", "+-5", 0, kUntouched},
        {"a lone point", ".", 0, kUntouched},
        {"a word", "abc", 0, kUntouched},
        {"an exponent without a number", "e5", 0, kUntouched},
        {"a hexadecimal prefix alone", "0x", 0, kUntouched},
        {"a hexadecimal prefix in upper case alone", "0X", 0, kUntouched},
        {"a hexadecimal prefix behind a sign", "-0x", 0, kUntouched},
        {"a hexadecimal prefix before a blank", "0x 5", 0, kUntouched},
        {"a hexadecimal prefix before a sign", "0x-5", 0, kUntouched},
        {"a hexadecimal prefix before a name", "0xinf", 0, kUntouched},
        {"a hexadecimal prefix before an exponent", "0xp4", 0, kUntouched},
        {"a hexadecimal prefix before another", "0x0x5", 1, 0.0F},
        {"two hexadecimal prefixes in a row", "0xx5", 0, kUntouched},
    };
    for (const RealCase& c : cases) {
        SCOPED_TRACE(c.why);
        float value = kUntouched;
        EXPECT_EQ(StrToReal(c.text.c_str(), value), c.result);
        EXPECT_EQ(value, c.value);
    }
}

TEST(StrToReal, KeepsTheSignOfZeroAndOfNan) {
    float value = 1.0F;
    EXPECT_EQ(StrToReal("-0", value), 1);
    EXPECT_TRUE(value == 0.0F && std::signbit(value));
    EXPECT_EQ(StrToReal("-1e-999", value), 1);
    EXPECT_TRUE(value == 0.0F && std::signbit(value));
    EXPECT_EQ(StrToReal("-nan", value), 1);
    EXPECT_TRUE(std::isnan(value) && std::signbit(value));
}

// Texts that rounding twice would get wrong, or that are halfway between two floats. The C library's own
// conversion is the reference.
TEST(StrToReal, RoundsOnceToSinglePrecision) {
    const char* const texts[] = {
        "1.00000017881393421514957253748434595763683319091796875001",  // just above a half-way point of
                                                                       // floats
        "1.00000017881393432617187499",                                // just below one
        "1.000000178813934326171875",                                  // on it
        "16777217",
        "16777219",
        "0.1",
        "29.97",
        "8388609.5",
        "7.0064923216240853546186479164495e-46",  // half of the smallest
        "7.0064923216240853546186479164496e-46",
        "1.17549429e-38",
        "1.1754942e-38",
        "3.4028235677973366e38",  // half way to what would be next after the largest
        "3.4028235e38",
        "0x1000001",
        "0x1000001.8",
        "0x1.0000017fffffff",
        "0x1p-149",
        "0x1p-150",
        "0x1.8p-150",
        "0x1.fffffep127",
        "0x1.ffffffp127",
    };
    for (const char* const text : texts) {
        float value = -1.0F;
        ASSERT_EQ(StrToReal(text, value), 1) << text;
        const float witness = std::strtof(text, nullptr);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(witness)) << text;
    }
}

struct IntegerCase {
    const char* why;
    std::string text;
    int result;
    A_long value;
};

TEST(StrToVal, TableOfTexts) {
    constexpr A_long kUntouched = -77;
    constexpr A_long kMax = std::numeric_limits<A_long>::max();
    constexpr A_long kMin = std::numeric_limits<A_long>::min();
    const IntegerCase cases[] = {
        {"whole number", "720", 1, 720},
        {"zero", "0", 1, 0},
        {"negative", "-5", 1, -5},
        {"plus sign", "+5", 1, 5},
        {"leading zeros are decimal", "0099", 1, 99},
        {"blanks before it", " \n\v\f12", 1, 12},
        {"the fraction is ignored", "29.97", 1, 29},
        {"the exponent is ignored", "1e3", 1, 1},
        {"hexadecimal is the zero before the x", "0x1F", 1, 0},
        {"largest", "2147483647", 1, kMax},
        {"one more is the largest", "2147483648", 1, kMax},
        {"far more is the largest", std::string(300, '9'), 1, kMax},
        {"smallest", "-2147483648", 1, kMin},
        {"one less is the smallest", "-2147483649", 1, kMin},
        {"far less is the smallest", "-" + std::string(300, '9'), 1, kMin},
        {"nothing", "", -1, kUntouched},
        {"blanks alone", "  ", -1, kUntouched},
        {"a lone minus sign", "-", 0, kUntouched},
        {"two signs", "-+5", 0, kUntouched},
        {"a fraction without a whole part", ".5", 0, kUntouched},
        {"a word", "abc", 0, kUntouched},
    };
    for (const IntegerCase& c : cases) {
        SCOPED_TRACE(c.why);
        A_long value = kUntouched;
        EXPECT_EQ(StrToVal(c.text.c_str(), value), c.result);
        EXPECT_EQ(value, c.value);
    }
}

struct WholeCase {
    const char* why;
    const char* text;
    std::optional<double> value;
};

TEST(WholeNumber, TableOfTexts) {
    const WholeCase cases[] = {
        {"whole number", "720", 720},
        {"negative", "-5", -5},
        {"a fraction", "29.97", 29.97},
        {"a fraction without a whole part", ".5", 0.5},
        {"an exponent", "1e3", 1000},
        {"hexadecimal", "0x1F", 31},
        {"negative hexadecimal with a fraction", "-0x1.8", -1.5},
        {"beyond single precision", "1e39", 1e39},
        {"beyond double precision", "1e999", std::nullopt},
        {"two decimal points", "1.2.3", std::nullopt},
        {"an exponent letter without digits", "7E", std::nullopt},
        {"a prefix without digits", "0x", std::nullopt},
        {"plus sign", "+5", std::nullopt},
        {"two signs", "--1", std::nullopt},
        {"a sign after the prefix", "0x-1", std::nullopt},
        {"a lone minus sign", "-", std::nullopt},
        {"a lone decimal point", ".", std::nullopt},
        {"nothing", "", std::nullopt},
        {"something after it", "5 ", std::nullopt},
    };
    for (const WholeCase& c : cases) {
        EXPECT_EQ(whole_number(c.text), c.value) << c.why;
    }
}

}  // namespace
