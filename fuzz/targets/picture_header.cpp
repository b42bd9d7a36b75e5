// Reads the header of a picture without the image library, from memory and from a file. One option byte: the
// extension of the file's name.

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "check.h"
#include "image/built_in_header.h"
#include "image/ordinary_header.h"
#include "input.h"
#include "system/open_regular_file.h"

const std::size_t kOptionBytes = 1;

namespace {

constexpr std::array<const char*, 6> kExtensions = {".png", ".jpg", ".tif", ".tga", ".rla", ".bmp"};

using image::Header;

bool same(const std::optional<Header>& one, const std::optional<Header>& other) {
    if (!one || !other) {
        return one.has_value() == other.has_value();
    }
    return one->width_px == other->width_px && one->height_px == other->height_px &&
           one->channels == other->channels && one->bits_per_channel == other->bits_per_channel &&
           one->has_alpha == other->has_alpha && one->alpha_premultiplied == other->alpha_premultiplied;
}

image::ReadAt reads_from_memory(std::span<const std::uint8_t> bytes) {
    return [bytes](std::uint64_t offset_bytes, char* data, std::size_t count) {
        if (offset_bytes > bytes.size() || count > bytes.size() - offset_bytes) {
            return false;
        }
        std::copy_n(bytes.data() + offset_bytes, count, data);
        return true;
    };
}

void check_header(const Header& header) {
    require(header.width_px >= 1 && header.height_px >= 1, "a picture has pixels");
    require(header.channels >= 1, "a picture has channels");
    require(header.has_alpha || !header.alpha_premultiplied, "only alpha can be premultiplied");
}

void check_ordinary_header(const Header& header) {
    constexpr std::int32_t kLargestSide_px = 16384;
    require(header.width_px <= kLargestSide_px && header.height_px <= kLargestSide_px,
            "an ordinary picture has a usual size");
    require(header.channels <= 4, "an ordinary picture is grey or RGB, with one alpha at most");
    require(header.bits_per_channel == 8 || header.bits_per_channel == 16 || header.bits_per_channel == 32,
            "an ordinary picture has a usual depth");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::string name = std::string("picture") + kExtensions[input.take() % kExtensions.size()];
    const std::string path = scratch().write(name, input.rest_text());
    const os::InputFile file = os::open_input_file(path);
    require(file != nullptr, "the file that was written opens");
    const image::ReadAt from_memory = reads_from_memory(input.rest());

    std::string error;
    const std::optional<Header> built_in = image::read_built_in_header(from_memory, name, error);
    require(built_in.has_value() == error.empty(), "there is a header or a reason, and never both");
    std::string file_error;
    require(same(built_in, image::read_built_in_header(image::reads_from(file.get()), path, file_error)) &&
                error == file_error,
            "a file has the header that its bytes have");
    if (built_in) {
        check_header(*built_in);
    }

    const std::optional<Header> ordinary = image::ordinary_header(from_memory, input.rest().size(), name);
    require(same(ordinary, image::ordinary_header_of_file(path)),
            "an ordinary file has the header that its bytes have");
    if (ordinary) {
        require(same(ordinary, built_in), "an ordinary header is the built-in one");
        check_ordinary_header(*ordinary);
    }
    return 0;
}
