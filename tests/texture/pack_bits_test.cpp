#include "texture/txl/pack_bits.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <random>
#include <vector>

#include "texture/exact_buffer.h"
#include "texture/row_coding.h"

namespace {

Bytes repeated(std::size_t count, unsigned char value) {
    return Bytes(count, value);
}

Bytes counting(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<unsigned char>(i);
    }
    return bytes;
}

Bytes joined(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

struct EncodeCase {
    const char* name;
    Bytes plain;
    std::size_t capacity;
    std::optional<Bytes> expected;
};

const Bytes k128 = counting(128);
const Bytes k129 = counting(129);

const EncodeCase kEncodeCases[] = {
    {"no bytes give no packets", {}, 8, std::nullopt},
    {"one byte is a literal", {0x41}, 8, Bytes{0x00, 0x41}},
    {"one byte fits exactly", {0x41}, 2, Bytes{0x00, 0x41}},
    {"one byte, room for one", {0x41}, 1, std::nullopt},
    {"one byte, no room", {0x41}, 0, std::nullopt},
    {"two equal bytes are a literal", {7, 7}, 8, Bytes{0x01, 7, 7}},
    {"three equal bytes are a run", {7, 7, 7}, 8, Bytes{0xFE, 7}},
    {"a run fits exactly", {7, 7, 7}, 2, Bytes{0xFE, 7}},
    {"a run, room for one", {7, 7, 7}, 1, std::nullopt},
    {"a run, no room", {7, 7, 7}, 0, std::nullopt},
    {"equal bytes at the very end stay in the literal", {1, 7, 7}, 8, Bytes{0x02, 1, 7, 7}},
    {"literal, then run", {1, 7, 7, 7}, 4, Bytes{0x00, 1, 0xFE, 7}},
    {"literal, then run, value does not fit", {1, 7, 7, 7}, 3, std::nullopt},
    {"literal, then run, control does not fit", {1, 7, 7, 7}, 2, std::nullopt},
    {"run, then literal", {7, 7, 7, 1}, 4, Bytes{0xFE, 7, 0x00, 1}},
    {"run, then literal one too small", {7, 7, 7, 1}, 3, std::nullopt},
    {"run, then literal two too small", {7, 7, 7, 1}, 2, std::nullopt},
    {"run, then run", {7, 7, 7, 8, 8, 8}, 4, Bytes{0xFE, 7, 0xFE, 8}},
    {"run of 128", repeated(128, 9), 2, Bytes{0x81, 9}},
    {"run of 128 and a literal of 1", repeated(129, 9), 4, Bytes{0x81, 9, 0x00, 9}},
    {"run of 128 and a literal of 2", repeated(130, 9), 5, Bytes{0x81, 9, 0x01, 9, 9}},
    {"run of 128 and a run of 3", repeated(131, 9), 4, Bytes{0x81, 9, 0xFE, 9}},
    {"128 distinct bytes need room for 130", k128, 130, joined({{0x7F}, k128})},
    {"128 distinct bytes, room for only the bytes they fill", k128, 129, std::nullopt},
    {"129 distinct bytes", k129, 131, joined({{0x7F}, k128, {0x00, 0x80}})},
    {"129 distinct bytes, one too small", k129, 130, std::nullopt},
    {"a full literal, then a run", joined({k128, {7, 7, 7}}), 131, joined({{0x7F}, k128, {0xFE, 7}})},
    {"a full literal, then a run one too small", joined({k128, {7, 7, 7}}), 130, std::nullopt},
};

TEST(PackBitsEncode, Cases) {
    for (const EncodeCase& c : kEncodeCases) {
        EXPECT_EQ(encoded(c.plain, c.capacity), c.expected) << c.name;
    }
}

TEST(PackBitsEncode, LengthsBelowOneWriteNothing) {
    for (const std::int32_t length : {0, -1, INT32_MIN}) {
        ExactBuffer dst(4, 0xEE);
        const unsigned char byte = 1;
        EXPECT_EQ(pack_bits_encode(&byte, length, dst.data(), dst.size()), 0) << length;
        EXPECT_EQ(dst.all(), repeated(4, 0xEE)) << length;
    }
}

TEST(PackBitsEncode, ANegativeCapacityFails) {
    const unsigned char bytes[] = {1, 2, 2, 2};
    ExactBuffer dst(0);
    EXPECT_EQ(pack_bits_encode(bytes, 4, dst.data(), -1), 0);
    EXPECT_EQ(pack_bits_encode(bytes + 1, 3, dst.data(), INT32_MIN), 0);
}

// Calls `visit` with every sequence of 0 to `longest` letters of the alphabet; returns their number.
template <typename Visit>
std::size_t for_every_word(const Bytes& alphabet, std::size_t longest, Visit visit) {
    std::size_t words = 0;
    std::size_t of_this_length = 1;
    for (std::size_t length = 0; length <= longest; ++length) {
        for (std::size_t number = 0; number < of_this_length; ++number) {
            Bytes word(length);
            std::size_t rest = number;
            for (unsigned char& letter : word) {
                letter = alphabet[rest % alphabet.size()];
                rest /= alphabet.size();
            }
            visit(word);
        }
        words += of_this_length;
        of_this_length *= alphabet.size();
    }
    return words;
}

void expect_encoded_as_reference_at_every_capacity(const Bytes& plain) {
    const Reference reference = reference_encode(plain);
    for (std::size_t capacity = 0; capacity <= reference.room_bytes + 2; ++capacity) {
        const bool fits = !plain.empty() && capacity >= reference.room_bytes;
        const auto expected = fits ? std::optional<Bytes>(reference.coded) : std::nullopt;
        ASSERT_EQ(encoded(plain, capacity), expected)
            << testing::PrintToString(plain) << " into " << capacity;
    }
}

TEST(PackBitsEncode, EveryShortInputAtEveryCapacity) {
    EXPECT_EQ(for_every_word({0x00, 0x01, 0x80, 0xFF}, 3, expect_encoded_as_reference_at_every_capacity),
              85U);
    EXPECT_EQ(for_every_word({0x00, 0x01}, 9, expect_encoded_as_reference_at_every_capacity), 1023U);
}

struct DecodeCase {
    const char* name;
    Bytes coded;
    std::size_t wanted;
    std::optional<Bytes> expected;
};

const DecodeCase kDecodeCases[] = {
    {"nothing into nothing", {}, 0, Bytes{}},
    {"nothing into something", {}, 1, std::nullopt},
    {"something into nothing", {0x00, 0x41}, 0, std::nullopt},
    {"only a no-op into nothing", {0x80}, 0, std::nullopt},
    {"run of 3", {0xFE, 7}, 3, Bytes{7, 7, 7}},
    {"run of 3 cut to 2", {0xFE, 7}, 2, Bytes{7, 7}},
    {"run of 3 where 4 are wanted", {0xFE, 7}, 4, std::nullopt},
    {"run of 2 is accepted", {0xFF, 7}, 2, Bytes{7, 7}},
    {"longest run", {0x81, 7}, 128, repeated(128, 7)},
    {"run without its value takes the byte after the input", {0xFE}, 3, Bytes{kGuard, kGuard, kGuard}},
    {"literal, then a run without its value", {0x00, 1, 0xFF}, 3, Bytes{1, kGuard, kGuard}},
    {"literal", {0x01, 1, 2}, 2, Bytes{1, 2}},
    {"literal with a byte missing", {0x02, 0x41, 0x42}, 3, std::nullopt},
    {"literal with a byte missing that was not wanted", {0x02, 0x41, 0x42}, 2, Bytes{0x41, 0x42}},
    {"literal without any byte", {0x00}, 1, std::nullopt},
    {"literal cut by the output leaves input unused", {0x01, 1, 2}, 1, std::nullopt},
    {"longest literal", joined({{0x7F}, k128}), 128, k128},
    {"no-op before a literal", {0x80, 0x00, 0x41}, 1, Bytes{0x41}},
    {"no-op after a literal is unused input", {0x00, 0x41, 0x80}, 1, std::nullopt},
    {"no-op between literals", {0x00, 1, 0x80, 0x00, 2}, 2, Bytes{1, 2}},
    {"only no-ops", {0x80, 0x80}, 1, std::nullopt},
};

TEST(PackBitsDecode, Cases) {
    for (const DecodeCase& c : kDecodeCases) {
        EXPECT_EQ(decoded(c.coded, c.wanted), c.expected) << c.name;
    }
}

TEST(PackBitsDecode, NegativeLengthsCountAsZero) {
    unsigned char byte = 0;
    EXPECT_TRUE(pack_bits_decode(&byte, -1, &byte, -1));
    EXPECT_TRUE(pack_bits_decode(&byte, 0, &byte, INT32_MIN));
    EXPECT_FALSE(pack_bits_decode(&byte, 1, &byte, -1));
    EXPECT_FALSE(pack_bits_decode(&byte, INT32_MIN, &byte, 1));
}

void expect_decoded_as_reference(const Bytes& coded, std::size_t wanted) {
    ASSERT_EQ(decoded(coded, wanted), reference_decode(coded, wanted))
        << testing::PrintToString(coded) << " into " << wanted;
    ASSERT_EQ(decoded_block(coded, wanted), reference_decode(coded, wanted, 0))
        << testing::PrintToString(coded) << " into " << wanted << " and followed by nothing";
}

TEST(PackBitsDecode, EveryShortInputAtEveryCapacity) {
    const Bytes alphabet = {0x00, 0x01, 0x02, 0x7F, 0x80, 0x81, 0xC0, 0xFE, 0xFF};
    const std::size_t words = for_every_word(alphabet, 3, [](const Bytes& coded) {
        // At most two runs of 128, one with its value and one without, and one byte more than they yield.
        for (std::size_t wanted = 0; wanted <= 257; ++wanted) {
            expect_decoded_as_reference(coded, wanted);
        }
    });
    EXPECT_EQ(words, 820U);
}

class PackBitsRandom : public testing::TestWithParam<unsigned> {};

TEST_P(PackBitsRandom, RoundTripIsExactAndNeedsTheRoomOfTheReference) {
    std::mt19937 random(GetParam());
    for (int i = 0; i < 500; ++i) {
        const Bytes plain = random_row(random, 1500);
        const Reference reference = reference_encode(plain);
        ASSERT_EQ(encoded(plain, reference.room_bytes), reference.coded);
        ASSERT_EQ(encoded(plain, reference.room_bytes - 1), std::nullopt);
        ASSERT_EQ(decoded(reference.coded, plain.size()), plain);
        ASSERT_EQ(decoded(reference.coded, plain.size() + 1), std::nullopt);
    }
}

TEST_P(PackBitsRandom, AnyBytesDecodeLikeTheReference) {
    std::mt19937 random(GetParam());
    std::size_t accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        const Bytes coded = random_row(random, 12);
        const std::size_t wanted = std::uniform_int_distribution<std::size_t>(0, 300)(random);
        const auto expected = reference_decode(coded, wanted);
        ASSERT_EQ(decoded(coded, wanted), expected) << testing::PrintToString(coded) << " into " << wanted;
        accepted += expected.has_value() ? 1 : 0;
    }
    EXPECT_GT(accepted, 0U);
}

TEST_P(PackBitsRandom, RowsAtEveryCapacity) {
    std::mt19937 random(GetParam());
    for (int i = 0; i < 20; ++i) {
        expect_encoded_as_reference_at_every_capacity(random_row(random, 600));
    }
}

// Rows like those of pictures: short runs between short literals, and runs and literals of several packets.
TEST_P(PackBitsRandom, LongRowsOfEveryNumberOfValues) {
    std::mt19937 random(GetParam());
    for (const unsigned values : {1U, 2U, 4U, 16U, 256U}) {
        for (int i = 0; i < 40; ++i) {
            Bytes plain = random_row(random, 9000);
            for (unsigned char& value : plain) {
                value = static_cast<unsigned char>(value % values);
            }
            const Reference reference = reference_encode(plain);
            ASSERT_EQ(encoded(plain, reference.room_bytes), reference.coded);
            ASSERT_EQ(encoded(plain, reference.room_bytes - 1), std::nullopt);
            ASSERT_EQ(encoded(plain, 2 * plain.size() + 2), reference.coded);
            ASSERT_EQ(decoded(reference.coded, plain.size()), plain);
            ASSERT_EQ(decoded_block(reference.coded, plain.size()), plain);
        }
    }
}

TEST_P(PackBitsRandom, DamagedRowsDecodeLikeTheReference) {
    std::mt19937 random(GetParam());
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    for (int i = 0; i < 1500; ++i) {
        const Bytes plain = random_row(random, 800);
        Bytes coded = reference_encode(plain).coded;
        for (std::size_t changes = below(3); changes > 0; --changes) {
            coded[below(coded.size())] = static_cast<unsigned char>(below(256));
        }
        if (below(3) == 0) {
            coded.resize(1 + below(coded.size()));
        }
        for (const std::size_t wanted : {plain.size(), plain.size() + below(200), below(plain.size())}) {
            expect_decoded_as_reference(coded, wanted);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, PackBitsRandom, testing::Values(1U, 7U, 20240229U));

}  // namespace
