#include "system/wide_path_windows.h"

#include <windows.h>

#include <limits>
#include <vector>

namespace os {
namespace {

constexpr std::wstring_view kSeparators = L"\\/";
constexpr std::wstring_view kPrefix = LR"(\\?\)";

bool is_separator(wchar_t c) {
    return kSeparators.find(c) != std::wstring_view::npos;
}

/// The absolute form of a short path such as "\" or "C:.", the current folder of a drive.
std::wstring full_form(const std::wstring& path) {
    const DWORD size = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    if (size == 0) {
        return {};
    }
    std::wstring full(size, L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
    if (length == 0 || length >= size) {
        return {};
    }
    full.resize(length);
    return full;
}

/// A path split into its root and the names below it.
struct Anchored {
    std::wstring root;        // ends with a separator: "\\?\C:\", "\\?\UNC\server\share\"
    std::wstring_view names;  // all that follows
};

/// Splits a path that begins with two separators after the server and its shared folder, which ".." does not
/// leave.
Anchored on_server(std::wstring_view path) {
    std::wstring root(kPrefix);
    root += L"UNC\\";
    std::size_t at = 2;
    for (int part = 0; part < 2 && at < path.size(); ++part) {
        const std::size_t end = std::min(path.find_first_of(kSeparators, at), path.size());
        root.append(path.substr(at, end - at)).append(1, L'\\');
        at = std::min(end + 1, path.size());
    }
    return {root, path.substr(at)};
}

bool begins_with_drive(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':' &&
           ((path[0] >= L'A' && path[0] <= L'Z') || (path[0] >= L'a' && path[0] <= L'z'));
}

Anchored anchored(std::wstring_view path) {
    if (path.size() >= 2 && is_separator(path[0]) && is_separator(path[1])) {
        return on_server(path);
    }
    if (begins_with_drive(path) && path.size() >= 3 && is_separator(path[2])) {
        return {std::wstring(kPrefix).append(path.substr(0, 2)).append(1, L'\\'), path.substr(3)};
    }
    return {};
}

/// `root` and the names below it, without empty names and with "." and ".." resolved.
std::wstring resolved(const std::wstring& root, std::wstring_view names) {
    std::vector<std::wstring_view> kept;
    while (!names.empty()) {
        const std::size_t end = std::min(names.find_first_of(kSeparators), names.size());
        const std::wstring_view name = names.substr(0, end);
        names.remove_prefix(std::min(end + 1, names.size()));
        if (name == L"..") {
            if (!kept.empty()) {
                kept.pop_back();
            }
        } else if (!name.empty() && name != L".") {
            kept.push_back(name);
        }
    }
    std::wstring path = root;
    for (const std::wstring_view name : kept) {
        if (path.size() > root.size()) {
            path += L'\\';
        }
        path += name;
    }
    return path;
}

}  // namespace

std::wstring wide_text(std::string_view utf8) {
    if (utf8.empty() || utf8.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return {};
    }
    const int bytes = static_cast<int>(utf8.size());
    const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), bytes, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(size, 0)), L'\0');
    if (size <= 0 ||
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), bytes, wide.data(), size) != size) {
        return {};
    }
    return wide;
}

std::string utf8_text(std::wstring_view wide) {
    if (wide.empty() || wide.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return {};
    }
    const int units = static_cast<int>(wide.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(std::max(size, 0)), '\0');
    if (size <= 0 ||
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), size, nullptr, nullptr) != size) {
        return {};
    }
    return utf8;
}

std::wstring wide_path(std::string_view path) {
    const std::wstring given = wide_text(path);
    const std::wstring_view text = given;
    if (given.empty() || text.find(L'\0') != std::wstring_view::npos || text.starts_with(kPrefix) ||
        text.starts_with(LR"(\\.\)")) {
        return text.find(L'\0') != std::wstring_view::npos ? std::wstring() : given;
    }
    Anchored parts = anchored(text);
    std::wstring folder;
    if (parts.root.empty()) {
        // Relative to the current folder, to that of a drive, or to the root of the current drive.
        const bool drive = begins_with_drive(text);
        const bool rooted = is_separator(text[0]);
        folder = full_form(drive ? given.substr(0, 2) + L"." : (rooted ? L"\\" : L"."));
        folder.append(1, L'\\').append(text.substr(drive ? 2 : 0));
        parts = anchored(folder);
        if (parts.root.empty()) {
            return {};
        }
    }
    std::wstring full = resolved(parts.root, parts.names);
    // A path that ends with a separator names a folder and keeps the separator.
    if (is_separator(text.back()) && full.back() != L'\\') {
        full += L'\\';
    }
    return full;
}

}  // namespace os
