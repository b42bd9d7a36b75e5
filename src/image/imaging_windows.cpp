#include "image/imaging_windows.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <new>

#include "system/files.h"
#include "text/ascii.h"

namespace image {
namespace {

constexpr std::array<Container, 7> kContainers{{
    {".png", "png", &GUID_ContainerFormatPng, true, true, false, {"\x89PNG\r\n\x1a\n", 8}},
    {".tif", "tiff", &GUID_ContainerFormatTiff, true, true, true, {"II\x2a\0", 4}},
    {".tiff", "tiff", &GUID_ContainerFormatTiff, true, true, true, {"MM\0\x2a", 4}},
    {".jpg", "jpeg", &GUID_ContainerFormatJpeg, true, false, false, {"\xff\xd8\xff", 3}},
    {".jpeg", "jpeg", &GUID_ContainerFormatJpeg, true, false, false, {"\xff\xd8\xff", 3}},
    // The writer's only grey is a palette, and its alpha needs a header that few programs read.
    {".bmp", "bmp", &GUID_ContainerFormatBmp, false, false, false, {"BM", 2}},
    {".dib", "bmp", &GUID_ContainerFormatBmp, false, false, false, {"BM", 2}},
}};

}  // namespace

std::string text_of_result(HRESULT result) {
    switch (static_cast<std::uint32_t>(result)) {
        case 0x88982F07:  // WINCODEC_ERR_UNKNOWNIMAGEFORMAT
        case 0x88982F50:  // WINCODEC_ERR_COMPONENTNOTFOUND
            return "Windows has no codec for it";
        case 0x88982F60:  // WINCODEC_ERR_BADIMAGE
        case 0x88982F61:  // WINCODEC_ERR_BADHEADER
        case 0x88982F62:  // WINCODEC_ERR_FRAMEMISSING
        case 0x88982F70:  // WINCODEC_ERR_BADSTREAMDATA
        case 0x88982F72:  // WINCODEC_ERR_STREAMREAD
            return "the file is damaged or cut off";
        case 0x88982F80:  // WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT
        case 0x88982F81:  // WINCODEC_ERR_UNSUPPORTEDOPERATION
            return "Windows does not support its kind of pixels";
        default: {
            std::array<char, 64> text{};
            std::snprintf(text.data(), text.size(), "Windows reports error %08lX",
                          static_cast<unsigned long>(result));
            return text.data();
        }
    }
}

void require(HRESULT result, Code code) {
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    if (FAILED(result)) {
        throw Refusal{code, text_of_result(result)};
    }
}

Imaging::Imaging() : initialised_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
    // A thread that has chosen another model already can use the component as well.
    void* made = nullptr;
    const HRESULT result = CoCreateInstance(CLSID_WICImagingFactory1, nullptr, CLSCTX_INPROC_SERVER,
                                            IID_IWICImagingFactory, &made);
    if (FAILED(result)) {
        leave();
        throw Refusal{Code::gave_up, "Windows' imaging component cannot be used: " + text_of_result(result)};
    }
    factory_ = static_cast<IWICImagingFactory*>(made);
}

Imaging::~Imaging() {
    factory_->Release();
    leave();
}

void Imaging::leave() const {
    if (initialised_) {
        CoUninitialize();
    }
}

const Container* container_by_extension(const char* path) {
    const std::string extension = os::text_of(os::path_of(path).extension());
    for (const Container& one : kContainers) {
        if (text::equal_ignoring_case(extension, one.extension)) {
            return &one;
        }
    }
    return nullptr;
}

const Container* container_by_content(std::string_view bytes) {
    for (const Container& one : kContainers) {
        if (bytes.starts_with(one.begins)) {
            return &one;
        }
    }
    return nullptr;
}

std::size_t rows_at_once(std::uint64_t row_bytes, std::int32_t height_px) {
    constexpr std::uint64_t kBand_bytes = std::uint64_t{1} << 24;
    return static_cast<std::size_t>(
        std::clamp<std::uint64_t>(kBand_bytes / row_bytes, 1, static_cast<std::uint64_t>(height_px)));
}

}  // namespace image
