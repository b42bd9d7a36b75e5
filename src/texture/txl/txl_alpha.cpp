#include "texture/txl/txl_alpha.h"

#include <string>

#include "limit/limits.h"
#include "texture/container/hyper_file.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image.h"
#include "texture/txl/txl_image_filter.h"

namespace {

/// How a layer's colour mode yields alpha: the average of `used` bytes of each pixel, starting at `first`.
struct Reduction {
    std::int32_t first;
    std::int32_t used;
};

// `used` is 0 for modes without alpha.
constexpr Reduction reduction(std::int32_t mode) {
    switch (mode) {
        case 2:
            return {0, 1};
        case 3:
            return {1, 1};
        case 4:
            return {0, 3};
        case 5:
            return {1, 3};  // the layer's own alpha comes first and is ignored
        default:
            return {0, 0};
    }
}

unsigned char alpha_of(const unsigned char* pixel, std::int32_t channels, Reduction by) {
    int sum = 0;
    for (std::int32_t i = by.first; i < by.first + by.used; ++i) {
        sum += i < channels ? pixel[i] : 0;
    }
    return static_cast<unsigned char>(sum / by.used);
}

}  // namespace

bool TXLAlpha::HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t /*version*/) {
    if (TXLImageFilter::Of(hf) == nullptr) {
        return false;
    }
    switch (id) {
        case kChunkAlphaChannels:
            return ReadNested(hf);
        case kChunkLayer:
            return layer_.ReadChunk(hf);
        default:
            return false;
    }
}

bool TXLAlpha::ReadNested(PrivateHyperFile* hf) {
    if (nesting_ == limits::kAlphaNesting.value) {
        return hf->Fail(TextureFault::over_limit, limits::kAlphaNesting, [] {
            return "chunks 110100 are nested more than " + std::to_string(limits::kAlphaNesting.value) +
                   " deep";
        }) != 0;
    }
    ++nesting_;
    const bool read = ReadChunk(hf);
    --nesting_;
    return read;
}

void TXLAlpha::Write(PrivateHyperFile* hf) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    if (filter == nullptr) {
        return;
    }
    hf->WriteChunkStart(kChunkAlphaChannels, 0);
    const std::int32_t alpha_count = filter->image()->GetAlphaCount();
    for (std::int32_t i = 0; i < alpha_count && hf->GetError() == 0; ++i) {
        alpha_index_ = i;
        layer_.WriteObject(hf, kChunkLayer);
    }
    hf->WriteChunkEnd();
}

bool TXLAlpha::Init(PrivateHyperFile* hf, std::int32_t w, std::int32_t h, std::int32_t mode) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    if (filter == nullptr) {
        return false;
    }
    color_mode_ = mode;
    return filter->image()->InitAlphaChannel(alpha_index_, w, h);
}

bool TXLAlpha::SetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                             unsigned char* buffer, std::int32_t channels) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    if (filter == nullptr) {
        return false;
    }
    const Reduction by = reduction(color_mode_);
    if (by.used == 0) {
        return true;
    }
    if (channels == 1 && by.first == 0 && by.used == 1) {
        return filter->image()->SetAlphaPixel(alpha_index_, x, y, count, buffer);
    }
    // In place from the left: a stored byte never lies beyond the pixel that is read next.
    const unsigned char* pixel = buffer;
    for (std::int32_t i = 0; i < count; ++i, pixel += channels) {
        buffer[i] = alpha_of(pixel, channels, by);
    }
    return filter->image()->SetAlphaPixel(alpha_index_, x, y, count, buffer);
}

std::int32_t TXLAlpha::GetColorMode(PrivateHyperFile* hf) {
    return TXLImageFilter::Of(hf) == nullptr ? 0 : kModeGrey;
}

std::int32_t TXLAlpha::GetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                                     unsigned char* buffer) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    return filter == nullptr ? 0 : filter->image()->GetAlphaPixel(alpha_index_, x, y, count, buffer);
}
