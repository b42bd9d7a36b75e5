#include "texture/file/private_file.h"

#include <stdio.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "system/open_regular_file.h"
#include "texture/file/byte_order.h"
#include "texture/file/memory.h"

namespace {

std::int32_t as_32_bits(std::int64_t bytes) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(bytes, 0, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

PrivateFile::~PrivateFile() {
    Close();
}

int PrivateFile::Open(const char* path, int write) {
    Close();
    begin_ = 0;
    end_ = 0;
    passed_bytes_ = 0;
    writing_ = write != 0;
    if (path != nullptr) {
        handle_ = writing_ ? os::open_file_to_write(path) : os::open_regular_file(path);
    }
    if (handle_ != nullptr) {
        // The stream's own buffer would only add a second copy.
        std::setvbuf(handle_, nullptr, _IONBF, 0);
    }
    error_ = handle_ == nullptr ? 1 : 0;
    return handle_ == nullptr ? 0 : 1;
}

int PrivateFile::Fail() {
    error_ = 1;
    return 0;
}

// Reads `count` bytes from the stream itself; fewer are an error.
bool PrivateFile::ReadStream(unsigned char* target, std::int64_t count) {
    const auto wanted = static_cast<std::size_t>(count);
    return std::fread(target, 1, wanted, handle_) == wanted;
}

bool PrivateFile::WriteStream(const unsigned char* source, std::int64_t count) {
    const auto wanted = static_cast<std::size_t>(count);
    return std::fwrite(source, 1, wanted, handle_) == wanted;
}

// Moves the unread bytes to the front of the buffer and reads more until it holds `count` bytes. False at the
// end of the file and after a failure.
bool PrivateFile::Fill(std::int32_t count) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, static_cast<std::size_t>(end_ - begin_));
    end_ -= begin_;
    begin_ = 0;
    while (end_ < count) {
        const std::size_t read =
            std::fread(buffer_.data() + end_, 1, static_cast<std::size_t>(kBufferBytes - end_), handle_);
        if (read == 0) {
            return false;
        }
        end_ += static_cast<std::int32_t>(read);
        passed_bytes_ += static_cast<std::int64_t>(read);
    }
    return true;
}

int PrivateFile::ReadBytes(void* buffer, std::int32_t count) {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    if (count == 0) {
        return 1;
    }
    if (count < 0 || writing_) {
        return Fail();
    }
    auto* target = static_cast<unsigned char*>(buffer);
    if (count > kBufferBytes) {
        const std::int32_t there = end_ - begin_;
        MemCopy(buffer_.data() + begin_, target, there);
        begin_ = end_;
        if (!ReadStream(target + there, count - there)) {
            return Fail();
        }
        passed_bytes_ += count - there;
        return 1;
    }
    if (end_ - begin_ < count && !Fill(count)) {
        return Fail();
    }
    MemCopy(buffer_.data() + begin_, target, count);
    begin_ += count;
    return 1;
}

const unsigned char* PrivateFile::ReadInPlace(std::int32_t count) {
    if (handle_ == nullptr || error_ != 0) {
        return nullptr;
    }
    if (count < 0 || count > kBufferBytes || writing_ || (end_ - begin_ < count && !Fill(count))) {
        Fail();
        return nullptr;
    }
    begin_ += count;
    return buffer_.data() + begin_ - count;
}

int PrivateFile::WriteBytes(const void* buffer, std::int32_t count) {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    if (count == 0) {
        return 1;
    }
    if (count < 0 || !writing_) {
        return Fail();
    }
    if (count > kBufferBytes - end_ && !Empty()) {
        return Fail();
    }
    const auto* source = static_cast<const unsigned char*>(buffer);
    if (count > kBufferBytes) {
        passed_bytes_ += count;
        return WriteStream(source, count) ? 1 : Fail();
    }
    MemCopy(source, buffer_.data() + end_, count);
    end_ += count;
    return 1;
}

// Writes the buffered bytes to the stream.
bool PrivateFile::Empty() {
    const std::int32_t there = end_;
    end_ = 0;
    passed_bytes_ += there;
    return WriteStream(buffer_.data(), there);
}

// Values are swapped as bytes: a float that is swapped as a float may lose its exact bit pattern.
template <typename Value>
int PrivateFile::ReadValue(Value* value) {
    unsigned char bytes[sizeof(Value)];
    if (ReadBytes(bytes, sizeof(Value)) == 0) {
        return 0;
    }
    convert_big_endian<sizeof(Value)>(bytes, 1);
    std::memcpy(value, bytes, sizeof(Value));
    return 1;
}

template <typename Value>
int PrivateFile::WriteValue(Value value) {
    unsigned char bytes[sizeof(Value)];
    std::memcpy(bytes, &value, sizeof(Value));
    convert_big_endian<sizeof(Value)>(bytes, 1);
    return WriteBytes(bytes, sizeof(Value));
}

int PrivateFile::ReadChar(char* value) {
    return ReadValue(value);
}

int PrivateFile::ReadUChar(unsigned char* value) {
    return ReadValue(value);
}

int PrivateFile::ReadWord(std::int16_t* value) {
    return ReadValue(value);
}

int PrivateFile::ReadUWord(std::uint16_t* value) {
    return ReadValue(value);
}

int PrivateFile::ReadLong(std::int32_t* value) {
    return ReadValue(value);
}

int PrivateFile::ReadULong(std::uint32_t* value) {
    return ReadValue(value);
}

int PrivateFile::ReadReal(float* value) {
    return ReadValue(value);
}

int PrivateFile::ReadLReal(double* value) {
    return ReadValue(value);
}

int PrivateFile::WriteChar(char value) {
    return WriteValue(value);
}

int PrivateFile::WriteUChar(unsigned char value) {
    return WriteValue(value);
}

int PrivateFile::WriteWord(std::int16_t value) {
    return WriteValue(value);
}

int PrivateFile::WriteUWord(std::uint16_t value) {
    return WriteValue(value);
}

int PrivateFile::WriteLong(std::int32_t value) {
    return WriteValue(value);
}

int PrivateFile::WriteULong(std::uint32_t value) {
    return WriteValue(value);
}

int PrivateFile::WriteReal(float value) {
    return WriteValue(value);
}

int PrivateFile::WriteLReal(double value) {
    return WriteValue(value);
}

std::int32_t PrivateFile::GetLength() {
    if (handle_ == nullptr || error_ != 0 || (writing_ && Flush() == 0)) {
        return 0;
    }
    const std::int64_t position = ::ftello(handle_);
    if (position < 0 || ::fseeko(handle_, 0, SEEK_END) != 0) {
        return 0;
    }
    const std::int64_t length = ::ftello(handle_);
    if (::fseeko(handle_, position, SEEK_SET) != 0) {
        Fail();  // The position is lost, so the next read would not return what the caller expects.
        return 0;
    }
    return as_32_bits(length);
}

std::int32_t PrivateFile::GetPosition() const {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    // The stream is ahead of the position when reading and behind it when writing.
    return as_32_bits(writing_ ? passed_bytes_ + end_ : passed_bytes_ - (end_ - begin_));
}

int PrivateFile::Flush() {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    if ((writing_ && !Empty()) || std::fflush(handle_) != 0) {
        return Fail();
    }
    return 1;
}

int PrivateFile::Close() {
    if (handle_ == nullptr) {
        return 0;
    }
    const bool flushed = error_ != 0 || !writing_ || Empty();
    if (std::fclose(handle_) != 0 || !flushed) {
        error_ = 1;
    }
    handle_ = nullptr;
    return 1;
}
