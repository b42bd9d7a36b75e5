#include "texture/txl/txl_paint_layer.h"

#include <algorithm>
#include <string>
#include <vector>

#include "texture/container/hyper_file.h"
#include "texture/container/private_string.h"
#include "texture/file/memory.h"
#include "texture/txl/pixel_rows.h"
#include "texture/txl/texture_observer.h"
#include "texture/txl/txl_alpha.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image.h"
#include "texture/txl/txl_image_filter.h"

namespace {

constexpr std::int32_t kLayerHeaderVersion = 0;
constexpr std::int32_t kLayerRowsVersion = 1;

// The number of channels that is written: 1 for grey, that of RGB for every other mode.
constexpr std::int32_t layer_channels(std::int32_t mode) {
    return mode == kModeGrey ? 1 : 3;
}

void show(TextureObserver& observer, std::int32_t mode, std::span<const unsigned char> attributes,
          const PrivateString& name) {
    std::vector<std::uint16_t> units(static_cast<std::size_t>(name.GetLength()));
    PrivateString::GetUcBlock(name, units.data(), name.GetLength());
    observer.on_layer({mode, attributes, units});
}

}  // namespace

bool TXLPaintLayer::HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) {
    if (TXLImageFilter::Of(hf) == nullptr) {
        return false;
    }
    if (id == kChunkLayerHeader && version >= kLayerHeaderVersion) {
        return ReadHeader(hf);
    }
    if (id == kChunkPixelRows && version >= kLayerRowsVersion) {
        return ReadRows(hf);
    }
    return false;
}

bool TXLPaintLayer::ReadHeader(PrivateHyperFile* hf) {
    std::int32_t ignored_long = 0;
    float ignored_real = 0;
    int ignored_bool = 0;
    PrivateString name;
    hf->ReadLong(&color_mode_);
    if (!ReadAttributes(hf)) {
        return false;
    }
    hf->ReadLong(&ignored_long);
    hf->ReadReal(&ignored_real);
    hf->ReadBool(&ignored_bool);
    hf->ReadLong(&ignored_long);
    hf->ReadLong(&ignored_long);
    hf->ReadString(&name);
    hf->ReadLong(&ignored_long);
    hf->ReadLong(&ignored_long);
    hf->ReadBool(&ignored_bool);
    if (hf->GetError() != 0) {
        return false;
    }
    if (TextureObserver* const observer = TXLImageFilter::ObserverOf(hf); observer != nullptr) {
        show(*observer, color_mode_, attributes_, name);
    }
    const TXLTextureHeader& texture = TXLImageFilter::Of(hf)->header();
    if (!Init(hf, texture.width, texture.height, color_mode_)) {
        // Not an error: the rest of this chunk is skipped, and a target that refused the layer also refuses
        // its rows. The load goes on.
        return false;
    }
    return hf->SkipToEndChunk() != 0;
}

bool TXLPaintLayer::ReadAttributes(PrivateHyperFile* hf) {
    void* data = nullptr;
    std::int32_t byte_count = 0;
    if (hf->ReadMemory(&data, &byte_count) == 0) {
        return false;
    }
    const MemBlock block(static_cast<unsigned char*>(data));
    attributes_.fill(0);
    std::copy_n(block.get(), std::min(byte_count, static_cast<std::int32_t>(attributes_.size())),
                attributes_.begin());
    return true;
}

bool TXLPaintLayer::ReadRows(PrivateHyperFile* hf) {
    PixelRowsHeader header{};
    if (read_pixel_rows_header(hf, &header) == 0) {
        return false;
    }
    if (header.count > 0 && header.rows > 0 && header.channels > 0) {
        PixelRowReader rows(hf, header, TXLImageFilter::Of(hf)->row_bytes());
        if (!rows.begin()) {
            return false;
        }
        while (rows.next()) {
            SetPixelCount(hf, header.x, rows.row(), header.count, rows.bytes(), header.channels);
        }
    }
    return hf->SkipToEndChunk() != 0;
}

void TXLPaintLayer::Write(PrivateHyperFile* hf) {
    if (TXLImageFilter::Of(hf) == nullptr) {
        return;
    }
    color_mode_ = GetColorMode(hf);
    WriteHeader(hf);
    WriteRows(hf);
}

void TXLPaintLayer::WriteHeader(PrivateHyperFile* hf) {
    constexpr std::array<unsigned char, 3> kAttributes{};
    hf->WriteChunkStart(kChunkLayerHeader, kLayerHeaderVersion);
    hf->WriteLong(color_mode_);
    hf->WriteMemory(kAttributes.data(), layer_channels(color_mode_));
    hf->WriteLong(0);
    hf->WriteReal(1.0F);
    hf->WriteBool(0);
    hf->WriteLong(0);
    hf->WriteLong(0);
    hf->WriteString(PrivateString("Alpha"));
    hf->WriteLong(0);
    hf->WriteLong(0);
    hf->WriteBool(0);
    hf->WriteChunkEnd();
}

void TXLPaintLayer::WriteRows(PrivateHyperFile* hf) {
    TXLImage* image = TXLImageFilter::Of(hf)->image();
    const std::int32_t width = image->GetBw();
    const std::int32_t height = image->GetBh();
    const std::int32_t channels = layer_channels(color_mode_);
    hf->WriteChunkStart(kChunkPixelRows, kLayerRowsVersion);
    hf->WriteLong(0);
    hf->WriteLong(0);
    hf->WriteLong(width);
    hf->WriteLong(height);
    hf->WriteLong(channels);
    if (width > 0 && height > 0) {
        PixelRowWriter rows(hf, width, channels);
        if (!rows.begin()) {
            return;
        }
        for (std::int32_t y = 0; y < height; ++y) {
            GetPixelCount(hf, 0, y, width, rows.bytes());
            if (!rows.write_row()) {
                return;
            }
        }
    }
    hf->WriteChunkEnd();
}

bool TXLPaintLayer::Init(PrivateHyperFile* hf, std::int32_t w, std::int32_t h, std::int32_t mode) {
    return owner_ != nullptr && owner_->Init(hf, w, h, mode);
}

bool TXLPaintLayer::SetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                                  unsigned char* buffer, std::int32_t channels) {
    return owner_ != nullptr && owner_->SetPixelCount(hf, x, y, count, buffer, channels);
}

std::int32_t TXLPaintLayer::GetColorMode(PrivateHyperFile* hf) {
    return owner_ == nullptr ? 0 : owner_->GetColorMode(hf);
}

std::int32_t TXLPaintLayer::GetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y,
                                          std::int32_t count, unsigned char* buffer) {
    return owner_ == nullptr ? 0 : owner_->GetPixelCount(hf, x, y, count, buffer);
}
