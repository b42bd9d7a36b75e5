#include "texture/file/filename.h"

#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include "system/path_style.h"

Filename::Filename(const char* path) {
    if (path == nullptr) {
        return;
    }
    if (std::strchr(path, '/') == nullptr) {
        Store(path);
        return;
    }
    const std::unique_ptr<char[]> converted = os::host_path_from_posix(path);
    if (converted != nullptr) {
        Store(converted.get());
    }
}

Filename::Filename(const Filename& other) {
    if (other.text_ != nullptr) {
        Store(other.text_);
    }
}

Filename& Filename::operator=(const Filename& other) {
    if (this != &other) {
        Filename copy(other);
        std::swap(text_, copy.text_);
        std::swap(length_, copy.length_);
    }
    return *this;
}

Filename::~Filename() {
    delete[] text_;
}

// Called only on an empty object. The spare byte after the terminator belongs to the record's layout.
void Filename::Store(const char* text) {
    const std::size_t length = std::strlen(text);
    if (length > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()) - 2) {
        return;
    }
    text_ = new (std::nothrow) char[length + 2];
    if (text_ == nullptr) {
        return;
    }
    std::memcpy(text_, text, length + 1);
    text_[length + 1] = '\0';
    length_ = static_cast<std::int32_t>(length);
}
