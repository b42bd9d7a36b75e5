#include "composition/read/plain_number.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>

#include "composition/read/number_scan.h"

namespace {

// The sanitizers take ten times as long for the same work.
#if defined(VXR_SANITIZED)
constexpr int kShare = 11;  // shares no factor with the base of the numbers
#else
constexpr int kShare = 1;
#endif
constexpr int kTexts = 1'000'000 / kShare;

// A number's text has other text before and after it, as in a file.
class TextInBlock {
  public:
    explicit TextInBlock(const std::string& text) : block_("KEY -9.5 ...77 x" + text + " 1.5\n") {}
    [[nodiscard]] const char* begin() const { return block_.data() + plain_number::kBytesBefore; }
    [[nodiscard]] const char* end() const { return block_.data() + block_.size() - 5; }

  private:
    std::string block_;
};

// Whether the text is plain. Expects the result of the general conversion, to the last bit, if it is.
bool agrees_as_real(const std::string& text) {
    const TextInBlock block(text);
    float plain = -77.0F;
    if (!plain_number::read_real(block.begin(), block.end(), plain)) {
        EXPECT_EQ(plain, -77.0F) << text;
        return false;
    }
    float general = 0;
    EXPECT_EQ(StrToReal(text.c_str(), general), 1) << text;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(plain), std::bit_cast<std::uint32_t>(general)) << text;
    return true;
}

bool agrees_as_integer(const std::string& text) {
    const TextInBlock block(text);
    A_long plain = -77;
    if (!plain_number::read_integer(block.begin(), block.end(), plain)) {
        EXPECT_EQ(plain, -77) << text;
        return false;
    }
    A_long general = 0;
    EXPECT_EQ(StrToVal(text.c_str(), general), 1) << text;
    EXPECT_EQ(plain, general) << text;
    return true;
}

struct FormCase {
    const char* why;
    const char* text;
    bool real;
    bool integer;
};

TEST(PlainNumber, AcceptsOnlyThePlainForm) {
    const FormCase cases[] = {
        {"one digit", "7", true, true},
        {"negative", "-140", true, true},
        {"negative zero", "-0", true, true},
        {"eight digits", "12345678", true, true},
        {"nine digits", "123456789", false, false},
        {"leading zeros count as digits", "00000001", true, true},
        {"a point", "-140.458", true, false},
        {"eight digits and a point", "12345.678", true, false},
        {"nine digits and a point", "123456.789", false, false},
        {"seven digits after the point", "1.2345678", true, false},
        {"eight digits after the point", ".12345678", false, false},
        {"no digit before the point", "-.5", true, false},
        {"no digit after the point", "5.", true, false},
        {"eight digits and a point after them", "12345678.", true, false},
        {"a point alone", ".", false, false},
        {"a minus sign alone", "-", false, false},
        {"a minus sign and a point", "-.", false, false},
        {"two points", "1.2.3", false, false},
        {"two points side by side", "1..2", false, false},
        {"two minus signs", "--5", false, false},
        {"a minus sign inside", "1-2", false, false},
        {"a plus sign", "+5", false, false},
        {"an exponent", "1e5", false, false},
        {"hexadecimal", "0x1F", false, false},
        {"a slash next to the point", "1./2", false, false},
        {"a slash before the point", "1/.2", false, false},
        {"a byte above the digits", "1:2", false, false},
        {"a byte above 127", "1\xB2.5", false, false},
        {"the middle between two floats", "16777217", false, true},
    };
    for (const FormCase& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(agrees_as_real(c.text), c.real);
        EXPECT_EQ(agrees_as_integer(c.text), c.integer);
    }
}

struct NearMiddle {
    const char* text;
    float nearest;  ///< worked out as a fraction; of two that are equally near, the even one
    bool plain;     ///< read here, not left to the general conversion
};

// Between two floats of this size there is exactly one plain number in the middle, or none. Rounding twice,
// rounding up, or cutting off goes wrong here and nowhere else.
TEST(PlainNumber, TheMiddleBetweenTwoFloatsIsLeftToTheGeneralConversion) {
    const NearMiddle cases[] = {
        {"16777216", 0x1.000000p+24F, true},    {"16777217", 0x1.000000p+24F, false},
        {"16777218", 0x1.000002p+24F, true},    {"16777219", 0x1.000004p+24F, false},
        {"-16777219", -0x1.000004p+24F, false}, {"33554434", 0x1.000000p+25F, false},
        {"33554435", 0x1.000002p+25F, true},    {"33554433", 0x1.000000p+25F, true},
        {"8388608.4", 0x1.000000p+23F, true},   {"8388608.5", 0x1.000000p+23F, false},
        {"8388608.6", 0x1.000002p+23F, true},   {"8388609.5", 0x1.000004p+23F, false},
        {"4194304.2", 0x1.000000p+22F, true},   {"4194304.3", 0x1.000002p+22F, true},
        {"99999996", 0x1.7d7840p+26F, false},   {"99999997", 0x1.7d7840p+26F, true},
        {"1048576.1", 0x1.000002p+20F, true},   {"1.0000001", 0x1.000002p+0F, true},
    };
    for (const NearMiddle& one : cases) {
        SCOPED_TRACE(one.text);
        const TextInBlock block(one.text);
        float plain = -77.0F;
        EXPECT_EQ(plain_number::read_real(block.begin(), block.end(), plain), one.plain);
        EXPECT_EQ(plain, one.plain ? one.nearest : -77.0F);
        float general = 0;
        EXPECT_EQ(StrToReal(one.text, general), 1);
        EXPECT_EQ(general, one.nearest);
    }
}

std::string random_text(std::mt19937& random) {
    const auto below = [&](unsigned limit) { return static_cast<unsigned>(random()) % limit; };
    const auto digits = [&](unsigned most) {
        std::string text;
        for (unsigned i = below(most + 1); i > 0; --i) {
            text += static_cast<char>('0' + below(10));
        }
        return text;
    };
    static constexpr const char* kRare[] = {"inf", "-Infinity", "nan",   "1e999", "-1e-999",
                                            "0x",  "0x1F.8",    "7E",    "7E+",   "1.2.3",
                                            "-",   ".",         "3.5e38"};
    const std::string sign = below(2) == 0 ? "-" : "";
    switch (below(8)) {
        case 0:
            return sign + digits(12) + "." + digits(12);
        case 1:
            return sign + digits(9);
        case 2:
            return sign + digits(4) + "." + digits(4) + "e" + (below(2) == 0 ? "-" : "") + digits(3);
        case 3:
            return kRare[below(std::size(kRare))];
        case 4: {  // any characters of numbers
            static constexpr std::string_view kCharacters = "0123456789.-+abcdefABCDEFxX";
            std::string text;
            for (unsigned i = 1 + below(10); i > 0; --i) {
                text += kCharacters[below(static_cast<unsigned>(kCharacters.size()))];
            }
            return text;
        }
        default:
            return sign + digits(4) + "." + digits(3);
    }
}

TEST(PlainNumber, AgreesWithTheGeneralConversionOnRandomTexts) {
    std::mt19937 random(6);
    int reals = 0;
    int integers = 0;
    for (int i = 0; i < kTexts && !HasFailure(); ++i) {
        const std::string text = random_text(random);
        if (!text.empty()) {
            reals += agrees_as_real(text) ? 1 : 0;
            integers += agrees_as_integer(text) ? 1 : 0;
        }
    }
    EXPECT_GT(reals, 450'000 / kShare);
    EXPECT_GT(integers, 100'000 / kShare);
}

// Steps through the numbers of up to eight digits near the midpoint of two floats, where rounding twice could
// differ from rounding once.
TEST(PlainNumber, RoundsOnceNearTheMidpointOfTwoFloats) {
    for (std::int32_t number = 1 << 24; number < 100'000'000 && !HasFailure(); number += 977 * kShare) {
        for (const std::int32_t near : {number - 1, number, number + 1}) {
            std::string text = std::to_string(near);
            agrees_as_real(text);
            text.insert(text.size() - static_cast<std::size_t>(number) % 8, ".");
            agrees_as_real(text);
        }
    }
}

// The short forms, which are read in place. The byte after them matters, too.

struct ShortCase {
    const char* why;
    const char* text;
    bool real;
    bool integer;
};

TEST(ShortNumber, AcceptsOnlyTheFormsThatExportersWrite) {
    const ShortCase cases[] = {
        {"three decimals", "-140.458 ", true, false},
        {"seven digits", "1234.567 ", false, false},
        {"six digits", "123.456 ", true, false},
        {"a negative number of six digits", "-123.456 ", true, false},
        {"no digit before the point", ".5 ", true, false},
        {"no digit after the point", "5. ", true, false},
        {"six digits after the point", ".123456 ", true, false},
        {"a point alone", ". ", false, false},
        {"a minus sign and a point", "-. ", false, false},
        {"a minus sign alone", "- ", false, false},
        {"nothing", " ", false, false},
        {"no point", "45 ", false, true},
        {"seven digits without a point", "1234567 ", false, true},
        {"eight digits", "12345678 ", false, false},
        {"negative zero", "-0 ", false, true},
        {"negative zero with a point", "-0.0 ", true, false},
        {"a line end after it", "4.5\n", true, false},
        {"a NUL byte after it", "4.5\0", true, false},
        {"two points", "1.2.3 ", false, false},
        {"two points side by side", "1..2 ", false, false},
        {"an exponent", "4.5e1 ", false, false},
        {"a brace", "4.5} ", false, false},
        {"a comment", "4.5/ ", false, false},
        {"a brace at an integer", "45} ", false, false},
        {"a byte above the digits", "4:5. ", false, false},
        {"a byte above 127", "4\xB2.5 ", false, false},
        {"a byte above 127 after it", "4.5\xBF ", false, false},
        {"two minus signs", "--5.0 ", false, false},
    };
    for (const ShortCase& c : cases) {
        SCOPED_TRACE(c.why);
        const std::string block = std::string(c.text) +
                                  (c.why == std::string("a NUL byte after it") ? std::string(1, '\0') : "") +
                                  "7777777777";
        float real = -77;
        std::int32_t integer = -77;
        EXPECT_EQ(plain_number::find_short_real(block.data(), real) != nullptr, c.real);
        EXPECT_EQ(real != -77, c.real) << real;
        EXPECT_EQ(plain_number::find_short_integer(block.data(), integer) != nullptr, c.integer);
        EXPECT_EQ(integer != -77, c.integer) << integer;
    }
}

TEST(ShortNumber, AgreesWithTheGeneralConversionOnRandomTexts) {
    std::mt19937 random(8);
    static constexpr std::string_view kBehind("  \n\r\t\0/}.5-e\xFF", 13);
    int reals = 0;
    int integers = 0;
    for (int i = 0; i < kTexts && !HasFailure(); ++i) {
        const std::string text = random_text(random);
        const char behind = kBehind[random() % kBehind.size()];
        const std::string block = text + behind + std::to_string(random()) + "000000000";
        const char* const end = block.data() + text.size();
        const auto expect_at_end = [&](const char* found) {
            EXPECT_EQ(found, end) << block;
            EXPECT_LE(static_cast<unsigned char>(behind), ' ') << block;
        };
        float real = 0;
        if (const char* const found = plain_number::find_short_real(block.data(), real)) {
            expect_at_end(found);
            float general = 0;
            EXPECT_EQ(StrToReal(text.c_str(), general), 1) << block;
            EXPECT_EQ(std::bit_cast<std::uint32_t>(real), std::bit_cast<std::uint32_t>(general)) << block;
            ++reals;
        }
        A_long integer = 0;
        if (const char* const found = plain_number::find_short_integer(block.data(), integer)) {
            expect_at_end(found);
            A_long general = 0;
            EXPECT_EQ(StrToVal(text.c_str(), general), 1) << block;
            EXPECT_EQ(integer, general) << block;
            ++integers;
        }
    }
    EXPECT_GT(reals, 150'000 / kShare);
    EXPECT_GT(integers, 40'000 / kShare);
}

// Every number of up to six digits, every eleventh under the sanitizers, with the point at every place.
TEST(ShortNumber, AgreesOnEveryNumberOfSixDigits) {
    for (int number = 0; number < 1'000'000 && !HasFailure(); number += kShare) {
        std::string digits = std::to_string(1'000'000 + number).substr(1);
        digits.insert(static_cast<std::size_t>(number) % 7, ".");
        const std::string block = digits + "\n0000000";
        float real = -77;
        EXPECT_EQ(plain_number::find_short_real(block.data(), real), block.data() + 7) << block;
        float general = 0;
        EXPECT_EQ(StrToReal(digits.c_str(), general), 1);
        EXPECT_EQ(std::bit_cast<std::uint32_t>(real), std::bit_cast<std::uint32_t>(general)) << block;
    }
}

}  // namespace
