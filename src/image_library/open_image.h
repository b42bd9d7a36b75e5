#pragma once

#include <OpenImageIO/imageio.h>

#include <memory>
#include <string>
#include <utility>

#include "system/input_file.h"

namespace image_library {

/// An image file that the library has opened.
class OpenImage {
  public:
    /// Opens a regular file. The library gets the file that was opened and not its name, where the system can
    /// do so: by then the name may be a pipe, for whose writer the library would wait. The format is the
    /// extension's, or else the first that takes the file. Without a result `error` says why; the library's
    /// own words for it name `path`.
    static OpenImage open(const std::string& path, const OIIO::ImageSpec& config, std::string& error);

    /// Whether there was a file to read, also when no format took it.
    [[nodiscard]] bool has_file() const { return file_ != nullptr; }
    [[nodiscard]] explicit operator bool() const { return input_ != nullptr; }
    OIIO::ImageInput& operator*() const { return *input_; }
    OIIO::ImageInput* operator->() const { return input_.get(); }

  private:
    OpenImage() = default;
    OpenImage(os::InputFile file, std::unique_ptr<OIIO::ImageInput> input)
        : file_(std::move(file)), input_(std::move(input)) {}

    os::InputFile file_;  // readers open the file anew for a second image
    std::unique_ptr<OIIO::ImageInput> input_;
};

}  // namespace image_library
