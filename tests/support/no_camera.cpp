// Stands in for the library by which OpenImageIO takes pictures from a camera. See tests/CMakeLists.txt.

#include <cstdio>
#include <cstdlib>

namespace cv {

/// All that OpenImageIO takes of it.
class VideoCapture {
  public:
    [[gnu::visibility("default")]] VideoCapture(int camera, int driver);
};

VideoCapture::VideoCapture(int camera, int /*driver*/) {
    std::fprintf(stderr, "a test takes a picture from camera %d\n", camera);
    std::abort();
}

}  // namespace cv
