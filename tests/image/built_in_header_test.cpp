// The built-in header reader on the images of the examples. The expected values come from other programs.

#include "image/built_in_header.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

namespace {

using image::Header;
using image::read_built_in_header;

struct FileCase {
    const char* file;
    int width_px;
    int height_px;
    int channels;
    int bits;
    bool has_alpha;
    bool premultiplied;
};

std::string example(const char* file) {
    std::ifstream in(std::filesystem::path(VXR_EXAMPLES_DIR) / file, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

/// Reads from a copy of `bytes`.
image::ReadAt reads(std::string bytes) {
    return [bytes = std::move(bytes)](std::uint64_t offset_bytes, char* data, std::size_t count) {
        if (offset_bytes > bytes.size() || bytes.size() - offset_bytes < count) {
            return false;
        }
        bytes.copy(data, count, static_cast<std::size_t>(offset_bytes));
        return true;
    };
}

TEST(BuiltInHeader, DescribesTheExamples) {
    const FileCase kCases[] = {
        {"interlaced/lantern0017.tif", 720, 576, 4, 8, true, true},
        {"interlaced/depth0017.tif", 720, 576, 1, 16, false, false},
        {"interlaced/street.rla", 720, 576, 3, 8, false, false},
        {"keyframes/stage.tif", 640, 360, 3, 8, false, false},
        {"square/contact.png", 640, 360, 3, 8, false, false},
        {"square/grey_card.jpg", 640, 360, 3, 8, false, false},
        {"square/haze.tga", 640, 360, 4, 8, true, false},
    };
    for (const FileCase& c : kCases) {
        SCOPED_TRACE(c.file);
        const image::ReadAt in = reads(example(c.file));
        std::string error;
        const std::optional<Header> header = read_built_in_header(in, c.file, error);
        ASSERT_TRUE(header.has_value()) << error;
        EXPECT_EQ(header->width_px, c.width_px);
        EXPECT_EQ(header->height_px, c.height_px);
        EXPECT_EQ(header->channels, c.channels);
        EXPECT_EQ(header->bits_per_channel, c.bits);
        EXPECT_EQ(header->has_alpha, c.has_alpha);
        EXPECT_EQ(header->alpha_premultiplied, c.premultiplied);
    }
}

TEST(BuiltInHeader, IsRefusedWithAReasonWhenCutOffAnywhere) {
    for (const char* const file : {"interlaced/lantern0017.tif", "interlaced/street.rla",
                                   "square/contact.png", "square/grey_card.jpg", "square/haze.tga"}) {
        const std::string whole = example(file);
        ASSERT_GT(whole.size(), 16U) << file;
        for (std::size_t length = 0; length <= 16; ++length) {
            const image::ReadAt in = reads(whole.substr(0, length));
            std::string error;
            EXPECT_FALSE(read_built_in_header(in, file, error).has_value()) << file << ' ' << length;
            EXPECT_FALSE(error.empty()) << file << ' ' << length;
        }
    }
}

struct WrongCase {
    const char* name;
    std::string bytes;
    const char* file;
};

TEST(BuiltInHeader, IsRefusedWithAReasonWhenInvalid) {
    const std::string zeros(800, '\0');
    std::string directory_of_itself = "II\x2a";
    directory_of_itself += std::string("\0\x02\0\0\0", 5) + zeros;
    std::string endless = "\xff\xd8\xff\xfe";
    endless += std::string(400, '\0');
    const WrongCase kCases[] = {
        {"a text", "VORTAN XR COMPOSITION" + zeros, "a.png"},
        {"a TIFF whose directory is its own header", directory_of_itself, "a.tif"},
        {"a JPEG with segments of no length", endless, "a.jpg"},
        {"a TGA of an unknown kind", "\x01\x01\x04" + zeros, "a.tga"},
        {"a TGA without pixels", std::string("\0\0\x02", 3) + zeros, "a.tga"},
        {"a PNG of no width", "\x89PNG\r\n\x1a\n" + zeros, "a.png"},
        {"a BMP with half a header", "BM" + zeros, "a.bmp"},
    };
    for (const WrongCase& c : kCases) {
        const image::ReadAt in = reads(c.bytes);
        std::string error;
        EXPECT_FALSE(read_built_in_header(in, c.file, error).has_value()) << c.name;
        EXPECT_FALSE(error.empty()) << c.name;
    }
}

TEST(BuiltInHeader, TakesTimeInProportionToTheFile) {
    // As many entries and extra samples as a TIFF has. The last entry names the samples, and looking for it
    // once more for each would read the directory 4,000 times.
    constexpr int kEntries = 4000;
    const auto number = [](int value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) {
            text += static_cast<char>(value >> (8 * i) & 0xFF);
        }
        return text;
    };
    const auto entry = [&](int tag, int type, int count, int value) {
        return number(tag, 2) + number(type, 2) + number(count, 4) + number(value, 4);
    };
    std::string tiff = std::string("II\x2a\0", 4) + number(8, 4) + number(kEntries, 2) + entry(256, 3, 1, 5) +
                       entry(257, 3, 1, 3) + entry(277, 3, 1, kEntries);
    for (int i = 4; i < kEntries; ++i) {
        tiff += entry(40000, 3, 1, 0);
    }
    tiff += entry(338, 3, kEntries, 10 + 12 * kEntries) + std::string(2 * kEntries, '\0');
    const image::ReadAt in = reads(tiff);
    std::int64_t read_bytes = 0;
    const image::ReadAt counted = [&](std::uint64_t offset_bytes, char* data, std::size_t count) {
        read_bytes += static_cast<std::int64_t>(count);
        return in(offset_bytes, data, count);
    };
    std::string error;
    const std::optional<Header> header = read_built_in_header(counted, "a.tif", error);
    ASSERT_TRUE(header.has_value()) << error;
    EXPECT_EQ(header->channels, kEntries);
    EXPECT_FALSE(header->has_alpha);
    EXPECT_LT(read_bytes, static_cast<std::int64_t>(2 * tiff.size()));
}

}  // namespace
