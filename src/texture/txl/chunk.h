#pragma once

#include <cstdint>

class PrivateHyperFile;

/// Base of everything that reads and writes the inside of one kind of chunk. Handlers find the filter, and
/// through it the picture and the texture's header, in the container's private data.
/// The order of the virtual operations is fixed, here and in the classes that follow.
class Chunk {
  public:
    /// A chunk has begun inside this one; its start is read. A handler reads it up to and past its end and
    /// returns true. False means that it was not handled: the chunk is then skipped.
    virtual bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version);

    /// Writes what stands between the start and the end of this chunk. Failures are the container's error.
    virtual void Write(PrivateHyperFile* hf);

    /// Reads the items of this chunk, whose start is read, up to and past its end, giving nested chunks to
    /// HandleSubChunk. Plain values do not stand between chunks: one sets -103. False with the container's
    /// error set, or without an error when the file ended: the top level of a file has no end tag.
    bool ReadChunk(PrivateHyperFile* hf);

    /// Writes a chunk `id` of version 0 with what Write writes. After an error there is no end tag.
    void WriteObject(PrivateHyperFile* hf, std::int32_t id);

    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

  protected:
    Chunk() = default;
    // Deliberately not virtual: the virtual operations are those above and no more. Nobody deletes a handler
    // through its base.
    ~Chunk() = default;

  private:
    bool ReadSubChunk(PrivateHyperFile* hf);
};
