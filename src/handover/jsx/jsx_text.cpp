#include "handover/jsx/jsx_text.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "text/utf8.h"

namespace handover {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

void add_unit(std::string& text, unsigned unit) {
    text += "\\u";
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        text += kHexDigits[(unit >> shift) & 0xFU];
    }
}

void add_character(std::string& text, char32_t character) {
    constexpr char32_t kFirstOfTwo = 0x10000;
    if (character < kFirstOfTwo) {
        add_unit(text, static_cast<unsigned>(character));
        return;
    }
    const auto rest = static_cast<unsigned>(character - kFirstOfTwo);
    add_unit(text, 0xD800U + (rest >> 10U));
    add_unit(text, 0xDC00U + (rest & 0x3FFU));
}

// Reads a surrogate in three bytes, as some systems write names that are not UTF-16. Returns 0 for any other
// text.
unsigned surrogate_at(std::string_view text) {
    if (text.size() < 3) {
        return 0;
    }
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) != 0xED || (byte(1) & 0xE0U) != 0xA0U || (byte(2) & 0xC0U) != 0x80U) {
        return 0;
    }
    return 0xD000U | ((byte(1) & 0x3FU) << 6U) | (byte(2) & 0x3FU);
}

bool stays(char c) {
    return c >= ' ' && c <= '~' && c != '"' && c != '\'' && c != '\\' && c != '<';
}

bool is_plain_in_uri(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.' || c == '~' || c == '/';
}

bool has_drive(std::string_view path) {
    return path.size() >= 3 && ((path[0] >= 'a' && path[0] <= 'z') || (path[0] >= 'A' && path[0] <= 'Z')) &&
           path[1] == ':' && (path[2] == '\\' || path[2] == '/');
}

bool is_windows_path(std::string_view path) {
    return has_drive(path) || path.starts_with("\\\\");
}

// With "/" between its components, and a drive as the first of them.
std::string plain_path(std::string_view path) {
    std::string plain(path);
    if (is_windows_path(path)) {
        std::replace(plain.begin(), plain.end(), '\\', '/');
        if (has_drive(path)) {
            plain = "/" + plain.substr(0, 1) + plain.substr(2);
        }
    }
    return plain;
}

std::vector<std::string_view> components_of(std::string_view path) {
    std::vector<std::string_view> components;
    while (!path.empty()) {
        const std::size_t slash = path.find('/');
        const std::string_view one = path.substr(0, slash);
        path.remove_prefix(slash == std::string_view::npos ? path.size() : slash + 1);
        if (one == ".." && !components.empty() && components.back() != "..") {
            components.pop_back();
        } else if (!one.empty() && one != ".") {
            components.push_back(one);
        }
    }
    return components;
}

}  // namespace

std::string jsx_escaped(std::string_view text) {
    std::string escaped;
    while (!text.empty()) {
        if (stays(text.front())) {
            escaped += text.front();
            text.remove_prefix(1);
            continue;
        }
        const text::Utf8Character first = text::first_character(text);
        if (first.size_bytes > 0) {
            add_character(escaped, first.code_point);
            text.remove_prefix(first.size_bytes);
        } else if (const unsigned surrogate = surrogate_at(text); surrogate != 0) {
            add_unit(escaped, surrogate);
            text.remove_prefix(3);
        } else {
            add_unit(escaped, 0xFFFD);
            text.remove_prefix(1);
        }
    }
    return escaped;
}

std::string jsx_string(std::string_view text) {
    return '"' + jsx_escaped(text) + '"';
}

std::string jsx_uri(std::string_view path) {
    std::string uri;
    for (const char c : plain_path(path)) {
        if (is_plain_in_uri(c)) {
            uri += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            uri += '%';
            uri += kHexDigits[byte >> 4U];
            uri += kHexDigits[byte & 0xFU];
        }
    }
    return uri;
}

bool jsx_is_absolute(std::string_view path) {
    return path.starts_with('/') || is_windows_path(path);
}

std::string jsx_way(std::string_view folder, std::string_view file) {
    const std::string plain_folder = plain_path(folder);
    const std::string plain_file = plain_path(file);
    const std::vector<std::string_view> from = components_of(plain_folder);
    const std::vector<std::string_view> to = components_of(plain_file);
    const auto [a, b] = std::mismatch(from.begin(), from.end(), to.begin(), to.end());
    if (a == from.begin() && !from.empty()) {
        return {};
    }
    std::string way;
    for (auto up = a; up != from.end(); ++up) {
        way += "../";
    }
    for (auto down = b; down != to.end(); ++down) {
        way += *down;
        way += down + 1 == to.end() ? "" : "/";
    }
    return way;
}

}  // namespace handover
