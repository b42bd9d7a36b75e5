#include "cli/scene/written_number.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "composition/read/number_scan.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Case {
    const char* name;
    const char* text;
    double kept;
    bool integer;
    bool as_written;
};

const Case kCases[] = {
    {"whole number", "25", 25, true, true},
    {"negative whole number", "-5", -5, true, true},
    {"fraction of nothing", "25.0", 25, true, true},
    {"fraction is dropped", "29.97", 29, true, false},
    {"exponent of an integer is dropped", "1e3", 1, true, false},
    {"hexadecimal integer ends at the x", "0x1F", 0, true, false},
    {"beyond 32 bits", "3000000000", 2147483647, true, false},
    {"minus sign alone says nothing", "-", 0, true, false},
    {"real number", "1.0667", 1.0667F, false, true},
    {"rounding to single precision is no change", "0.1", 0.1F, false, true},
    {"hexadecimal real", "0x1F", 31, false, true},
    {"negative hexadecimal real", "-0x1.8", -1.5, false, true},
    {"two full stops", "1.2.3", 1.2F, false, false},
    {"exponent letter without digits", "7E", 7, false, false},
    {"too large for single precision", "1e39", kInfinity, false, false},
    {"too large for anything", "1e999", kInfinity, false, false},
    {"too small for single precision", "1e-60", 0, false, false},
    {"zero", "-0.0", 0, false, true},
    {"full stop alone", ".", 0, false, false},
    {"two signs", "--1", 0, false, false},
};

TEST(WrittenNumber, IsKeptAsWritten) {
    for (const Case& one : kCases) {
        EXPECT_EQ(cli::is_kept_as_written(whole_number(one.text), one.kept, one.integer), one.as_written)
            << one.name;
    }
}

TEST(WrittenNumber, Text) {
    EXPECT_EQ(cli::shortest_text(29), "29");
    EXPECT_EQ(cli::shortest_text(-2147483648.0), "-2147483648");
    EXPECT_EQ(cli::shortest_text(static_cast<double>(1.0667F)), "1.0667");
    EXPECT_EQ(cli::shortest_text(kInfinity), "inf");
}

}  // namespace
