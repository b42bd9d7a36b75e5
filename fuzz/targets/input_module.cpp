// Runs the input module of the built bundle in the embedded host: init, one frame of any geometry, dispose.
// The option bytes of the host come first, then those of the frame: width, height, row bytes, origin, fill.

#include <cstdlib>

#include "check.h"
#include "host_script.h"
#include "input.h"

const std::size_t kOptionBytes = kHostOptionBytes + 13;

namespace {

constexpr std::int64_t kMostFrameBytes = std::int64_t{1} << 22;

embedded::FrameShape take_shape(Input& input) {
    embedded::FrameShape shape;
    shape.width_px = input.take_value<std::int16_t>();
    shape.height_px = input.take_value<std::int16_t>();
    shape.row_bytes = input.take_value<std::int32_t>();
    shape.origin_x = input.take_value<std::int16_t>();
    shape.origin_y = input.take_value<std::int16_t>();
    shape.fill = input.take();
    return shape;
}

bool is_small(const embedded::FrameShape& shape) {
    const std::int64_t row_bytes =
        shape.row_bytes == 0 ? std::int64_t{shape.width_px} * 4 : std::abs(std::int64_t{shape.row_bytes});
    return row_bytes * shape.height_px <= kMostFrameBytes;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const embedded::HostOptions options = take_host_options(input);
    const embedded::FrameShape shape = take_shape(input);
    const std::string path = scratch().write("picture.txl", input.rest_text());
    HostWithBundle bundle(options);
    if (bundle.loaded()) {
        embedded::Host& host = bundle.host();
        const embedded::OpenResult opened = host.open_with_module(path);
        require((opened.in_spec == 0) != opened.error.empty(), "it opens, or says why not");
        if (opened.in_spec != 0 && is_small(shape)) {
            const embedded::DrawResult drawn = host.draw(opened.in_spec, shape);
            require(
                !drawn.error.empty() || drawn.pixels.size() == static_cast<std::size_t>(shape.width_px) *
                                                                   static_cast<std::size_t>(shape.height_px),
                "a frame has all its pixels");
        }
        if (opened.in_spec != 0) {
            require(host.dispose(opened.in_spec).code == kHostErrorNone || has_faults(options),
                    "it is disposed of");
        }
    }
    bundle.check(has_faults(options));
    return 0;
}
