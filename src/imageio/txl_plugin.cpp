// The symbols that OpenImageIO looks up in a file called txl.imageio.so.

#include <OpenImageIO/imageio.h>

#include "imageio/txl_input.h"
#include "imageio/txl_output.h"

// OpenImageIO defines these names and types; no header declares them.
extern "C" {

OIIO_EXPORT int txl_imageio_version = OIIO_PLUGIN_VERSION;
OIIO_EXPORT const char* txl_input_extensions[] = {"txl", nullptr};
OIIO_EXPORT const char* txl_output_extensions[] = {"txl", nullptr};

OIIO_EXPORT const char* txl_imageio_library_version() {
    return nullptr;  // the plug-in needs no other library
}

OIIO_EXPORT OIIO::ImageInput* txl_input_imageio_create() {
    return new imageio::TxlInput;
}

OIIO_EXPORT OIIO::ImageOutput* txl_output_imageio_create() {
    return new imageio::TxlOutput;
}
}
