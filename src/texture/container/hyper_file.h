#pragma once

#include <cstdint>
#include <string>

#include "texture/container/private_string.h"
#include "texture/container/texture_fault.h"
#include "texture/file/memory.h"
#include "texture/file/private_file.h"

namespace limits {
struct Limit;
}

/// The container of texture files: an 8-byte header, then big-endian values, each preceded by a one-byte type
/// tag, and nested chunks between a start tag and an end tag. docs/texture-format.md describes every byte.
///
/// Operations return 1 for success and 0 for failure. The error code is sticky: the first failure sets it,
/// and every later operation fails at once without touching the file. A caller can therefore issue a sequence
/// of reads and check GetError once at the end.
class PrivateHyperFile : public PrivateFile {
  public:
    static constexpr std::int32_t kReading = 1;
    static constexpr std::int32_t kWriting = 2;

    static constexpr std::int32_t kErrorFile = 1;           // a short read or write
    static constexpr std::int32_t kErrorDirection = -4;     // reading a chunk of a file open for writing
    static constexpr std::int32_t kErrorRefused = -7;       // no memory, or unacceptable data
    static constexpr std::int32_t kErrorFormat = -100;      // wrong magic, ident or tag
    static constexpr std::int32_t kErrorStrayValue = -103;  // a value where only chunks are allowed
    static constexpr std::int32_t kErrorTruncated = -104;   // skipping failed

    static constexpr std::uint8_t kTagChunkStart = 1;
    static constexpr std::uint8_t kTagChunkEnd = 2;
    static constexpr std::uint8_t kTagChar = 11;
    static constexpr std::uint8_t kTagUChar = 12;
    static constexpr std::uint8_t kTagWord = 13;
    static constexpr std::uint8_t kTagUWord = 14;
    static constexpr std::uint8_t kTagLong = 15;
    static constexpr std::uint8_t kTagULong = 16;
    static constexpr std::uint8_t kTagReal = 19;
    static constexpr std::uint8_t kTagLReal = 20;
    static constexpr std::uint8_t kTagBool = 21;
    static constexpr std::uint8_t kTagMemory = 128;
    static constexpr std::uint8_t kTagString = 130;

    PrivateHyperFile() = default;
    ~PrivateHyperFile();
    PrivateHyperFile(const PrivateHyperFile&) = delete;
    PrivateHyperFile& operator=(const PrivateHyperFile&) = delete;

    /// Opens `name`, for writing when `write` is not 0. `mode` 2 writes the header with `ident`; any other
    /// mode checks that the file begins with the magic and `ident`. The fourth argument is not used. A failed
    /// open sets error 1. A wrong or unwritten header sets -100 and closes the file; an empty file fails
    /// without a code. Files of 2^31 - 1 bytes or more are refused with -7, because lengths and positions are
    /// 32-bit in this format. Deliberately clears no earlier error: an object that failed stays failed until
    /// its owner calls SetError(0).
    int Open(std::int32_t ident, const char* name, std::int32_t mode, std::int32_t unused, int write);

    /// Closes the file. Sets error 1 when buffered bytes could not be written. Returns 0 if no file was open.
    int Close();

    /// The file's length in bytes when it was opened for reading; 0 when writing.
    [[nodiscard]] std::int32_t GetLength() const { return length_; }
    [[nodiscard]] std::int32_t GetError() const { return error_; }
    void SetError(std::int32_t error) { error_ = error; }

    /// An opaque pointer of the caller's, not owned.
    [[nodiscard]] void* GetPrivateData() const { return private_data_; }
    void SetPrivateData(void* data) { private_data_ = data; }

    int WriteChar(char value);
    int WriteUChar(unsigned char value);
    int WriteWord(std::int16_t value);
    int WriteUWord(std::uint16_t value);
    int WriteLong(std::int32_t value);
    int WriteULong(std::uint32_t value);
    int WriteReal(float value);
    int WriteLReal(double value);
    /// Stores 1 for an argument above 0, else 0.
    int WriteBool(int value);
    int WriteMemory(const void* data, std::int32_t count);
    int WriteString(const PrivateString& string);

    // Each of these reads a tag and then the value. A tag of another type sets -100, and nothing more is
    // read. On failure the output keeps its value.
    int ReadChar(char* value);
    int ReadUChar(unsigned char* value);
    int ReadWord(std::int16_t* value);
    int ReadUWord(std::uint16_t* value);
    int ReadLong(std::int32_t* value);
    int ReadULong(std::uint32_t* value);
    int ReadReal(float* value);
    /// Gives 1 for any byte other than 0.
    int ReadBool(int* value);
    /// Deleted: the format has doubles, but no file contains one that is read.
    int ReadLReal(double* value) = delete;

    /// Reads a block of bytes into new memory, which the caller releases with MemFree; null and 0 for an
    /// empty block and on failure. An uncounted zero byte follows the block, because PackBitsDecode may read
    /// one byte past its input. A negative count sets -7 and one beyond the end of the file sets 1, both
    /// before anything is allocated.
    int ReadMemory(void** data, std::int32_t* count);

    /// Like ReadMemory, but without a copy: the bytes belong to the container and stay valid until its next
    /// operation. No zero byte follows them.
    int ReadMemoryInPlace(const unsigned char** data, std::int32_t* count);

    /// Reads a string and drops an odd last byte. Refuses the same counts as ReadMemory.
    int ReadString(PrivateString* string);

    /// Reads one byte; sets -100 if it is not `tag`.
    int CheckIt(std::uint8_t tag);
    /// Reads one tag and accepts any value.
    int ReadValueHeader(std::uint8_t* tag);

    int WriteChunkStart(std::int32_t id, std::int32_t version);
    int WriteChunkEnd();
    /// Reads the identifier and version that follow a start tag, which the caller has read.
    int ReadChunkStart(std::int32_t* id, std::int32_t* version);
    /// Counts an end tag, which the caller has read; reads nothing. Sets -4 when the file is open for
    /// writing.
    int ReadChunkEnd();

    /// Skips the bytes that belong to a tag, which the caller has read. Skipping a chunk start enters the
    /// chunk. An unknown tag has no bytes; of a block with a negative length only the length is skipped.
    int SkipValue(std::uint8_t tag);
    /// Skips to just past the end of the open chunk, including nested chunks. An item that cannot be skipped
    /// sets -104; reaching the end of the file between two items fails without a code.
    int SkipToEndChunk();
    /// Skips `count` bytes; a count below 1 skips nothing.
    int ReadDummy(std::int32_t count);

    /// Sets an observer (not owned) that is told of every failure; null for none.
    void SetObserver(FailureObserver* observer) { observer_ = observer; }

    /// Offset in bytes of the tag of the last item read. Maintained only while an observer is set.
    [[nodiscard]] std::int64_t GetItemOffset() const { return item_offset_bytes_; }

    /// The one place where an error begins: sets the fault's code and tells the observer. `reason` returns
    /// the text and is called only when there is an observer. Returns 0.
    template <typename Reason>
    int Fail(TextureFault fault, const Reason& reason) {
        error_ = container_code(fault);
        if (observer_ != nullptr) {
            TellObserver(fault, nullptr, reason());
        }
        return 0;
    }

    /// Fails because the file exceeds `limit`.
    template <typename Reason>
    int Fail(TextureFault fault, const limits::Limit& limit, const Reason& reason) {
        error_ = container_code(fault);
        if (observer_ != nullptr) {
            TellObserver(fault, &limit, reason());
        }
        return 0;
    }

  protected:
    std::int32_t error_ = 0;
    std::int32_t mode_ = kReading;
    std::int32_t length_ = 0;
    std::uint32_t counter_ = 0;  // values and chunk marks handled; runs from 1 to 50000 and restarts at 1
    void* private_data_ = nullptr;

  private:
    void TellObserver(TextureFault fault, const limits::Limit* limit, std::string reason) const;
    int Count();
    int Transferred(int success);
    int OpenForReading(std::int32_t ident);
    /// Reads the count of a block; refuses negative counts and counts beyond the end of the file.
    int ReadByteCount(std::int32_t* count);
    /// Makes room in block_ for that many bytes; false when memory is short.
    bool HasBlock(std::int32_t byte_count);
    template <typename Value>
    int ReadTyped(std::uint8_t tag, Value* value, int (PrivateFile::*read)(Value*));
    template <typename Value>
    int WriteTyped(std::uint8_t tag, Value value, int (PrivateFile::*write)(Value));
    int WriteBlock(std::uint8_t tag, const void* data, std::int32_t count);

    FailureObserver* observer_ = nullptr;
    std::int64_t item_offset_bytes_ = 0;
    MemBlock block_;  // blocks of ReadMemoryInPlace that do not fit the file's own buffer
    std::int32_t block_bytes_ = 0;
};
