#include <gtest/gtest.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "texture/row_coding.h"

namespace {

// A TIFF file, through whose library the same rows pass as one grey strip of one row.
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

Tiff open_for_row(const PeerFile& file, std::size_t width_px) {
    Tiff tiff(TIFFOpen(file.path(), "w"));
    if (tiff == nullptr) {
        return tiff;
    }
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(width_px));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 1U);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 1U);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    return tiff;
}

Bytes coded_by_peer(const PeerFile& file, Bytes plain) {
    const auto size = static_cast<tmsize_t>(plain.size());
    const Tiff writer = open_for_row(file, plain.size());
    EXPECT_EQ(TIFFWriteEncodedStrip(writer.get(), 0, plain.data(), size), size);
    EXPECT_EQ(TIFFFlush(writer.get()), 1);
    const Tiff reader(TIFFOpen(file.path(), "r"));
    Bytes coded(static_cast<std::size_t>(TIFFRawStripSize(reader.get(), 0)));
    EXPECT_EQ(TIFFReadRawStrip(reader.get(), 0, coded.data(), static_cast<tmsize_t>(coded.size())),
              static_cast<tmsize_t>(coded.size()));
    return coded;
}

Bytes decoded_by_peer(const PeerFile& file, Bytes coded, std::size_t width_px) {
    {
        const Tiff writer = open_for_row(file, width_px);
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
    std::vector<Bytes> rows = {{0x41}, {7, 7}, {7, 7, 7}, Bytes(128, 9), Bytes(130, 9)};
    for (const std::size_t length : {128U, 129U}) {
        Bytes distinct(length);
        std::iota(distinct.begin(), distinct.end(), static_cast<unsigned char>(0));
        rows.push_back(distinct);
    }
    for (int i = 0; i < 60; ++i) {
        rows.push_back(random_row(random, 1000));
    }
    for (const Bytes& row : rows) {
        ASSERT_EQ(decoded(coded_by_peer(file, row), row.size()), row) << testing::PrintToString(row);
        const auto coded = encoded(row, 2 * row.size() + 2);
        ASSERT_TRUE(coded.has_value());
        ASSERT_EQ(decoded_by_peer(file, *coded, row.size()), row) << testing::PrintToString(row);
    }
}

}  // namespace
