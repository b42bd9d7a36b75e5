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

/// The values of the texture's header chunk. A value that a header lacks keeps that of the header before.
struct TXLTextureHeader {
    std::int32_t width = 0;   // pixels
    std::int32_t height = 0;  // pixels
    std::int32_t color_mode = 0;
};

/// Loads a texture file into a picture and saves a picture as one. After a failed load, rows that were
/// delivered stay delivered. Use one object per load or save: a failure stays in its container.
class TXLImageFilter final : public Chunk {
  public:
    TXLImageFilter() = default;

    /// Loads the file at `path` into `target`, which is not kept after the call. True when the container has
    /// no error at the end. Deliberately true for a file without a texture and for one that was cut between
    /// two chunks: the top level of the format has no end, so they cannot be told from complete files.
    bool LoadImage(const char* path, TXLImage* target);

    /// Saves `source` to `path` and replaces an existing file; every alpha channel becomes a layer "Alpha".
    /// Deliberately, as the format requires of its writer, a colour mode that is neither 2 nor 4 with bit 0
    /// cleared is not refused: the file then has a pixel-rows chunk without its end tag and no alpha
    /// channels.
    bool SaveImage(const char* path, TXLImage* source);

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;

    /// The row coding as part of the filter's interface; see pack_bits.h.
    static std::int32_t PackBitsEncode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                                       std::int32_t dstLen) {
        return ::pack_bits_encode(src, srcLen, dst, dstLen);
    }
    static bool PackBitsDecode(const unsigned char* src, std::int32_t srcLen, unsigned char* dst,
                               std::int32_t dstLen) {
        return ::pack_bits_decode(src, srcLen, dst, dstLen);
    }

    /// The container's error code after the last load or save; 0 for none.
    [[nodiscard]] std::int32_t GetError() const { return file_.GetError(); }

    /// Sets an observer (not owned) that is told what a load finds; null for none.
    void SetObserver(TextureObserver* observer);

    // For the handlers. The filter that a container belongs to, which is its private data; null for none.
    [[nodiscard]] static TXLImageFilter* Of(const PrivateHyperFile* hf) {
        return static_cast<TXLImageFilter*>(hf->GetPrivateData());
    }
    /// The observer of that filter; null for none.
    [[nodiscard]] static TextureObserver* ObserverOf(const PrivateHyperFile* hf) {
        const TXLImageFilter* filter = Of(hf);
        return filter == nullptr ? nullptr : filter->observer_;
    }
    [[nodiscard]] TXLImage* image() { return image_; }
    [[nodiscard]] TXLTextureHeader& header() { return header_; }
    [[nodiscard]] TXLAlpha& alpha() { return alpha_; }
    /// Total bytes of the rows read so far; see PixelRowReader.
    [[nodiscard]] std::int64_t& row_bytes() { return row_bytes_; }
    /// Number of texture headers read so far; see TXLTexture.
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
