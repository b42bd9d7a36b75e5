#pragma once

#include <cstdint>

class PrivateHyperFile;

/// Base of the handlers, each of which reads and writes the content of one kind of chunk. Handlers find the
/// filter, and through it the picture and the texture's header, in the container's private data.
/// The order of the virtual operations is fixed, here and in derived classes.
class Chunk {
  public:
    /// Handles a chunk inside this one, whose start has been read. A handler reads to just past the chunk's
    /// end and returns true. False means that the chunk was not handled; it is then skipped.
    virtual bool HandleSubChunk(PrivateHyperFile* hf, std::int32_t id, std::int32_t version);

    /// Writes the content of this chunk, without its start and end. Failures set the container's error.
    virtual void Write(PrivateHyperFile* hf);

    /// Reads this chunk, whose start has been read, to just past its end, and passes nested chunks to
    /// HandleSubChunk. A plain value between chunks sets -103. Returns false with the container's error set,
    /// or without an error when the file has ended: the top level of a file has no end tag.
    bool ReadChunk(PrivateHyperFile* hf);

    /// Writes a chunk `id` of version 0 around what Write writes. After an error, no end tag is written.
    void WriteObject(PrivateHyperFile* hf, std::int32_t id);

    Chunk(const Chunk&) = delete;
    Chunk& operator=(const Chunk&) = delete;

  protected:
    Chunk() = default;
    // Deliberately not virtual: the table of virtual operations is fixed, and no handler is deleted through
    // its base.
    ~Chunk() = default;

  private:
    bool ReadSubChunk(PrivateHyperFile* hf);
};
