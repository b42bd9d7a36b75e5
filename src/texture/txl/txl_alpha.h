#pragma once

#include <cstdint>

#include "texture/txl/chunk.h"
#include "texture/txl/txl_paint_layer.h"

/// The alpha-channels chunk: turns each layer into an alpha channel of the picture and back. Operations
/// return 0 (false) when the container has no filter.
class TXLAlpha : public Chunk {
  public:
    TXLAlpha() { layer_.SetOwner(this); }

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;
    void Write(PrivateHyperFile* hf) override;

    /// Announces an alpha channel of `w` by `h` pixels to the target; its answer is the result. Deliberately
    /// with the index that was last set: reading never changes it, so it is 0 for every channel of a file,
    /// and targets append.
    virtual bool Init(PrivateHyperFile* hf, std::int32_t w, std::int32_t h, std::int32_t mode);

    /// Reduces a row to one byte a pixel in place, by the colour mode of the last Init, and delivers it.
    /// Where that mode has more bytes a pixel than the row has channels, the missing ones are 0. Modes other
    /// than 2 to 5 deliver nothing, which is a success.
    virtual bool SetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* buffer, std::int32_t channels);

    /// Alpha channels are always written as grey.
    virtual std::int32_t GetColorMode(PrivateHyperFile* hf);

    /// Asks the source for `count` alpha values of row `y`.
    virtual std::int32_t GetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y,
                                       std::int32_t count, unsigned char* buffer);

  private:
    bool ReadNested(PrivateHyperFile* hf);

    TXLPaintLayer layer_;
    std::int32_t alpha_index_ = 0;
    std::int32_t color_mode_ = 0;
    std::int32_t nesting_ = 0;  // alpha-channels chunks that are open
};
