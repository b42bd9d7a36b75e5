#pragma once

#include <cstdint>

#include "texture/chunk.h"

/// The texture chunk: the header, the flattened colour pixels and the list of layers.
class TXLTexture final : public Chunk {
  public:
    /// How many texture headers of a file are followed. The writer writes one; each of them makes a picture
    /// anew, which costs more than the bytes that ask for it.
    static constexpr std::int32_t kMaxHeaders = 16;

    TXLTexture() = default;

    bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version) override;
    void Write(PrivateHyperFile* hf) override;
};
