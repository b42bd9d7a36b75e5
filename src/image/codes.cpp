#include "image/codes.h"

#include <array>
#include <cstddef>

namespace image {
namespace {

using diagnostic::CodeRow;
using diagnostic::Severity;

constexpr std::array<CodeRow<Code>, 15> kCodes{{
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
    {Code::channels_guessed,
     {"channels-guessed", Severity::warning, "The names of the channels do not say what they are.",
      "if that is wrong, call them R, G and B, or Y, and A"}},
    {Code::depth_reduced,
     {"depth-reduced", Severity::loss,
      "The image has more than 8 bits a channel, or floating-point values."}},
    {Code::colour_not_converted,
     {"colour-not-converted", Severity::loss, "The image has linear colour, and a texture is taken as sRGB.",
      "convert the image to sRGB first"}},
    {Code::names_left_out,
     {"names-left-out", Severity::note, "The output has no room for the names of alpha channels."}},
    {Code::metadata_left_out,
     {"metadata-left-out", Severity::note, "The image has metadata, for which a texture has no room."}},
    {Code::images_left_out,
     {"images-left-out", Severity::warning, "The file holds more images than the one that is read."}},
}};
static_assert(diagnostic::in_order(kCodes, Code::images_left_out));

}  // namespace

const diagnostic::CodeInfo& code_info(Code code) {
    return kCodes[static_cast<std::size_t>(code)].info;
}

}  // namespace image
