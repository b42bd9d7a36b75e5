#include "texture/txl/txl_texture.h"

#include <string>

#include "limit/limits.h"
#include "texture/container/hyper_file.h"
#include "texture/txl/pixel_rows.h"
#include "texture/txl/txl_ids.h"
#include "texture/txl/txl_image.h"
#include "texture/txl/txl_image_filter.h"

namespace {

constexpr std::int32_t kTextureHeaderVersion = 1;
constexpr std::int32_t kTextureRowsVersion = 2;

bool read_header(PrivateHyperFile* hf, TXLImageFilter& filter, std::int32_t version) {
    if (++filter.header_count() > limits::kTextureHeaders.value) {
        return hf->Fail(TextureFault::over_limit, limits::kTextureHeaders, [] {
            return "the file has more than " + std::to_string(limits::kTextureHeaders.value) +
                   " texture headers";
        }) != 0;
    }
    TXLTextureHeader& header = filter.header();
    hf->ReadLong(&header.width);
    hf->ReadLong(&header.height);
    if (version > 0) {
        hf->ReadLong(&header.color_mode);
    }
    if (hf->GetError() != 0) {
        return false;
    }
    if (!filter.image()->Init(header.width, header.height, header.color_mode)) {
        return hf->Fail(TextureFault::refused_picture, [&] {
            return "a texture of " + std::to_string(header.width) + " x " + std::to_string(header.height) +
                   " pixels was not accepted";
        }) != 0;
    }
    return hf->SkipToEndChunk() != 0;
}

bool read_rows(PrivateHyperFile* hf, TXLImageFilter& filter, std::int32_t version) {
    if (version < kTextureRowsVersion) {
        return hf->Fail(TextureFault::unsupported, [&] {
            return "pixel rows of version " + std::to_string(version) +
                   "; a texture needs at least version " + std::to_string(kTextureRowsVersion);
        }) != 0;
    }
    PixelRowsHeader rows_header{};
    if (read_pixel_rows_header(hf, &rows_header) == 0) {
        return false;
    }
    const TXLTextureHeader& header = filter.header();
    const std::int32_t channels = texture_channels(header.color_mode);
    if (channels == 0 || rows_header.channels != channels) {
        return hf->Fail(TextureFault::unsupported, [&] {
            return std::to_string(rows_header.channels) + " channels in colour mode " +
                   std::to_string(header.color_mode) + "; mode 2 has 1 and mode 4 has 3";
        }) != 0;
    }
    if (header.width > 0 && header.height > 0) {
        PixelRowReader rows(hf, rows_header, filter.row_bytes());
        if (!rows.begin()) {
            return false;
        }
        while (rows.next()) {
            filter.image()->SetPixelCount(rows_header.x, rows.row(), rows_header.count, rows.bytes(),
                                          channels);
        }
    }
    return hf->SkipToEndChunk() != 0;
}

void write_header(PrivateHyperFile* hf, std::int32_t width, std::int32_t height, std::int32_t mode) {
    hf->WriteChunkStart(kChunkTextureHeader, kTextureHeaderVersion);
    hf->WriteLong(width);
    hf->WriteLong(height);
    hf->WriteLong(mode);
    hf->WriteChunkEnd();
}

// Returns false with the container's error set.
bool write_rows(PrivateHyperFile* hf, TXLImage* image, std::int32_t width, std::int32_t height,
                std::int32_t channels) {
    hf->WriteLong(0);
    hf->WriteLong(0);
    hf->WriteLong(width);
    hf->WriteLong(height);
    hf->WriteLong(channels);
    if (width > 0 && height > 0) {
        PixelRowWriter rows(hf, width, channels);
        if (!rows.begin()) {
            return false;
        }
        for (std::int32_t y = 0; y < height; ++y) {
            image->GetPixelCount(0, y, width, rows.bytes());
            if (!rows.write_row()) {
                return false;
            }
        }
    }
    return hf->WriteChunkEnd() != 0;
}

}  // namespace

bool TXLTexture::HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    if (filter == nullptr) {
        return false;
    }
    switch (id) {
        case kChunkTextureHeader:
            return version >= 0 && read_header(hf, *filter, version);
        case kChunkPixelRows:
            return read_rows(hf, *filter, version);
        case kChunkLayerList:
            return filter->alpha().ReadChunk(hf);
        default:
            return false;
    }
}

void TXLTexture::Write(PrivateHyperFile* hf) {
    TXLImageFilter* filter = TXLImageFilter::Of(hf);
    if (filter == nullptr) {
        return;
    }
    TXLImage* image = filter->image();
    // In a picture, bit 0 of the mode announces an alpha channel; in a file, the layers do.
    const std::int32_t mode = image->GetColorMode() & ~1;
    const std::int32_t width = image->GetBw();
    const std::int32_t height = image->GetBh();
    write_header(hf, width, height, mode);
    hf->WriteChunkStart(kChunkPixelRows, kTextureRowsVersion);
    const std::int32_t channels = texture_channels(mode);
    if (channels == 0) {
        return;  // Deliberately without the chunk's end tag: the format has no other form for such modes.
    }
    if (!write_rows(hf, image, width, height, channels)) {
        return;
    }
    if (image->GetAlphaCount() != 0) {
        filter->alpha().WriteObject(hf, kChunkLayerList);
    }
}
