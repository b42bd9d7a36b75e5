#include "texture/kernel/expand_to_16_bits.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "texture/exact_buffer.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Case {
    const char* name;
    ExpandInto to;
    std::uint16_t factor;
    bool streamed;
};

const Case kCases[] = {
    {"Colour", ExpandInto::high_byte, 256, false},
    {"ColourPastTheCaches", ExpandInto::high_byte, 256, true},
    {"Alpha", ExpandInto::low_byte, 1, false},
    {"AlphaPastTheCaches", ExpandInto::low_byte, 1, true},
};

class ExpandTo16Bits : public testing::TestWithParam<Case> {};

// Rows begin anywhere in a picture; buffers of exactly the size: with the sanitizer a touch outside fails.
TEST_P(ExpandTo16Bits, AreTheBytesTimesTheFactorWhereverTheRowBegins) {
    std::mt19937 random(11);
    for (std::size_t count = 0; count <= 100; ++count) {
        Bytes bytes(count);
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
        ExactBuffer source(bytes);
        for (std::size_t begin = 0; begin < 9; ++begin) {
            const std::unique_ptr<std::uint16_t[]> picture(new std::uint16_t[begin + count]);
            std::uint16_t* const row = picture.get() + begin;
            const auto values = static_cast<std::int64_t>(count);
            if (GetParam().streamed) {
                stream_to_16_bits(GetParam().to, source.data(), values, row);
            } else {
                expand_to_16_bits(GetParam().to, source.data(), values, row, row);
            }
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(row[i], bytes[i] * GetParam().factor) << i << " of " << count << " from " << begin;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, ExpandTo16Bits, testing::ValuesIn(kCases),
                         [](const auto& test) { return test.param.name; });

}  // namespace
