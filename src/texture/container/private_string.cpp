#include "texture/container/private_string.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "texture/file/memory.h"

PChar& PChar::operator=(const PChar& other) {
    if (this != &other) {
        *this = static_cast<std::uint16_t>(other);
    }
    return *this;
}

PChar& PChar::operator=(std::uint16_t unit) {
    if (index_ >= 0 && index_ < string_->length_) {
        string_->units_[index_] = unit;
    }
    return *this;
}

PChar::operator std::uint16_t() const {
    return static_cast<const PrivateString&>(*string_)[index_];
}

PrivateString::~PrivateString() {
    Release();
}

void PrivateString::Release() {
    MemFree(units_);
    Abandon();
}

void PrivateString::Abandon() {
    units_ = nullptr;
    length_ = 0;
    capacity_ = 0;
}

int PrivateString::Init(std::int32_t n) {
    Release();
    if (n <= 0) {
        return n == 0 ? 1 : 0;
    }
    units_ = static_cast<std::uint16_t*>(MemAlloc(std::int64_t{2} * n));
    if (units_ == nullptr) {
        return 0;
    }
    length_ = n;
    capacity_ = n;
    return 1;
}

int PrivateString::Set(const char* text) {
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        Release();
        return 0;
    }
    if (Init(static_cast<std::int32_t>(length)) == 0) {
        return 0;
    }
    for (std::int32_t i = 0; i < length_; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        units_[i] = static_cast<std::uint16_t>(byte < 0x80 ? byte : 0xFF00 | byte);
    }
    return 1;
}

PChar PrivateString::operator[](std::int32_t i) {
    return {this, i >= 0 && i < length_ ? i : -1};
}

std::uint16_t PrivateString::operator[](std::int32_t i) const {
    return i >= 0 && i < length_ ? units_[i] : std::uint16_t{0};
}

void PrivateString::GetUcBlock(const PrivateString& string, std::uint16_t* destination, std::int32_t n) {
    MemCopy(string.units_, destination, std::int64_t{2} * std::min(string.length_, n));
}

int PrivateString::SetUcBlock(PrivateString& string, const std::uint16_t* source, std::int32_t n) {
    if (string.Init(n) == 0) {
        return 0;
    }
    MemCopy(source, string.units_, std::int64_t{2} * n);
    return 1;
}
