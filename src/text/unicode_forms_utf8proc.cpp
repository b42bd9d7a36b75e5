#include <utf8proc.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "text/ascii.h"
#include "text/unicode_forms.h"

namespace text {
namespace {

struct FreeMapped {
    void operator()(utf8proc_uint8_t* mapped) const { std::free(mapped); }
};

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Nothing for text that is not UTF-8.
bool map(std::string_view utf8, int options, std::string& mapped) {
    utf8proc_uint8_t* made = nullptr;
    const utf8proc_ssize_t size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(utf8.data()),
                                               static_cast<utf8proc_ssize_t>(utf8.size()), &made,
                                               static_cast<utf8proc_option_t>(options | UTF8PROC_STABLE));
    const std::unique_ptr<utf8proc_uint8_t, FreeMapped> owned(made);
    if (size == UTF8PROC_ERROR_NOMEM) {
        throw std::bad_alloc();
    }
    if (size >= 0) {
        mapped.assign(reinterpret_cast<const char*>(made), static_cast<std::size_t>(size));
    }
    return size >= 0;
}

}  // namespace

std::string composed(std::string_view utf8) {
    std::string mapped(utf8);
    if (!is_ascii(utf8)) {
        map(utf8, UTF8PROC_COMPOSE, mapped);
    }
    return mapped;
}

std::string case_folded(std::string_view utf8) {
    std::string mapped;
    if (is_ascii(utf8) || !map(utf8, UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD, mapped)) {
        return lower_case(utf8);
    }
    return mapped;
}

}  // namespace text
