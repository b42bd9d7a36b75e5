#pragma once

#include <cstdint>

#include "texture/container/hyper_file.h"
#include "texture/txl/chunk.h"
#include "texture/txl/pack_bits.h"
#include "texture/txl/txl_alpha.h"
#include "texture/txl/txl_texture.h"

class BaseBitmap;
class Filename;
class TextureObserver;
class TXLImage;

/// What the texture's header chunk says; kept from one header to the next where a header does not say it.
struct TXLTextureHeader {
    std::int32_t width = 0;   // pixels
    std::int32_t height = 0;  // pixels
    std::int32_t color_mode = 0;
};

/// Reads a texture file into a picture and writes one from a picture. Results are success or failure; after a
/// failed load, rows that were delivered stay delivered. One object serves one load or save: a failure stays
/// in its container.
class TXLImageFilter final : public Chunk {
  public:
    TXLImageFilter() = default;

    /// Loads the file at `path` into `target`, which is not kept beyond the call. True when the container
    /// ended without an error. Deliberately that includes files without a texture and files that were cut
    /// between two chunks.
    bool LoadImage(const char* path, TXLImage* target);

    /// Saves `source` to `path`, replacing what was there; every alpha channel becomes a layer "Alpha".
    /// Deliberately a colour mode that, with bit 0 cleared, is neither 2 nor 4 is not refused: the file then
    /// ends in a pixel-rows chunk without its end tag, and has no alpha channels.
    bool SaveImage(const char* path, TXLImage* source);

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;

    /// The row coding, as the filter's interface offers it; see pack_bits.h.
    static std::int32_t PackBitsEncode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                       std::int32_t dstLen) {
        return ::pack_bits_encode(src, srcLen, dst, dstLen);
    }
    static bool PackBitsDecode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                               std::int32_t dstLen) {
        return ::pack_bits_decode(src, srcLen, dst, dstLen);
    }

    /// The container's error code of the last load or save, 0 for none.
    [[nodiscard]] std::int32_t GetError() const { return file_.GetError(); }

    /// An observer (not owned) to be told what a load finds, null for none.
    void SetObserver(TextureObserver* observer);

    // For the handlers. The filter that a container belongs to is its private data, null for none.
    [[nodiscard]] static TXLImageFilter* Of(const PrivateHyperFile* hf) {
        return static_cast<TXLImageFilter*>(hf->GetPrivateData());
    }
    /// The observer of that filter, null for none.
    [[nodiscard]] static TextureObserver* ObserverOf(const PrivateHyperFile* hf) {
        const TXLImageFilter* filter = Of(hf);
        return filter == nullptr ? nullptr : filter->observer_;
    }
    [[nodiscard]] TXLImage* image() { return image_; }
    [[nodiscard]] TXLTextureHeader& header() { return header_; }
    [[nodiscard]] TXLAlpha& alpha() { return alpha_; }
    /// Bytes of all rows read so far; see PixelRowReader.
    [[nodiscard]] std::int64_t& row_bytes() { return row_bytes_; }
    /// Texture headers read so far; see TXLTexture.
    [[nodiscard]] std::int32_t& header_count() { return header_count_; }

  private:
    PrivateHyperFile file_;
    TextureObserver* observer_ = nullptr;
    TXLImage* image_ = nullptr;  // target or source, during a load or save
    TXLTexture texture_;
    TXLAlpha alpha_;
    TXLTextureHeader header_;
    std::int64_t row_bytes_ = 0;
    std::int32_t header_count_ = 0;
};

// The format's entry points for a picture library that asks which files it can read.

/// Whether the four bytes at `probe` are "TFF" and a zero; `name` and `size` are ignored. Deliberately not
/// how the files of the texture filter begin: it is the mark of the format that such a library asks for.
[[nodiscard]] bool TXLIdentify(Filename* name, unsigned char* probe, std::int32_t size);

/// Both do nothing and return true: pictures are loaded and saved through the texture filter.
bool TXLLoad(const Filename& name, BaseBitmap* bitmap, std::int32_t);
bool TXLSave(const Filename& name, BaseBitmap* bitmap, int);
