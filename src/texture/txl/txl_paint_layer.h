#pragma once

#include <array>
#include <cstdint>

#include "texture/txl/chunk.h"

class TXLAlpha;

/// Handles the layer chunk: its header and its pixel rows. The four operations after Write are forwarded
/// unchanged to the owner, whose pixels it reads and writes; without an owner they return 0.
class TXLPaintLayer : public Chunk {
  public:
    TXLPaintLayer() = default;

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;
    void Write(PrivateHyperFile* hf) override;

    /// Begins a layer of `w` by `h` pixels in the layer's colour mode. False when the owner refuses the
    /// layer.
    virtual bool Init(PrivateHyperFile* hf, std::int32_t w, std::int32_t h, std::int32_t mode);
    /// Stores a row of the layer, `channels` bytes per pixel; may change the buffer.
    virtual bool SetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y, std::int32_t count,
                               unsigned char* buffer, std::int32_t channels);
    /// The colour mode in which the layer is written.
    virtual std::int32_t GetColorMode(PrivateHyperFile* hf);
    /// Fills `buffer` with `count` pixels of row `y`.
    virtual std::int32_t GetPixelCount(PrivateHyperFile* hf, std::int32_t x, std::int32_t y,
                                       std::int32_t count, unsigned char* buffer);

    /// `owner` is not owned and outlives the layer.
    void SetOwner(TXLAlpha* owner) { owner_ = owner; }

    [[nodiscard]] std::int32_t color_mode() const { return color_mode_; }
    [[nodiscard]] const std::array<unsigned char, 5>& attributes() const { return attributes_; }

  private:
    bool ReadHeader(PrivateHyperFile* hf);
    bool ReadAttributes(PrivateHyperFile* hf);
    bool ReadRows(PrivateHyperFile* hf);
    void WriteHeader(PrivateHyperFile* hf);
    void WriteRows(PrivateHyperFile* hf);

    std::int32_t color_mode_ = 0;
    std::array<unsigned char, 5> attributes_{};
    TXLAlpha* owner_ = nullptr;
};
