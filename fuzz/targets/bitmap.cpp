// Reads a texture file into the picture that the plug-in keeps.

#include "check.h"
#include "input.h"
#include "texture/txl/base_bitmap.h"
#include "texture/txl/bitmap_invariants.h"
#include "texture/txl/example_txl_image.h"
#include "texture/txl/txl_image_filter.h"

const std::size_t kOptionBytes = 0;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string path = scratch().write("picture.txl", Input(data, size).rest_text());
    BaseBitmap bitmap;
    ExampleTXLImage image(&bitmap);
    TXLImageFilter filter;
    const bool loaded = filter.LoadImage(path.c_str(), &image);
    require(!loaded || filter.GetError() == 0, "a file with an error is not loaded");
    require_sound(validate_bitmap(bitmap));
    return 0;
}
