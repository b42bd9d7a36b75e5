#pragma once

#include <cstdint>

#include "texture/txl/chunk.h"

/// Handles the texture chunk: the header, the flattened colour pixels and the list of layers.
class TXLTexture final : public Chunk {
  public:
    TXLTexture() = default;

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;
    void Write(PrivateHyperFile* hf) override;
};
