#include "image/codes.h"

#include <array>
#include <cstddef>

namespace image {
namespace {

using diagnostic::CodeRow;
using diagnostic::Severity;

constexpr std::array<CodeRow<Code>, 11> kCodes{{
    {Code::cannot_open,
     {"cannot-open", Severity::error,
      "The input is missing or not a regular file, or the output cannot be created."}},
    {Code::not_written,
     {"not-written", Severity::error, "The output could not be completed or moved into place."}},
    {Code::gave_up,
     {"gave-up", Severity::error,
      "Something else prevents the work: memory runs out, or the image library is missing."}},
    {Code::not_an_image, {"not-an-image", Severity::error, "No image reader accepts the input."}},
    {Code::no_format, {"no-format", Severity::error, "No image format has the extension of the output."}},
    {Code::no_texture, {"no-texture", Severity::error, "Neither the input nor the output is a texture."}},
    {Code::no_such_alpha,
     {"no-such-alpha", Severity::error, "The texture has fewer alpha channels than were asked for."}},
    {Code::channels_without_room,
     {"channels-without-room", Severity::error,
      "The format has no room for all channels, or refuses the picture."}},
    {Code::unsupported,
     {"unsupported", Severity::error, "The image is deep, a volume, has no pixels or has too many."}},
    {Code::depth_reduced,
     {"depth-reduced", Severity::warning,
      "The image has more than 8 bits a channel, or floating-point values."}},
    {Code::images_left_out,
     {"images-left-out", Severity::warning, "The file holds more images than the one that is read."}},
}};
static_assert(diagnostic::in_order(kCodes, Code::images_left_out));

}  // namespace

const diagnostic::CodeInfo& code_info(Code code) {
    return kCodes[static_cast<std::size_t>(code)].info;
}

}  // namespace image
