// The operations of the container that write.

#include <limits>
#include <string>

#include "texture/container/hyper_file.h"
#include "texture/file/byte_order.h"
#include "texture/file/memory.h"

template <typename Value>
int PrivateHyperFile::WriteTyped(std::uint8_t tag, Value value, int (PrivateFile::*write)(Value)) {
    if (error_ != 0 || Transferred(PrivateFile::WriteUChar(tag)) == 0) {
        return 0;
    }
    return Transferred((this->*write)(value)) != 0 ? Count() : 0;
}

int PrivateHyperFile::WriteChar(char value) {
    return WriteTyped(kTagChar, value, &PrivateFile::WriteChar);
}

int PrivateHyperFile::WriteUChar(unsigned char value) {
    return WriteTyped(kTagUChar, value, &PrivateFile::WriteUChar);
}

int PrivateHyperFile::WriteWord(std::int16_t value) {
    return WriteTyped(kTagWord, value, &PrivateFile::WriteWord);
}

int PrivateHyperFile::WriteUWord(std::uint16_t value) {
    return WriteTyped(kTagUWord, value, &PrivateFile::WriteUWord);
}

int PrivateHyperFile::WriteLong(std::int32_t value) {
    return WriteTyped(kTagLong, value, &PrivateFile::WriteLong);
}

int PrivateHyperFile::WriteULong(std::uint32_t value) {
    return WriteTyped(kTagULong, value, &PrivateFile::WriteULong);
}

int PrivateHyperFile::WriteReal(float value) {
    return WriteTyped(kTagReal, value, &PrivateFile::WriteReal);
}

int PrivateHyperFile::WriteLReal(double value) {
    return WriteTyped(kTagLReal, value, &PrivateFile::WriteLReal);
}

int PrivateHyperFile::WriteBool(int value) {
    const auto stored = static_cast<unsigned char>(value > 0 ? 1 : 0);
    return WriteTyped(kTagBool, stored, &PrivateFile::WriteUChar);
}

int PrivateHyperFile::WriteBlock(std::uint8_t tag, const void* data, std::int32_t count) {
    if (error_ != 0) {
        return 0;
    }
    if (count < 0) {
        return Fail(TextureFault::negative_size,
                    [&] { return "a block of " + std::to_string(count) + " bytes"; });
    }
    const bool written = Transferred(PrivateFile::WriteUChar(tag)) != 0 &&
                         Transferred(PrivateFile::WriteLong(count)) != 0 &&
                         Transferred(PrivateFile::WriteBytes(data, count)) != 0;
    return written ? Count() : 0;
}

int PrivateHyperFile::WriteMemory(const void* data, std::int32_t count) {
    return WriteBlock(kTagMemory, data, count);
}

int PrivateHyperFile::WriteString(const PrivateString& string) {
    if (error_ != 0) {
        return 0;
    }
    const std::int32_t length = string.GetLength();
    const std::int64_t byte_count = std::int64_t{2} * length;
    const MemBlock units(static_cast<unsigned char*>(MemAlloc(byte_count + 2)));
    if (units == nullptr || byte_count > std::numeric_limits<std::int32_t>::max()) {
        return Fail(TextureFault::out_of_memory,
                    [&] { return "a string of " + std::to_string(length) + " units"; });
    }
    PrivateString::GetUcBlock(string, reinterpret_cast<std::uint16_t*>(units.get()), length);
    WMotor(units.get(), length);
    return WriteBlock(kTagString, units.get(), static_cast<std::int32_t>(byte_count));
}

int PrivateHyperFile::WriteChunkStart(std::int32_t id, std::int32_t version) {
    if (error_ != 0) {
        return 0;
    }
    const bool written = Transferred(PrivateFile::WriteUChar(kTagChunkStart)) != 0 &&
                         Transferred(PrivateFile::WriteLong(id)) != 0 &&
                         Transferred(PrivateFile::WriteLong(version)) != 0;
    return written ? Count() : 0;
}

int PrivateHyperFile::WriteChunkEnd() {
    return error_ == 0 && Transferred(PrivateFile::WriteUChar(kTagChunkEnd)) != 0 ? Count() : 0;
}
