#include "texture/hyper_file_fixture.h"

#include "texture/file/memory.h"

using namespace std::string_literals;

std::vector<Typed> typed_values() {
    return {
        {"Char", "\x0B\x01"s,
         [](PrivateHyperFile& f) {
             char v = 0;
             return f.ReadChar(&v);
         }},
        {"UChar", "\x0C\x01"s,
         [](PrivateHyperFile& f) {
             unsigned char v = 0;
             return f.ReadUChar(&v);
         }},
        {"Word", "\x0D\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::int16_t v = 0;
             return f.ReadWord(&v);
         }},
        {"UWord", "\x0E\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::uint16_t v = 0;
             return f.ReadUWord(&v);
         }},
        {"Long", "\x0F\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::int32_t v = 0;
             return f.ReadLong(&v);
         }},
        {"ULong", "\x10\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             std::uint32_t v = 0;
             return f.ReadULong(&v);
         }},
        {"Real", "\x13\x00\x00\x00\x01"s,
         [](PrivateHyperFile& f) {
             float v = 0;
             return f.ReadReal(&v);
         }},
        {"Bool", "\x15\x01"s,
         [](PrivateHyperFile& f) {
             int v = 0;
             return f.ReadBool(&v);
         }},
        {"block", "\x80\x00\x00\x00\x01x"s,
         [](PrivateHyperFile& f) {
             void* data = nullptr;
             std::int32_t count = 0;
             const int read = f.ReadMemory(&data, &count);
             MemFree(data);
             return read;
         }},
        {"string", "\x82\x00\x00\x00\x02\x00x"s,
         [](PrivateHyperFile& f) {
             PrivateString v;
             return f.ReadString(&v);
         }},
    };
}
