#include "texture/private_file.h"

#include <stdio.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "texture/byte_order.h"
#include "texture/open_regular_file.h"

namespace {

template <std::size_t Size>
void convert_order(void* value) {
    if constexpr (Size == 8) {
        DMotor(value);
    } else if constexpr (Size == 4) {
        LMotor(value, 1);
    } else if constexpr (Size == 2) {
        WMotor(value, 1);
    }
}

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
    if (path != nullptr) {
        handle_ = write == 0 ? open_regular_file(path) : open_file_to_write(path);
    }
    error_ = handle_ == nullptr ? 1 : 0;
    return handle_ == nullptr ? 0 : 1;
}

int PrivateFile::ReadBytes(void* buffer, std::int32_t count) {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    if (count != 0 && (count < 0 || std::fread(buffer, static_cast<std::size_t>(count), 1, handle_) != 1)) {
        error_ = 1;
        return 0;
    }
    return 1;
}

int PrivateFile::WriteBytes(const void* buffer, std::int32_t count) {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    if (count != 0 && (count < 0 || std::fwrite(buffer, static_cast<std::size_t>(count), 1, handle_) != 1)) {
        error_ = 1;
        return 0;
    }
    return 1;
}

// Values cross as bytes: a float that is swapped while it is a float may lose its exact pattern.
template <typename Value>
int PrivateFile::ReadValue(Value* value) {
    unsigned char bytes[sizeof(Value)];
    if (ReadBytes(bytes, sizeof(Value)) == 0) {
        return 0;
    }
    convert_order<sizeof(Value)>(bytes);
    std::memcpy(value, bytes, sizeof(Value));
    return 1;
}

template <typename Value>
int PrivateFile::WriteValue(Value value) {
    unsigned char bytes[sizeof(Value)];
    std::memcpy(bytes, &value, sizeof(Value));
    convert_order<sizeof(Value)>(bytes);
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
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    const std::int64_t position = ::ftello(handle_);
    if (position < 0 || ::fseeko(handle_, 0, SEEK_END) != 0) {
        return 0;
    }
    const std::int64_t length = ::ftello(handle_);
    if (::fseeko(handle_, position, SEEK_SET) != 0) {
        error_ = 1;  // The position is lost: what would be read next is no longer what the caller expects.
        return 0;
    }
    return as_32_bits(length);
}

std::int32_t PrivateFile::GetPosition() const {
    return handle_ == nullptr || error_ != 0 ? 0 : as_32_bits(::ftello(handle_));
}

int PrivateFile::Flush() {
    if (handle_ == nullptr || error_ != 0) {
        return 0;
    }
    error_ = std::fflush(handle_) == 0 ? 0 : 1;
    return error_ == 0 ? 1 : 0;
}

int PrivateFile::Close() {
    if (handle_ == nullptr) {
        return 0;
    }
    if (std::fclose(handle_) != 0) {
        error_ = 1;
    }
    handle_ = nullptr;
    return 1;
}
