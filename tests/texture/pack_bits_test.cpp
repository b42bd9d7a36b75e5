#include "texture/pack_bits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "texture/exact_buffer.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned char kGuard = 0x5A;

Bytes Repeated(std::size_t count, unsigned char value) {
    return Bytes(count, value);
}

Bytes Counting(std::size_t count) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<unsigned char>(i);
    return bytes;
}

Bytes Joined(const std::vector<Bytes>& parts) {
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// What the encoder wrote into room for `capacity` bytes; nothing when it refused.
std::optional<Bytes> Encoded(const Bytes& plain, std::size_t capacity) {
    ExactBuffer src(plain);
    ExactBuffer dst(capacity);
    const std::int32_t written = PackBitsEncode(src.data(), src.size(), dst.data(), dst.size());
    if (written == 0)
        return std::nullopt;
    return dst.First(static_cast<std::size_t>(written));
}

// What the decoder made of the input with the one guard byte behind it; nothing when it refused.
std::optional<Bytes> Decoded(const Bytes& coded, std::size_t wanted) {
    Bytes guarded = coded;
    guarded.push_back(kGuard);
    ExactBuffer src(guarded);
    ExactBuffer dst(wanted);
    if (!PackBitsDecode(src.data(), src.size() - 1, dst.data(), dst.size()))
        return std::nullopt;
    return dst.All();
}

// The encoder again, from the table of packets alone: first the packets, then the bytes and the room that
// they need.
struct Packet {
    bool run = false;
    Bytes bytes;
};

std::vector<Packet> PacketsOf(const Bytes& plain) {
    std::vector<Packet> packets;
    bool open = false;
    std::size_t i = 0;
    while (i < plain.size()) {
        std::size_t same = 1;
        while (same < 128 && i + same < plain.size() && plain[i + same] == plain[i])
            ++same;
        if (same >= 3) {
            packets.push_back({true, Repeated(same, plain[i])});
            open = false;
            i += same;
            continue;
        }
        if (!open)
            packets.push_back({false, {}});
        packets.back().bytes.push_back(plain[i++]);
        open = packets.back().bytes.size() < 128;
    }
    return packets;
}

struct Reference {
    Bytes coded;
    std::size_t room_bytes = 0;
};

Reference ReferenceEncode(const Bytes& plain) {
    Reference reference;
    const std::vector<Packet> packets = PacketsOf(plain);
    for (const Packet& packet : packets) {
        const std::size_t length = packet.bytes.size();
        if (packet.run) {
            reference.coded.push_back(static_cast<unsigned char>(257 - length));
            reference.coded.push_back(packet.bytes.front());
        } else {
            reference.coded.push_back(static_cast<unsigned char>(length - 1));
            reference.coded.insert(reference.coded.end(), packet.bytes.begin(), packet.bytes.end());
        }
    }
    reference.room_bytes = reference.coded.size();
    if (!packets.empty() && !packets.back().run && packets.back().bytes.size() == 128)
        ++reference.room_bytes;
    return reference;
}

std::optional<Bytes> ReferenceDecode(const Bytes& coded, std::size_t wanted) {
    Bytes out;
    std::size_t at = 0;
    while (out.size() < wanted && at < coded.size()) {
        const unsigned char control = coded[at++];
        if (control == 0x80)
            continue;
        if (control > 0x80) {
            const unsigned char value = at < coded.size() ? coded[at] : kGuard;
            ++at;
            out.insert(out.end(), 257U - control, value);
        } else {
            if (at >= coded.size())
                return std::nullopt;
            // As far as the output has room and the input has bytes.
            for (unsigned i = 0; i <= control && at < coded.size() && out.size() < wanted; ++i)
                out.push_back(coded[at++]);
        }
        if (out.size() > wanted)
            out.resize(wanted);
    }
    if (out.size() < wanted || at < coded.size())
        return std::nullopt;
    return out;
}

struct EncodeCase {
    const char* name;
    Bytes plain;
    std::size_t capacity;
    std::optional<Bytes> expected;
};

const Bytes k128 = Counting(128);
const Bytes k129 = Counting(129);

const EncodeCase kEncodeCases[] = {
    {"no bytes are no packets", {}, 8, std::nullopt},
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
    {"run of 128", Repeated(128, 9), 2, Bytes{0x81, 9}},
    {"run of 128 and a literal of 1", Repeated(129, 9), 4, Bytes{0x81, 9, 0x00, 9}},
    {"run of 128 and a literal of 2", Repeated(130, 9), 5, Bytes{0x81, 9, 0x01, 9, 9}},
    {"run of 128 and a run of 3", Repeated(131, 9), 4, Bytes{0x81, 9, 0xFE, 9}},
    {"128 distinct bytes need room for 130", k128, 130, Joined({{0x7F}, k128})},
    {"128 distinct bytes, room for only what they fill", k128, 129, std::nullopt},
    {"129 distinct bytes", k129, 131, Joined({{0x7F}, k128, {0x00, 0x80}})},
    {"129 distinct bytes, one too small", k129, 130, std::nullopt},
    {"a full literal, then a run", Joined({k128, {7, 7, 7}}), 131, Joined({{0x7F}, k128, {0xFE, 7}})},
    {"a full literal, then a run one too small", Joined({k128, {7, 7, 7}}), 130, std::nullopt},
};

TEST(PackBitsEncode, Cases) {
    for (const EncodeCase& c : kEncodeCases)
        EXPECT_EQ(Encoded(c.plain, c.capacity), c.expected) << c.name;
}

TEST(PackBitsEncode, LengthsBelowOneWriteNothing) {
    for (const std::int32_t length : {0, -1, INT32_MIN}) {
        ExactBuffer dst(4, 0xEE);
        const unsigned char byte = 1;
        EXPECT_EQ(PackBitsEncode(&byte, length, dst.data(), dst.size()), 0) << length;
        EXPECT_EQ(dst.All(), Repeated(4, 0xEE)) << length;
    }
}

TEST(PackBitsEncode, NegativeCapacityIsNoRoom) {
    const unsigned char bytes[] = {1, 2, 2, 2};
    ExactBuffer dst(0);
    EXPECT_EQ(PackBitsEncode(bytes, 4, dst.data(), -1), 0);
    EXPECT_EQ(PackBitsEncode(bytes + 1, 3, dst.data(), INT32_MIN), 0);
}

// Calls `visit` with every sequence of 0 to `longest` letters of the alphabet; returns how many there were.
template <typename Visit>
std::size_t ForEveryWord(const Bytes& alphabet, std::size_t longest, Visit visit) {
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

void ExpectEncodedAsReferenceAtEveryCapacity(const Bytes& plain) {
    const Reference reference = ReferenceEncode(plain);
    for (std::size_t capacity = 0; capacity <= reference.room_bytes + 2; ++capacity) {
        const bool fits = !plain.empty() && capacity >= reference.room_bytes;
        const auto expected = fits ? std::optional<Bytes>(reference.coded) : std::nullopt;
        ASSERT_EQ(Encoded(plain, capacity), expected)
            << testing::PrintToString(plain) << " into " << capacity;
    }
}

TEST(PackBitsEncode, EveryShortInputAtEveryCapacity) {
    EXPECT_EQ(ForEveryWord({0x00, 0x01, 0x80, 0xFF}, 3, ExpectEncodedAsReferenceAtEveryCapacity), 85U);
    EXPECT_EQ(ForEveryWord({0x00, 0x01}, 9, ExpectEncodedAsReferenceAtEveryCapacity), 1023U);
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
    {"longest run", {0x81, 7}, 128, Repeated(128, 7)},
    {"run without its value takes the byte behind the input", {0xFE}, 3, Bytes{kGuard, kGuard, kGuard}},
    {"literal, then a run without its value", {0x00, 1, 0xFF}, 3, Bytes{1, kGuard, kGuard}},
    {"literal", {0x01, 1, 2}, 2, Bytes{1, 2}},
    {"literal with a byte missing", {0x02, 0x41, 0x42}, 3, std::nullopt},
    {"literal with a byte missing that was not wanted", {0x02, 0x41, 0x42}, 2, Bytes{0x41, 0x42}},
    {"literal without any byte", {0x00}, 1, std::nullopt},
    {"literal cut by the output leaves input over", {0x01, 1, 2}, 1, std::nullopt},
    {"longest literal", Joined({{0x7F}, k128}), 128, k128},
    {"no-op before a literal", {0x80, 0x00, 0x41}, 1, Bytes{0x41}},
    {"no-op after a literal is input left over", {0x00, 0x41, 0x80}, 1, std::nullopt},
    {"no-op between literals", {0x00, 1, 0x80, 0x00, 2}, 2, Bytes{1, 2}},
    {"only no-ops", {0x80, 0x80}, 1, std::nullopt},
};

TEST(PackBitsDecode, Cases) {
    for (const DecodeCase& c : kDecodeCases)
        EXPECT_EQ(Decoded(c.coded, c.wanted), c.expected) << c.name;
}

TEST(PackBitsDecode, LengthsBelowZeroAreNothing) {
    unsigned char byte = 0;
    EXPECT_TRUE(PackBitsDecode(&byte, -1, &byte, -1));
    EXPECT_TRUE(PackBitsDecode(&byte, 0, &byte, INT32_MIN));
    EXPECT_FALSE(PackBitsDecode(&byte, 1, &byte, -1));
    EXPECT_FALSE(PackBitsDecode(&byte, INT32_MIN, &byte, 1));
}

TEST(PackBitsDecode, EveryShortInputAtEveryCapacity) {
    const Bytes alphabet = {0x00, 0x01, 0x02, 0x7F, 0x80, 0x81, 0xC0, 0xFE, 0xFF};
    const std::size_t words = ForEveryWord(alphabet, 3, [](const Bytes& coded) {
        // At most two runs of 128 (one with its value, one without), and one byte more than they give.
        for (std::size_t wanted = 0; wanted <= 257; ++wanted)
            ASSERT_EQ(Decoded(coded, wanted), ReferenceDecode(coded, wanted))
                << testing::PrintToString(coded) << " into " << wanted;
    });
    EXPECT_EQ(words, 820U);
}

// Rows with stretches of noise and stretches of equal bytes, around the lengths at which packets are cut.
Bytes RandomRow(std::mt19937& random, std::size_t longest) {
    const auto below = [&random](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const std::size_t length = 1 + below(longest);
    Bytes row;
    while (row.size() < length) {
        const bool same = below(2) == 0;
        const std::size_t stretch = 1 + below(below(4) == 0 ? 300 : 5);
        const auto value = static_cast<unsigned char>(below(256));
        for (std::size_t i = 0; i < stretch; ++i)
            row.push_back(same ? value : static_cast<unsigned char>(below(256)));
    }
    row.resize(length);
    return row;
}

class PackBitsRandom : public testing::TestWithParam<unsigned> {};

TEST_P(PackBitsRandom, RoundTripIsExactAndNeedsWhatTheReferenceSays) {
    std::mt19937 random(GetParam());
    for (int i = 0; i < 500; ++i) {
        const Bytes plain = RandomRow(random, 1500);
        const Reference reference = ReferenceEncode(plain);
        ASSERT_EQ(Encoded(plain, reference.room_bytes), reference.coded);
        ASSERT_EQ(Encoded(plain, reference.room_bytes - 1), std::nullopt);
        ASSERT_EQ(Decoded(reference.coded, plain.size()), plain);
        ASSERT_EQ(Decoded(reference.coded, plain.size() + 1), std::nullopt);
    }
}

TEST_P(PackBitsRandom, AnyBytesDecodeAsTheReferenceSays) {
    std::mt19937 random(GetParam());
    std::size_t accepted = 0;
    for (int i = 0; i < 20000; ++i) {
        const Bytes coded = RandomRow(random, 12);
        const std::size_t wanted = std::uniform_int_distribution<std::size_t>(0, 300)(random);
        const auto expected = ReferenceDecode(coded, wanted);
        ASSERT_EQ(Decoded(coded, wanted), expected) << testing::PrintToString(coded) << " into " << wanted;
        accepted += expected.has_value() ? 1 : 0;
    }
    EXPECT_GT(accepted, 0U);
}

INSTANTIATE_TEST_SUITE_P(Seeds, PackBitsRandom, testing::Values(1U, 7U, 20240229U));

// The same rows through the image library's own codec, as one grey strip of one row.
class PeerFile {
  public:
    PeerFile() : path_(testing::TempDir() + "pack_bits_peer_" + std::to_string(::getpid()) + ".tif") {}
    PeerFile(const PeerFile&) = delete;
    PeerFile& operator=(const PeerFile&) = delete;
    ~PeerFile() { std::remove(path_.c_str()); }

    [[nodiscard]] const char* path() const { return path_.c_str(); }

  private:
    std::string path_;
};

struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

Tiff OpenForRow(const PeerFile& file, std::size_t width_px) {
    Tiff tiff(TIFFOpen(file.path(), "w"));
    if (tiff == nullptr)
        return tiff;
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width_px));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 1U);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 1U);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    return tiff;
}

Bytes CodedByPeer(const PeerFile& file, Bytes plain) {
    const auto size = static_cast<tmsize_t>(plain.size());
    const Tiff writer = OpenForRow(file, plain.size());
    EXPECT_EQ(TIFFWriteEncodedStrip(writer.get(), 0, plain.data(), size), size);
    EXPECT_EQ(TIFFFlush(writer.get()), 1);
    const Tiff reader(TIFFOpen(file.path(), "r"));
    Bytes coded(static_cast<std::size_t>(TIFFRawStripSize(reader.get(), 0)));
    EXPECT_EQ(TIFFReadRawStrip(reader.get(), 0, coded.data(), static_cast<tmsize_t>(coded.size())),
              static_cast<tmsize_t>(coded.size()));
    return coded;
}

Bytes DecodedByPeer(const PeerFile& file, Bytes coded, std::size_t width_px) {
    {
        const Tiff writer = OpenForRow(file, width_px);
        const auto size = static_cast<tmsize_t>(coded.size());
        EXPECT_EQ(TIFFWriteRawStrip(writer.get(), 0, coded.data(), size), size);
    }
    const Tiff reader(TIFFOpen(file.path(), "r"));
    Bytes plain(width_px);
    EXPECT_EQ(TIFFReadEncodedStrip(reader.get(), 0, plain.data(), static_cast<tmsize_t>(plain.size())),
              static_cast<tmsize_t>(plain.size()));
    return plain;
}

TEST(PackBitsPeer, EachReadsWhatTheOtherWrites) {
    const PeerFile file;
    std::mt19937 random(42);
    std::vector<Bytes> rows = {{0x41}, {7, 7}, {7, 7, 7}, Repeated(128, 9), Repeated(130, 9), k128, k129};
    for (int i = 0; i < 60; ++i)
        rows.push_back(RandomRow(random, 1000));
    for (const Bytes& row : rows) {
        ASSERT_EQ(Decoded(CodedByPeer(file, row), row.size()), row) << testing::PrintToString(row);
        const auto coded = Encoded(row, 2 * row.size() + 2);
        ASSERT_TRUE(coded.has_value());
        ASSERT_EQ(DecodedByPeer(file, *coded, row.size()), row) << testing::PrintToString(row);
    }
}

}  // namespace
