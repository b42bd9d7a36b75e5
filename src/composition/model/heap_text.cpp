#include "composition/model/heap_text.h"

#include <cstring>
#include <new>

char* new_text(std::uint64_t bytes) {
    return bytes > PTRDIFF_MAX ? nullptr : new (std::nothrow) char[static_cast<std::size_t>(bytes)];
}

bool grow_text(char*& text, std::size_t used_bytes, std::uint64_t bytes) {
    char* const grown = new_text(bytes);
    if (grown == nullptr) {
        return false;
    }
    std::memcpy(grown, text, used_bytes);
    delete[] text;
    text = grown;
    return true;
}

char* copy_text(const char* text) {
    const std::size_t length = std::strlen(text);
    char* const copy = new_text(std::uint64_t{length} + 2);
    if (copy != nullptr) {
        std::memcpy(copy, text, length + 1);
        copy[length + 1] = '\0';
    }
    return copy;
}
