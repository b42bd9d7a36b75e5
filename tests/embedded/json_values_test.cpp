#include "embedded/json_values.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

namespace {

using embedded::Json;
using embedded::json_number;
using embedded::json_text;

TEST(JsonText, IsAStringIfItIsUtf8) {
    struct {
        const char* name;
        std::string text;
        const char* json;
    } const cases[] = {
        {"ASCII", "plain", "\"plain\""},
        {"empty", "", "\"\""},
        {"quotes and control characters", "a\"\n\x01", "\"a\\\"\\n\\u0001\""},
        {"two bytes", "\xC3\xA4", "\"\xC3\xA4\""},
        {"three bytes", "\xE2\x82\xAC", "\"\xE2\x82\xAC\""},
        {"four bytes", "\xF0\x9F\x8E\xAC", "\"\xF0\x9F\x8E\xAC\""},
        {"the highest code point", "\xF4\x8F\xBF\xBF", "\"\xF4\x8F\xBF\xBF\""},
        {"beyond the highest code point", "\xF4\x90\x80\x80", "{\"bytes\":\"f4908080\"}"},
        {"Latin-1", "\xE4", "{\"bytes\":\"e4\"}"},
        {"a continuation byte alone", "\x80", "{\"bytes\":\"80\"}"},
        {"cut in the middle", "a\xE2\x82", "{\"bytes\":\"61e282\"}"},
        {"overlong in two bytes", "\xC0\xAF", "{\"bytes\":\"c0af\"}"},
        {"overlong in three bytes", "\xE0\x80\xAF", "{\"bytes\":\"e080af\"}"},
        {"overlong in four bytes", "\xF0\x80\x80\xAF", "{\"bytes\":\"f08080af\"}"},
        {"a surrogate", "\xED\xA0\x80", "{\"bytes\":\"eda080\"}"},
        {"a byte that is never UTF-8", "\xFF", "{\"bytes\":\"ff\"}"},
        {"a NUL byte", std::string("a\0b", 3), "\"a\\u0000b\""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(json_text(c.text).dump(), c.json) << c.name;
    }
}

TEST(JsonNumber, ReadsBackToTheSameBits) {
    const auto reads_back = [](double value) {
        const double read = Json::parse(json_number(value).dump()).get<double>();
        EXPECT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(value)) << value;
    };
    for (const double value : {0.0, -0.0, 1.0, 0.1, 1.0 / 3.0, 5e-324, 2.2250738585072014e-308,
                               1.7976931348623157e308, -123456789.125}) {
        reads_back(value);
    }
    std::mt19937_64 random(20);
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(random());
        if (std::isfinite(value)) {
            reads_back(value);
        }
    }
}

TEST(JsonNumber, WritesInfinityAndNanAsText) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(json_number(infinity).dump(), "\"inf\"");
    EXPECT_EQ(json_number(-infinity).dump(), "\"-inf\"");
    EXPECT_EQ(json_number(std::nan("")).dump(), "\"nan\"");
    EXPECT_EQ(json_number(-0.0).dump(), "-0.0");
}

TEST(JsonRecords, HaveEveryMember) {
    EXPECT_EQ(embedded::json_time({-5, 25}).dump(), R"({"value":-5,"scale":25})");
    EXPECT_EQ(embedded::json_ratio({106, 100}).dump(), R"({"num":106,"den":100})");
    EXPECT_EQ(embedded::json_transfer_mode({5, 1, 2}).dump(), R"({"mode":5,"flags":1,"track_matte":2})");
    EXPECT_EQ(embedded::json_code(four_char_code("TXL ")).dump(), "\"TXL \"");
    EXPECT_EQ(embedded::json_code(-1).dump(), "-1");
    AEIO_AlphaLabel label{};
    label.version = 0x0101;
    label.flags = 1;
    label.alpha_type = 1;
    EXPECT_EQ(embedded::json_alpha_label(label).dump(),
              R"({"version":257,"flags":1,"red":0,"green":0,"blue":0,"alpha_type":1})");
    AEGP_FootageInterp record{};
    record.interlace = {1, 2, 3, 4, 5};
    record.alpha = {6, 7, 8, 9};
    record.pulldown_phase = 10;
    record.loop = {11, 12};
    record.pixel_aspect = {13, 14};
    record.native_fps = 15.5;
    record.conform_fps = 16.0;
    record.depth = 17;
    record.motion = 1;
    EXPECT_EQ(embedded::json_interpretation(record).dump(),
              R"({"interlace":{"signature":1,"version":2,"type":3,"order":4,"reserved":5},)"
              R"("alpha":{"flags":6,"red":7,"green":8,"blue":9},"pulldown_phase":10,)"
              R"("loop":{"loops":11,"reserved":12},"pixel_aspect":{"num":13,"den":14},)"
              R"("native_fps":15.5,"conform_fps":16.0,"depth":17,"motion":1})");
}

}  // namespace
