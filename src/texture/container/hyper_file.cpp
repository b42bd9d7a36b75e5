#include "texture/container/hyper_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "limit/limits.h"
#include "texture/file/byte_order.h"
#include "texture/file/memory.h"

namespace {

constexpr std::array<unsigned char, 4> kMagic = {'A', 'V', 'X', 'R'};
constexpr std::uint32_t kCounterEnd = 50000;

/// Bytes that follow each tag below 27. Tags 17, 18 and 22 to 26 are only ever skipped: nothing here reads or
/// writes them.
constexpr std::array<std::int32_t, 27> kValueBytes = {
    0, 8,  0,  0,  0, 0, 0, 0, 0, 0, 0,  // 1 is a chunk start: identifier and version
    1, 1,  2,  2,  4, 4,                 // 11 Char to 16 ULong
    8, 8,                                // 17, 18
    4, 8,  1,                            // 19 Real, 20 LReal, 21 Bool
    8, 12, 24, 48, 96};                  // 22 to 26

constexpr std::uint8_t kBlockBit = 0x80;

std::string number(std::int64_t value) {
    return std::to_string(value);
}

}  // namespace

PrivateHyperFile::~PrivateHyperFile() {
    PrivateFile::Close();
}

// Until an item has been read, nothing in the file is the place of a failure.
void PrivateHyperFile::TellObserver(TextureFault fault, const limits::Limit* limit,
                                    std::string reason) const {
    diagnostic::Place at;
    if (item_offset_bytes_ > 0) {
        at.offset_bytes = item_offset_bytes_;
    }
    diagnostic::Diagnostic failure = diagnostic::make(fault, std::move(at), std::move(reason));
    failure.limit = limit;
    observer_->on_failure(failure);
}

// Deliberately kept although nothing reads the count, and deliberately restarted at 1: it is part of the
// container's record.
int PrivateHyperFile::Count() {
    counter_ = counter_ == kCounterEnd ? 1 : counter_ + 1;
    return 1;
}

// Takes over the byte file's error. A closed file has no error: its operations fail without a code.
int PrivateHyperFile::Transferred(int success) {
    if (success == 0 && PrivateFile::GetError() != 0) {
        // A full disk, for example.
        const int reason = errno;
        Fail(TextureFault::short_transfer, [&] {
            return mode_ == kWriting
                       ? "the bytes could not be written: " + std::generic_category().message(reason)
                       : std::string("the file ends inside this value");
        });
    }
    return success;
}

int PrivateHyperFile::Open(std::int32_t ident, const char* name, std::int32_t mode, std::int32_t /*unused*/,
                           int write) {
    mode_ = mode;
    length_ = 0;
    counter_ = 0;
    item_offset_bytes_ = 0;
    if (error_ != 0) {
        return 0;
    }
    if (PrivateFile::Open(name, write) == 0) {
        return Fail(TextureFault::cannot_open, [&] {
            return std::string(write == 0 ? "not a regular file that can be opened for reading"
                                          : "cannot be opened for writing");
        });
    }
    if (mode != kWriting) {
        return OpenForReading(ident);
    }
    if (PrivateFile::WriteBytes(kMagic.data(), kMagic.size()) == 0 || PrivateFile::WriteLong(ident) == 0) {
        PrivateFile::Close();
        return Fail(TextureFault::header_not_written,
                    [] { return std::string("the header was not written"); });
    }
    return 1;
}

int PrivateHyperFile::OpenForReading(std::int32_t ident) {
    length_ = PrivateFile::GetLength();
    if (length_ == 0) {
        PrivateFile::Close();
        return Fail(TextureFault::empty_file, [] { return std::string("the file is empty"); });
    }
    if (length_ > limits::kTextureFile.value) {
        PrivateFile::Close();
        return Fail(TextureFault::over_limit, limits::kTextureFile, [] {
            return std::string("the file has 2^31 - 1 bytes or more; lengths in this format are 32-bit");
        });
    }
    std::array<unsigned char, 4> magic{};
    std::int32_t found_ident = 0;
    if (PrivateFile::ReadBytes(magic.data(), magic.size()) == 0 || magic != kMagic ||
        PrivateFile::ReadLong(&found_ident) == 0 || found_ident != ident) {
        PrivateFile::Close();
        return Fail(TextureFault::not_a_texture,
                    [] { return std::string("the file does not begin with the expected magic and ident"); });
    }
    return 1;
}

int PrivateHyperFile::Close() {
    if (mode_ == kWriting && PrivateFile::GetError() == 0 && error_ == 0) {
        Transferred(PrivateFile::Flush());
    }
    return PrivateFile::Close();
}

int PrivateHyperFile::CheckIt(std::uint8_t tag) {
    std::uint8_t found = 0;
    if (ReadValueHeader(&found) == 0) {
        return 0;
    }
    if (found != tag) {
        return Fail(TextureFault::wrong_tag, [&] {
            return "expected a value with tag " + number(tag) + ", found tag " + number(found);
        });
    }
    return 1;
}

int PrivateHyperFile::ReadValueHeader(std::uint8_t* tag) {
    if (error_ != 0) {
        return 0;
    }
    if (observer_ != nullptr) {
        item_offset_bytes_ = GetPosition();
    }
    return Transferred(PrivateFile::ReadUChar(tag));
}

template <typename Value>
int PrivateHyperFile::ReadTyped(std::uint8_t tag, Value* value, int (PrivateFile::*read)(Value*)) {
    return CheckIt(tag) != 0 && Transferred((this->*read)(value)) != 0 ? Count() : 0;
}

int PrivateHyperFile::ReadChar(char* value) {
    return ReadTyped(kTagChar, value, &PrivateFile::ReadChar);
}

int PrivateHyperFile::ReadUChar(unsigned char* value) {
    return ReadTyped(kTagUChar, value, &PrivateFile::ReadUChar);
}

int PrivateHyperFile::ReadWord(std::int16_t* value) {
    return ReadTyped(kTagWord, value, &PrivateFile::ReadWord);
}

int PrivateHyperFile::ReadUWord(std::uint16_t* value) {
    return ReadTyped(kTagUWord, value, &PrivateFile::ReadUWord);
}

int PrivateHyperFile::ReadLong(std::int32_t* value) {
    return ReadTyped(kTagLong, value, &PrivateFile::ReadLong);
}

int PrivateHyperFile::ReadULong(std::uint32_t* value) {
    return ReadTyped(kTagULong, value, &PrivateFile::ReadULong);
}

int PrivateHyperFile::ReadReal(float* value) {
    return ReadTyped(kTagReal, value, &PrivateFile::ReadReal);
}

int PrivateHyperFile::ReadBool(int* value) {
    unsigned char stored = 0;
    if (ReadTyped(kTagBool, &stored, &PrivateFile::ReadUChar) == 0) {
        return 0;
    }
    *value = stored != 0 ? 1 : 0;
    return 1;
}

int PrivateHyperFile::ReadByteCount(std::int32_t* count) {
    std::int32_t claimed = 0;
    if (Transferred(PrivateFile::ReadLong(&claimed)) == 0) {
        return 0;
    }
    if (claimed < 0) {
        return Fail(TextureFault::negative_size, [&] { return "a block of " + number(claimed) + " bytes"; });
    }
    const std::int32_t left = length_ - GetPosition();
    if (claimed > left) {
        return Fail(TextureFault::block_too_long, [&] {
            return "a block of " + number(claimed) + " bytes where the file has " + number(left) + " left";
        });
    }
    *count = claimed;
    return 1;
}

int PrivateHyperFile::ReadMemory(void** data, std::int32_t* count) {
    *data = nullptr;
    *count = 0;
    std::int32_t byte_count = 0;
    if (CheckIt(kTagMemory) == 0 || ReadByteCount(&byte_count) == 0) {
        return 0;
    }
    if (byte_count == 0) {
        return 1;  // Deliberately not counted, unlike every other value: the count belongs to the record.
    }
    MemBlock block(static_cast<unsigned char*>(MemAlloc(std::int64_t{byte_count} + 1)));
    if (block == nullptr) {
        return Fail(TextureFault::out_of_memory,
                    [&] { return "a block of " + number(byte_count) + " bytes"; });
    }
    if (Transferred(PrivateFile::ReadBytes(block.get(), byte_count)) == 0) {
        return 0;
    }
    block.get()[byte_count] = 0;
    *data = block.release();
    *count = byte_count;
    return Count();
}

int PrivateHyperFile::ReadMemoryInPlace(const unsigned char** data, std::int32_t* count) {
    *data = nullptr;
    *count = 0;
    std::int32_t byte_count = 0;
    if (CheckIt(kTagMemory) == 0 || ReadByteCount(&byte_count) == 0) {
        return 0;
    }
    if (byte_count == 0) {
        return 1;  // Deliberately not counted, as in ReadMemory.
    }
    const unsigned char* bytes = nullptr;
    if (byte_count <= kBufferBytes) {
        bytes = PrivateFile::ReadInPlace(byte_count);
    } else if (!HasBlock(byte_count)) {
        return Fail(TextureFault::out_of_memory,
                    [&] { return "a block of " + number(byte_count) + " bytes"; });
    } else if (PrivateFile::ReadBytes(block_.get(), byte_count) != 0) {
        bytes = block_.get();
    }
    if (Transferred(bytes != nullptr ? 1 : 0) == 0) {
        return 0;
    }
    *data = bytes;
    *count = byte_count;
    return Count();
}

bool PrivateHyperFile::HasBlock(std::int32_t byte_count) {
    if (byte_count > block_bytes_) {
        block_bytes_ = 0;
        block_.reset(static_cast<unsigned char*>(MemAlloc(byte_count)));
        block_bytes_ = block_ == nullptr ? 0 : byte_count;
    }
    return block_ != nullptr;
}

int PrivateHyperFile::ReadString(PrivateString* string) {
    std::int32_t byte_count = 0;
    if (CheckIt(kTagString) == 0 || ReadByteCount(&byte_count) == 0) {
        return 0;
    }
    if (byte_count == 0) {
        // Deliberately does not release the old buffer: whoever shares it relies on it. Nothing leaks,
        // because every string that is read here is new.
        string->Abandon();
        return Count();
    }
    const std::int32_t length = byte_count / 2;
    const MemBlock units(static_cast<unsigned char*>(MemAlloc(std::int64_t{2} * length + 2)));
    if (units == nullptr) {
        return Fail(TextureFault::out_of_memory,
                    [&] { return "a string of " + number(byte_count) + " bytes"; });
    }
    if (Transferred(PrivateFile::ReadBytes(units.get(), byte_count)) == 0) {
        return 0;
    }
    WMotor(units.get(), length);
    if (PrivateString::SetUcBlock(*string, reinterpret_cast<const std::uint16_t*>(units.get()), length) ==
        0) {
        return Fail(TextureFault::out_of_memory,
                    [&] { return "a string of " + number(byte_count) + " bytes"; });
    }
    return Count();
}

int PrivateHyperFile::ReadChunkStart(std::int32_t* id, std::int32_t* version) {
    const bool read = error_ == 0 && Transferred(PrivateFile::ReadLong(id)) != 0 &&
                      Transferred(PrivateFile::ReadLong(version)) != 0;
    return read ? Count() : 0;
}

int PrivateHyperFile::ReadChunkEnd() {
    if (error_ != 0) {
        return 0;
    }
    if (mode_ == kWriting) {
        return Fail(TextureFault::wrong_direction,
                    [] { return std::string("the file is open for writing"); });
    }
    return Count();
}

int PrivateHyperFile::SkipValue(std::uint8_t tag) {
    if (error_ != 0) {
        return 0;
    }
    std::int32_t byte_count = tag < kValueBytes.size() ? kValueBytes[tag] : 0;
    if ((tag & kBlockBit) != 0 && Transferred(PrivateFile::ReadLong(&byte_count)) == 0) {
        return 0;
    }
    return ReadDummy(byte_count) != 0 ? Count() : 0;
}

int PrivateHyperFile::SkipToEndChunk() {
    if (error_ != 0) {
        return 0;
    }
    std::int32_t depth = 0;  // cannot overflow: a file below 2^31 bytes holds fewer start tags
    while (GetPosition() < length_) {
        std::uint8_t tag = 0;
        bool skipped = ReadValueHeader(&tag) != 0;
        if (skipped && tag == kTagChunkEnd) {
            if (--depth < 0) {
                return 1;
            }
        } else if (skipped) {
            depth += tag == kTagChunkStart ? 1 : 0;
            skipped = SkipValue(tag) != 0;
        }
        if (!skipped) {
            return Fail(TextureFault::truncated,
                        [] { return std::string("the file ends inside a chunk that is being skipped"); });
        }
    }
    return 0;  // Deliberately without a code: a file that ends between two items is kept as far as it goes.
}

int PrivateHyperFile::ReadDummy(std::int32_t count) {
    // In pieces rather than byte by byte; either way a short read ends at the end of the file.
    std::array<unsigned char, 4096> ignored;
    while (count > 0) {
        const std::int32_t piece = std::min(count, static_cast<std::int32_t>(ignored.size()));
        if (error_ != 0 || Transferred(PrivateFile::ReadBytes(ignored.data(), piece)) == 0) {
            return 0;
        }
        count -= piece;
    }
    return error_ == 0 ? 1 : 0;
}
