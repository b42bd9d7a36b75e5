// What is read without the image library is what the library reads: files as programs usually write them, cut
// at every length and with every bit of their headers flipped.

#include "image/ordinary_header.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "image/functions.h"
#include "support/child_process.h"
#include "support/file_content.h"
#include "support/temporary_folder.h"

namespace {

using image::Header;

std::string example_image(const char* file) {
    return content_of(std::string(VXR_EXAMPLES_DIR "/") + file);
}

/// A JPEG with a comment after its first segment.
std::string jpeg_with_comment(std::string jpeg, const std::string& comment) {
    constexpr std::size_t kAfterFirst = 20;
    return jpeg.insert(kAfterFirst,
                       std::string("\xff\xfe\0", 3) + static_cast<char>(comment.size() + 2) + comment);
}

/// A JPEG without the segment in which cameras describe themselves.
std::string without_exif(std::string jpeg) {
    const std::size_t at = jpeg.find("\xff\xe1");
    const std::size_t bytes =
        2 + static_cast<unsigned char>(jpeg[at + 2]) * 256 + static_cast<unsigned char>(jpeg[at + 3]);
    return jpeg.erase(at, bytes);
}

/// A PNG with a text before its pixels: a keyword, a zero byte and the text. `checksum` belongs to them.
std::string png_with_text(const std::string& text, const std::string& checksum) {
    std::string bytes = example_image("square/contact.png");
    constexpr std::size_t kAfterHeader = 33;
    const std::string length{'\0', '\0', '\0', static_cast<char>(text.size())};
    return bytes.insert(kAfterHeader, length + "tEXt" + text + checksum);
}

/// `bytes` with others in their place at `at`.
std::string changed(std::string bytes, std::size_t at, const std::string& others) {
    return bytes.replace(at, others.size(), others);
}

/// A TGA of 9 x 5 pixels without an extension.
std::string tga(char type, char bits, char alpha_bits) {
    std::string bytes(18 + 45 * static_cast<std::size_t>(bits / 8), '\x40');
    std::fill_n(bytes.begin(), 12, '\0');
    bytes[2] = type;
    bytes.replace(12, 6, std::string("\x09\0\5\0", 4) + bits + alpha_bits);
    return bytes;
}

/// A TGA with a footer, and with an extension area that says what alpha means.
std::string with_extension_area(const std::string& tga_bytes, char meaning_of_alpha) {
    std::string area(495, '\0');
    area.replace(0, 2, "\xef\1");
    area.back() = meaning_of_alpha;
    const std::size_t at = tga_bytes.size();
    const std::string offset{static_cast<char>(at & 0xFF), static_cast<char>(at >> 8), '\0', '\0'};
    return tga_bytes + area + offset + std::string(4, '\0') + std::string("TRUEVISION-XFILE.\0", 18);
}

/// The JPEG of an example, whose date in Exif becomes the value of another tag.
std::string jpeg_with_exif_tag(const std::string& tag_and_type) {
    std::string jpeg = example_image("square/grey_card.jpg");
    return jpeg.replace(jpeg.find(std::string("\x32\1\2\0", 4)), 4, tag_and_type);
}

/// The TIFF of an example, written again by another program.
std::string copied_tiff(const std::vector<std::string>& options) {
    const TemporaryFolder folder;
    std::vector<std::string> command{"tiffcp"};
    command.insert(command.end(), options.begin(), options.end());
    command.push_back(VXR_EXAMPLES_DIR "/interlaced/lantern0017.tif");
    command.push_back(folder.path("a.tif"));
    EXPECT_EQ(run_process(command).exit_code, 0);
    return content_of(folder.path("a.tif"));
}

struct ImageCase {
    const char* name;
    const char* file;  ///< its extension is part of the case
    std::string bytes;
    bool is_ordinary;
};

std::vector<ImageCase> image_cases() {
    const std::string tiff = example_image("interlaced/lantern0017.tif");
    constexpr std::size_t kStripOffsets = 274;
    const std::string jpeg = without_exif(example_image("square/grey_card.jpg"));
    const std::size_t code_counts = jpeg.find("\xff\xc4") + 5;
    return {
        {"a TIFF with alpha", "a.tif", tiff, true},
        {"a TIFF of 16 bits", "a.TIFF", example_image("interlaced/depth0017.tif"), true},
        {"a TIFF without alpha", "a.tif", example_image("keyframes/stage.tif"), true},
        {"a TIFF with the high byte first", "a.tif", copied_tiff({"-B", "-c", "lzw"}), true},
        {"a TIFF without compression", "a.tif", copied_tiff({"-c", "none"}), true},
        {"a TIFF with PackBits", "a.tif", copied_tiff({"-c", "packbits"}), true},
        {"a TIFF in tiles", "a.tif", copied_tiff({"-t", "-c", "lzw"}), false},
        {"a TIFF with planes", "a.tif", copied_tiff({"-p", "separate"}), false},
        {"a TIFF with offsets of 64 bits", "a.tif", copied_tiff({"-8"}), false},
        {"a PNG", "a.png", example_image("square/contact.png"), true},
        {"an RLA", "a.rla", example_image("interlaced/street.rla"), true},
        {"an RLA with a matte", "a.rla", example_image("interlaced/post.rla"), true},
        {"a PNG with the name of a program", "a.png",
         png_with_text(std::string("Software\0paint", 14), "9\ni\x88"), true},
        {"a JPEG", "a.jpg", jpeg, true},
        {"a grey TGA", "a.tga", tga(3, 8, 0), true},
        {"a TGA", "a.tga", tga(2, 24, 0), true},
        {"a TGA with alpha", "a.tga", tga(2, 32, 8), true},
        {"a JPEG with a comment", "a.jpg", jpeg_with_comment(jpeg, "painted by hand"), true},
        {"a JPEG whose comment looks like a value of the library", "a.jpg",
         jpeg_with_comment(jpeg, "oiio:BitsPerSample:3"), true},
        {"a JPEG with Exif", "a.jpg", example_image("square/grey_card.jpg"), true},
        {"a JPEG whose Exif says that it is rotated", "a.jpg",
         jpeg_with_exif_tag(std::string("\x12\1\3\0", 4)), true},
        {"a JPEG whose Exif gives the library a depth", "a.jpg",
         jpeg_with_exif_tag(std::string("\2\1\3\0", 4)), false},
        {"a TGA with an extension area", "a.tga", example_image("square/haze.tga"), true},
        {"a TGA that says its alpha is straight", "a.tga", with_extension_area(tga(2, 32, 8), 3), true},
        {"a TGA that says it has no alpha", "a.tga", with_extension_area(tga(2, 24, 0), 0), true},
        {"a TGA that says it has no alpha but has one", "a.tga", with_extension_area(tga(2, 32, 8), 0),
         false},
        {"a TGA that says its alpha is not one", "a.tga", with_extension_area(tga(2, 32, 8), 1), false},
        {"a TGA that says its alpha is premultiplied", "a.tga", with_extension_area(tga(2, 32, 8), 4), false},
        {"a format that the extension does not name", "a.png", tiff, false},
        {"an extension of no format", "a.dat", tiff, false},
        {"a PNG whose text gives the library a depth", "a.png",
         png_with_text(std::string("oiio:BitsPerSample\0003", 20), "\x99{\xe9\xff"), false},
        {"a PNG whose text gives the library a depth, in capitals", "a.png",
         png_with_text(std::string("OIIO:BitsPerSample\0003", 20),
                       "\xd6\xe6"
                       "E*"),
         false},
        {"a TIFF with a strip after its end", "a.tif",
         changed(tiff, kStripOffsets, std::string("\0\0\0\x7f", 4)), false},
        {"a TGA that ends before its last pixel", "a.tga", tga(2, 24, 0).substr(0, 100), false},
        {"a JPEG with three codes of one bit", "a.jpg", changed(jpeg, code_counts, std::string("\3\0\3", 3)),
         false},
        {"a text", "a.tif", "VORTAN XR COMPOSITION", false},
        {"nothing", "a.png", "", false},
    };
}

std::optional<Header> ordinary_header_of(const std::string& bytes, const char* file) {
    const image::ReadAt reads = [&bytes](std::uint64_t offset_bytes, char* data, std::size_t count) {
        if (offset_bytes > bytes.size() || bytes.size() - offset_bytes < count) {
            return false;
        }
        bytes.copy(data, count, static_cast<std::size_t>(offset_bytes));
        return true;
    };
    return image::ordinary_header(reads, bytes.size(), file);
}

std::string text_of(const std::optional<Header>& header) {
    if (!header) {
        return "refused";
    }
    return std::to_string(header->width_px) + " x " + std::to_string(header->height_px) + ", " +
           std::to_string(header->channels) + " of " + std::to_string(header->bits_per_channel) + " bits" +
           (header->has_alpha ? ", alpha" : "") + (header->alpha_premultiplied ? ", premultiplied" : "");
}

/// Asks the image library.
class LibraryAnswers {
  public:
    std::string answer(const std::string& bytes, const char* file) {
        const std::string path = folder_.write(file, bytes);
        Header header;
        std::string reason;
        const bool opened = functions_->probe(
            path.c_str(), &header,
            [](void* told, image::Code, const char* why) { *static_cast<std::string*>(told) = why; },
            &reason);
        return opened ? text_of(header) : "refused";
    }

  private:
    TemporaryFolder folder_;
    std::string problem_;
    const image::Functions* functions_ = image::library_functions(problem_);
};

TEST(OrdinaryHeader, IsThatOfTheLibraryOrNone) {
    LibraryAnswers library;
    for (const ImageCase& c : image_cases()) {
        const std::optional<Header> header = ordinary_header_of(c.bytes, c.file);
        EXPECT_EQ(header.has_value(), c.is_ordinary) << c.name;
        if (header) {
            EXPECT_EQ(text_of(header), library.answer(c.bytes, c.file)) << c.name;
        }
    }
}

// Every bit takes minutes with sanitizers; a step of 21 flips a bit of every second or third byte.
#if defined(VXR_SANITIZED)
constexpr std::size_t kBitsBetween = 21;
#else
constexpr std::size_t kBitsBetween = 1;
#endif

TEST(OrdinaryHeader, OfDamagedFilesIsThatOfTheLibraryOrNone) {
    LibraryAnswers library;
    for (const ImageCase& c : image_cases()) {
        if (!c.is_ordinary) {
            continue;
        }
        int refused = 0;
        const auto compare = [&](const std::string& bytes, const std::string& damage) {
            const std::optional<Header> header = ordinary_header_of(bytes, c.file);
            refused += header ? 0 : 1;
            if (header) {
                EXPECT_EQ(text_of(header), library.answer(bytes, c.file)) << c.name << ' ' << damage;
            }
        };
        const std::size_t header_bytes = std::min<std::size_t>(c.bytes.size(), 800);
        for (std::size_t length = 0; length < header_bytes; ++length) {
            compare(c.bytes.substr(0, length), "cut at " + std::to_string(length));
        }
        for (std::size_t bit = 0; bit < 8 * header_bytes; bit += kBitsBetween) {
            std::string flipped = c.bytes;
            flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
            compare(flipped, "bit " + std::to_string(bit % 8) + " of byte " + std::to_string(bit / 8));
        }
        EXPECT_GT(refused, 10) << c.name;
    }
}

}  // namespace
