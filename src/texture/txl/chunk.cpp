#include "texture/txl/chunk.h"

#include <string>

#include "texture/container/hyper_file.h"
#include "texture/txl/texture_observer.h"
#include "texture/txl/txl_image_filter.h"

bool Chunk::HandleSubChunk(PrivateHyperFile* /*hf*/, std::int32_t /*id*/, std::int32_t /*version*/) {
    return false;
}

void Chunk::Write(PrivateHyperFile* /*hf*/) {}

bool Chunk::ReadChunk(PrivateHyperFile* hf) {
    std::uint8_t tag = 0;
    while (hf->GetError() == 0 && hf->ReadValueHeader(&tag) != 0) {
        if (tag == PrivateHyperFile::kTagChunkEnd) {
            return hf->ReadChunkEnd() != 0;
        }
        if (tag != PrivateHyperFile::kTagChunkStart) {
            return hf->Fail(TextureFault::stray_value, [&] {
                return "expected the start or end of a chunk, found tag " + std::to_string(tag);
            }) != 0;
        }
        if (!ReadSubChunk(hf)) {
            return false;
        }
        if (hf->GetPosition() >= hf->GetLength()) {
            // Deliberately without a code: the top level of every file ends like this, and a file that was
            // cut between two chunks keeps what it has delivered.
            return false;
        }
    }
    return false;
}

// Returns false only with the container's error set.
bool Chunk::ReadSubChunk(PrivateHyperFile* hf) {
    TextureObserver* const observer = TXLImageFilter::ObserverOf(hf);
    const std::int64_t offset_bytes = hf->GetItemOffset();
    std::int32_t id = 0;
    std::int32_t version = 0;
    if (hf->ReadChunkStart(&id, &version) == 0) {
        return false;
    }
    if (observer != nullptr) {
        observer->on_chunk_start(id, version, offset_bytes);
    }
    const bool handled = HandleSubChunk(hf, id, version);
    const bool ended = handled || hf->SkipToEndChunk() != 0;
    if (observer != nullptr && ended && hf->GetError() == 0) {
        observer->on_chunk_end(hf->GetPosition(), handled);
    }
    return hf->GetError() == 0;
}

void Chunk::WriteObject(PrivateHyperFile* hf, std::int32_t id) {
    hf->WriteChunkStart(id, 0);
    Write(hf);
    // Like every operation of the container, this does nothing after an error.
    hf->WriteChunkEnd();
}
