// An image library of a later version, whose functions must not be called: there are none.

#include "image/functions.h"

__attribute__((visibility("default"))) const image::Functions* vxr_image_functions() {
    static constexpr image::Functions kFunctions{1000, nullptr, nullptr, nullptr, nullptr, nullptr};
    return &kFunctions;
}
