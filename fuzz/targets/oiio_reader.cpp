// Reads a texture file through the OpenImageIO plug-in.

#include <vector>

#include "check.h"
#include "imageio/txl_input.h"
#include "input.h"

const std::size_t kOptionBytes = 0;

namespace {

/// In mebibytes. Keeps every row below the size at which an allocation is refused.
constexpr int kMostDecoded = 1;
constexpr int kMostRows = 64;

void check_rows(imageio::TxlInput& reader, const OIIO::ImageSpec& spec) {
    std::vector<std::uint8_t> row(spec.scanline_bytes());
    require(row.size() == static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.nchannels),
            "a row has one byte for each channel of each pixel");
    const int step = 1 + spec.height / kMostRows;
    for (int y = spec.height - 1; y >= 0; y -= step) {
        require(reader.read_native_scanline(0, 0, y, 0, row.data()), "every row of the picture can be read");
    }
    require(!reader.read_native_scanline(0, 0, -1, 0, row.data()) &&
                !reader.read_native_scanline(0, 0, spec.height, 0, row.data()) &&
                !reader.read_native_scanline(1, 0, 0, 0, row.data()),
            "a row outside the picture cannot be read");
    require(!reader.geterror().empty(), "a row that cannot be read has a reason");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool limited = OIIO::attribute("limits:imagesize_MB", kMostDecoded);
    require(limited, "the library takes the limit");
    const std::string path = scratch().write("picture.txl", Input(data, size).rest_text());
    imageio::TxlInput reader;
    OIIO::ImageSpec spec;
    const bool is_texture = reader.valid_file(path);
    const bool opened = reader.open(path, spec);
    require(is_texture || !opened, "what opens is valid");
    require(opened || !reader.geterror().empty(), "what does not open has a reason");
    if (opened) {
        require(spec.width > 0 && spec.height > 0 && spec.nchannels > 0, "an open picture has pixels");
        require(spec.channelnames.size() == static_cast<std::size_t>(spec.nchannels),
                "every channel has a name");
        check_rows(reader, spec);
    }
    return 0;
}
