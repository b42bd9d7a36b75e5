#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

/// A byte file over the C library's streams, with a buffer of its own, so that short transfers cost little
/// and blocks can be looked at where they are; an object takes more than 64 KiB. Every operation that can
/// fail returns 1 for success and 0 for failure. The error flag is sticky: after the first short transfer it
/// is 1 and every further transfer fails without touching the file, until the object is closed and opened
/// again.
///
/// Typed values of more than one byte are stored big-endian, whatever the host.
class PrivateFile {
  public:
    PrivateFile() = default;
    ~PrivateFile();
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;

    /// Opens `path` for reading when `write` is 0, else for writing, in which case what was in the file is
    /// lost. Clears the error flag and closes what was open before; a failed open sets the flag to 1. Only
    /// regular files open for reading: a folder, a pipe or a device is refused, and nothing ever waits.
    int Open(const char* path, int write);

    /// Transfers `count` bytes as one item. 0 bytes succeed without touching the file; a negative count fails
    /// and sets the flag, as a short transfer does. Both fail without touching the file while it is closed or
    /// the flag is set.
    int ReadBytes(void* buffer, std::int32_t count);
    int WriteBytes(const void* buffer, std::int32_t count);

    /// The most bytes that ReadInPlace gives at once.
    static constexpr std::int32_t kBufferBytes = 1 << 16;

    /// Reads `count` bytes without copying them: where they are, until the next operation. Null, with the
    /// flag set, where ReadBytes fails, and for more than kBufferBytes.
    const unsigned char* ReadInPlace(std::int32_t count);

    int ReadChar(char* value);
    int ReadUChar(unsigned char* value);
    int ReadWord(std::int16_t* value);
    int ReadUWord(std::uint16_t* value);
    int ReadLong(std::int32_t* value);
    int ReadULong(std::uint32_t* value);
    /// IEEE-754 single.
    int ReadReal(float* value);
    /// IEEE-754 double.
    int ReadLReal(double* value);

    int WriteChar(char value);
    int WriteUChar(unsigned char value);
    int WriteWord(std::int16_t value);
    int WriteUWord(std::uint16_t value);
    int WriteLong(std::int32_t value);
    int WriteULong(std::uint32_t value);
    int WriteReal(float value);
    int WriteLReal(double value);

    /// The file's size in bytes, the position being kept; 0 when closed or in error. Sizes and positions past
    /// 2^31 - 1 are given as 2^31 - 1: they are 32-bit values throughout this format.
    std::int32_t GetLength();

    /// The position in bytes from the start, with the same upper end; 0 when closed or in error.
    [[nodiscard]] std::int32_t GetPosition() const;

    /// The error flag; 0 when closed.
    [[nodiscard]] std::int32_t GetError() const { return handle_ == nullptr ? 0 : error_; }

    /// Hands buffered bytes to the system. A failure sets the error flag.
    int Flush();

    /// Closes the file, keeping the flag. 0 if there was nothing to close.
    int Close();

  private:
    template <typename Value>
    int ReadValue(Value* value);
    template <typename Value>
    int WriteValue(Value value);

    int Fail();
    bool ReadStream(unsigned char* target, std::int64_t count);
    bool WriteStream(const unsigned char* source, std::int64_t count);
    bool Fill(std::int32_t count);
    bool Empty();

    std::FILE* handle_ = nullptr;
    std::int32_t error_ = 0;
    bool writing_ = false;
    std::int32_t begin_ = 0;         // of the bytes in the buffer that were read ahead; 0 when writing
    std::int32_t end_ = 0;           // of the bytes in the buffer
    std::int64_t passed_bytes_ = 0;  // that the stream has given or taken
    std::array<unsigned char, kBufferBytes> buffer_;
};
