// The container. One option byte gives the number of operations, one byte each. With bit 7 set they run on a
// file made of the remaining bytes; otherwise they write values, which must read back unchanged.

#include <cstring>
#include <vector>

#include "check.h"
#include "input.h"
#include "texture/container/hyper_file.h"
#include "texture/txl/txl_ids.h"

namespace {

using Operations = std::span<const std::uint8_t>;

void take_block(PrivateHyperFile& file) {
    void* bytes = nullptr;
    std::int32_t count = 0;
    const int done = file.ReadMemory(&bytes, &count);
    const MemBlock owned(static_cast<unsigned char*>(bytes));
    require(done != 0 || (bytes == nullptr && count == 0), "a block that was not read is none");
    require(count >= 0 && count <= file.GetLength(), "a block is in its file");
    require(bytes == nullptr || owned.get()[count] == 0, "a zero follows a block");
}

void look_at_block(PrivateHyperFile& file) {
    const unsigned char* bytes = nullptr;
    std::int32_t count = 0;
    if (file.ReadMemoryInPlace(&bytes, &count) != 0) {
        std::vector<unsigned char> copy(bytes, bytes + count);
        require(count <= file.GetLength() && copy.size() == static_cast<std::size_t>(count),
                "a block is in its file");
    }
}

struct Values {
    char c = 0;
    unsigned char byte = 0;
    std::int16_t word = 0;
    std::uint16_t unsigned_word = 0;
    std::int32_t number = 0;
    std::int32_t other = 0;
    std::uint32_t unsigned_number = 0;
    float real = 0;
    int flag = 0;
    PrivateString string;
};

int read_one(PrivateHyperFile& file, std::uint8_t operation, Values& values) {
    switch (operation % 16) {
        case 0:
            return file.ReadChar(&values.c);
        case 1:
            return file.ReadUChar(&values.byte);
        case 2:
            return file.ReadWord(&values.word);
        case 3:
            return file.ReadUWord(&values.unsigned_word);
        case 4:
            return file.ReadLong(&values.number);
        case 5:
            return file.ReadULong(&values.unsigned_number);
        case 6:
            return file.ReadReal(&values.real);
        case 7:
            return file.ReadBool(&values.flag);
        case 8:
            take_block(file);
            return file.GetError() == 0 ? 1 : 0;
        case 9:
            look_at_block(file);
            return file.GetError() == 0 ? 1 : 0;
        case 10:
            return file.ReadString(&values.string);
        case 11:
            return file.ReadValueHeader(&values.byte);
        case 12:
            return file.ReadChunkStart(&values.number, &values.other);
        case 13:
            return file.SkipValue(values.byte);
        case 14:
            return file.SkipToEndChunk();
        default:
            return file.ReadDummy(values.number);
    }
}

void read_values(Operations operations, std::string_view bytes) {
    const std::string path = scratch().write("values.txl", bytes);
    PrivateHyperFile file;
    Values values;
    if (file.Open(kTextureFileIdent, path.c_str(), PrivateHyperFile::kReading, 0, 0) == 0) {
        return;
    }
    require(file.GetLength() == static_cast<std::int32_t>(bytes.size()), "the length is the file's");
    for (const std::uint8_t operation : operations) {
        const bool failed_before = file.GetError() != 0;
        const int done = read_one(file, operation, values);
        require(!failed_before || done == 0, "nothing succeeds after a failure");
    }
    require(file.Close() != 0, "what was opened is closed");
}

void write_one(PrivateHyperFile& file, std::uint8_t operation, Input input) {
    switch (operation % 8) {
        case 0:
            file.WriteUChar(input.take());
            return;
        case 1:
            file.WriteWord(input.take_value<std::int16_t>());
            return;
        case 2:
            file.WriteUWord(input.take_value<std::uint16_t>());
            return;
        case 3:
            file.WriteLong(input.take_value<std::int32_t>());
            return;
        case 4:
            file.WriteULong(input.take_value<std::uint32_t>());
            return;
        case 5:
            file.WriteReal(static_cast<float>(input.take_value<std::int32_t>()));
            return;
        case 6:
            file.WriteBool(input.take());
            return;
        default:
            file.WriteMemory(input.rest().data(), static_cast<std::int32_t>(input.rest().size()));
    }
}

void check_one(PrivateHyperFile& file, std::uint8_t operation, Input input) {
    Values values;
    const unsigned char* block = nullptr;
    switch (operation % 8) {
        case 0:
            require(file.ReadUChar(&values.byte) != 0 && values.byte == input.take(), "a byte comes back");
            return;
        case 1:
            require(file.ReadWord(&values.word) != 0 && values.word == input.take_value<std::int16_t>(),
                    "a word comes back");
            return;
        case 2:
            require(file.ReadUWord(&values.unsigned_word) != 0 &&
                        values.unsigned_word == input.take_value<std::uint16_t>(),
                    "an unsigned word comes back");
            return;
        case 3:
            require(file.ReadLong(&values.number) != 0 && values.number == input.take_value<std::int32_t>(),
                    "a number comes back");
            return;
        case 4:
            require(file.ReadULong(&values.unsigned_number) != 0 &&
                        values.unsigned_number == input.take_value<std::uint32_t>(),
                    "an unsigned number comes back");
            return;
        case 5:
            require(file.ReadReal(&values.real) != 0 &&
                        values.real == static_cast<float>(input.take_value<std::int32_t>()),
                    "a real comes back");
            return;
        case 6:
            require(file.ReadBool(&values.flag) != 0 && (values.flag != 0) == (input.take() > 0),
                    "a flag comes back");
            return;
        default:
            require(file.ReadMemoryInPlace(&block, &values.number) != 0 &&
                        static_cast<std::size_t>(values.number) == input.rest().size() &&
                        std::equal(input.rest().begin(), input.rest().end(), block),
                    "a block comes back");
    }
}

void write_and_read(Operations operations, const Input& input) {
    const std::string path = scratch().path("written.txl");
    PrivateHyperFile file;
    require(file.Open(kTextureFileIdent, path.c_str(), PrivateHyperFile::kWriting, 0, 1) != 0, "it opens");
    for (const std::uint8_t operation : operations) {
        write_one(file, operation, input);
    }
    require(file.GetError() == 0 && file.Close() != 0, "everything is written");
    require(file.Open(kTextureFileIdent, path.c_str(), PrivateHyperFile::kReading, 0, 0) != 0, "it opens");
    for (const std::uint8_t operation : operations) {
        check_one(file, operation, input);
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const std::uint8_t how = input.take();
    const Operations operations = input.take_bytes(how & 0x7F);
    if ((how & 0x80) != 0) {
        read_values(operations, input.rest_text());
    } else {
        write_and_read(operations, input);
    }
    return 0;
}
