#pragma once

#include <windows.h>

#include <objbase.h>
#include <wincodec.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "image/image.h"

// What reading and writing through Windows' own imaging component share.

namespace image {

/// Thrown to end reading or writing with an error.
struct Refusal {
    Code code;
    std::string reason;
};

/// The reason for a result that says failure.
[[nodiscard]] std::string text_of_result(HRESULT result);

/// Throws the refusal for a call that failed, or std::bad_alloc when memory is short.
void require(HRESULT result, Code code);

/// An object of the component, released by its scope.
template <typename Object>
class Owned {
  public:
    Owned() = default;
    ~Owned() {
        if (object_ != nullptr) {
            object_->Release();
        }
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    /// Where a function stores the object that it makes.
    Object** place() { return &object_; }
    [[nodiscard]] Object* get() const { return object_; }
    Object* operator->() const { return object_; }

  private:
    Object* object_ = nullptr;
};

/// The imaging component as one thread uses it for one file. Throws a refusal when there is no component.
class Imaging {
  public:
    Imaging();
    ~Imaging();
    Imaging(const Imaging&) = delete;
    Imaging& operator=(const Imaging&) = delete;

    IWICImagingFactory* operator->() const { return factory_; }

  private:
    void leave() const;

    bool initialised_;
    IWICImagingFactory* factory_ = nullptr;
};

/// A format that the component reads and writes.
struct Container {
    const char* extension;
    const char* name;
    const GUID* id;
    bool grey;                ///< the writer has grey pixels
    bool alpha;               ///< the writer has an alpha channel beside RGB
    bool premultiplied;       ///< that alpha is associated, as a texture's is by default
    std::string_view begins;  ///< the first bytes of a file
};

/// The format with the extension of `path`, or null.
[[nodiscard]] const Container* container_by_extension(const char* path);

/// The format of a file that begins with `bytes`, or null.
[[nodiscard]] const Container* container_by_content(std::string_view bytes);

/// How many rows of this length are passed at a time: the component counts bytes in 32 bits.
[[nodiscard]] std::size_t rows_at_once(std::uint64_t row_bytes, std::int32_t height_px);

}  // namespace image
