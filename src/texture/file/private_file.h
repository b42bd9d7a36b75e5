#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

/// A byte file over the C library's streams. Its own buffer makes short transfers cheap and lets blocks be
/// read in place; an object takes more than 64 KiB. Every operation that can fail returns 1 for success and 0
/// for failure. The error flag is sticky: the first short transfer sets it to 1, and every later transfer
/// fails without touching the file until the object is opened again.
///
/// Typed values of more than one byte are stored big-endian on every host.
class PrivateFile {
  public:
    PrivateFile() = default;
    ~PrivateFile();
    PrivateFile(const PrivateFile&) = delete;
    PrivateFile& operator=(const PrivateFile&) = delete;

    /// Closes any open file, then opens `path`: for reading when `write` is 0, otherwise for writing, which
    /// empties the file. Clears the error flag; a failed open sets it to 1. Only regular files can be opened
    /// for reading: folders, pipes and devices are refused, and no open ever blocks.
    int Open(const char* path, int write);

    /// Transfers exactly `count` bytes. A count of 0 succeeds without touching the file; a negative count and
    /// a short transfer set the flag and fail. Both operations fail without touching the file while it is
    /// closed or the flag is set.
    int ReadBytes(void* buffer, std::int32_t count);
    int WriteBytes(const void* buffer, std::int32_t count);

    /// The most bytes that ReadInPlace can return at once.
    static constexpr std::int32_t kBufferBytes = 1 << 16;

    /// Reads `count` bytes without copying them and returns where they are; valid until the next operation.
    /// Null, with the flag set, when ReadBytes would fail and for more than kBufferBytes.
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

    /// The file's size in bytes; keeps the position. 0 when closed or in error. Sizes and positions above
    /// 2^31 - 1 are returned as 2^31 - 1, because they are 32-bit throughout this format.
    std::int32_t GetLength();

    /// The position in bytes from the start, capped in the same way; 0 when closed or in error.
    [[nodiscard]] std::int32_t GetPosition() const;

    /// The error flag; 0 when closed.
    [[nodiscard]] std::int32_t GetError() const { return handle_ == nullptr ? 0 : error_; }

    /// Writes buffered bytes to the file. A failure sets the error flag.
    int Flush();

    /// Closes the file and keeps the flag. Returns 0 if no file was open.
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
    std::int32_t begin_ = 0;         // of the bytes that were read ahead, in the buffer; 0 when writing
    std::int32_t end_ = 0;           // of the bytes in the buffer
    std::int64_t passed_bytes_ = 0;  // transferred from or to the stream
    std::array<unsigned char, kBufferBytes> buffer_;
};
