#pragma once

#include <cstdint>

#include "texture/txl/chunk.h"
#include "texture/txl/txl_paint_layer.h"

/// Handles the alpha-channels chunk: converts each layer to an alpha channel of the picture and back. Every
/// operation returns 0 or false when the container has no filter.
class TXLAlpha : public Chunk {
  public:
    TXLAlpha() { layer_.SetOwner(this); }

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;
    void Write(PrivateHyperFile* hf) override;

    /// Announces an alpha channel of `w` by `h` pixels to the target and returns the target's answer.
    /// Deliberately passes the index that was last set: targets append, so reading never changes it, and it
    /// is 0 for every channel of a file.
    virtual bool Init(PrivateHyperFile* hf, std::int32_t w, std::int32_t h, std::int32_t mode);

    /// Reduces a row in place to one byte per pixel, by the colour mode of the last Init, and delivers it.
    /// Bytes that the mode expects and the row lacks count as 0. Modes other than 2 to 5 deliver nothing,
    /// which is a success.
    virtual bool SetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* buffer, std::int32_t channels);

    /// Always grey: the mode in which alpha channels are written.
    virtual std::int32_t GetColorMode(PrivateHyperFile* hf);

    /// Gets `count` alpha values of row `y` from the source.
    virtual std::int32_t GetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y,
                                       std::int32_t count, unsigned char* buffer);

  private:
    bool ReadNested(PrivateHyperFile* hf);

    TXLPaintLayer layer_;
    std::int32_t alpha_index_ = 0;
    std::int32_t color_mode_ = 0;
    std::int32_t nesting_ = 0;  // number of open alpha-channels chunks
};
