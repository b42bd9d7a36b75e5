#include "system/files.h"

#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "system/wide_path_windows.h"

namespace os {

namespace fs = std::filesystem;

namespace {

constexpr const char* kNoName = "its name is not UTF-8";
constexpr std::string_view kWildcards = "*?";

std::error_code last_error() {
    const std::error_condition meaning =
        std::error_code(static_cast<int>(GetLastError()), std::system_category()).default_error_condition();
    return {meaning.value(), meaning.category()};
}

/// Opens a file and closes it again.
std::error_code opened(const std::string& path, DWORD how) {
    const std::wstring wide = wide_path(path);
    if (wide.empty()) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    const HANDLE handle = CreateFileW(wide.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return last_error();
    }
    CloseHandle(handle);
    return {};
}

/// Whether `path` has a wildcard, which no name of a file can contain. The prefix of full-length names has
/// one as well.
bool has_wildcard(std::string_view path) {
    constexpr std::string_view kPrefix = R"(\\?\)";
    return path.find_first_of(kWildcards, path.starts_with(kPrefix) ? kPrefix.size() : 0) !=
           std::string_view::npos;
}

/// How many units the character at the front of `text` has.
std::size_t character_units(std::wstring_view text) {
    const bool pair = text.size() > 1 && text[0] >= 0xD800 && text[0] < 0xDC00;
    return pair ? 2 : 1;
}

int compared(std::wstring_view a, std::wstring_view b) {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()),
                                TRUE);
}

/// Whether `name` is what `pattern` describes. When a character does not fit, the last '*' takes one more:
/// the time is at most the product of the lengths.
bool matches(std::wstring_view pattern, std::wstring_view name) {
    std::wstring_view behind_star;
    std::wstring_view rest_of_star;
    bool star = false;
    while (!name.empty()) {
        if (!pattern.empty() && pattern[0] == L'*') {
            star = true;
            pattern.remove_prefix(1);
            behind_star = pattern;
            rest_of_star = name;
        } else if (!pattern.empty() && pattern[0] == L'?') {
            pattern.remove_prefix(1);
            name.remove_prefix(character_units(name));
        } else if (!pattern.empty() && compared(pattern.substr(0, 1), name.substr(0, 1)) == CSTR_EQUAL) {
            pattern.remove_prefix(1);
            name.remove_prefix(1);
        } else if (star) {
            rest_of_star.remove_prefix(character_units(rest_of_star));
            name = rest_of_star;
            pattern = behind_star;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*') == std::wstring_view::npos;
}

struct CloseSearch {
    void operator()(void* search) const { FindClose(search); }
};

struct CloseFile {
    void operator()(void* file) const { CloseHandle(file); }
};

}  // namespace

std::string system_reason(unsigned long error) {
    return std::error_code(static_cast<int>(error), std::system_category())
        .default_error_condition()
        .message();
}

std::error_code clone_file(const std::string& /*from*/, const std::string& /*to*/) {
    return std::make_error_code(std::errc::operation_not_supported);
}

FileState file_state(const std::string& path) {
    FileState state;
    const std::wstring wide = wide_path(path);
    WIN32_FILE_ATTRIBUTE_DATA about{};
    if (wide.empty()) {
        state.error = path.empty() ? system_reason(ERROR_FILE_NOT_FOUND) : kNoName;
    } else if (has_wildcard(path)) {
        state.error = "no file matches this name";
    } else if (GetFileAttributesExW(wide.c_str(), GetFileExInfoStandard, &about) == 0) {
        state.error = system_reason(GetLastError());
    } else if ((about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        state.kind = FileKind::folder;
    } else if ((about.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) != 0) {
        state.kind = FileKind::device;
    } else {
        state.kind = FileKind::regular;
        state.size_bytes = std::uint64_t{about.nFileSizeHigh} << 32 | about.nFileSizeLow;
    }
    return state;
}

std::optional<FileNumber> file_number(const std::string& path) {
    constexpr DWORD kEverybodyMay = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE handle = CreateFileW(wide_path(path).c_str(), FILE_READ_ATTRIBUTES, kEverybodyMay, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    const std::unique_ptr<void, CloseFile> file(handle);
    // File systems on servers may lack the longer number.
    FileNumber found;
    FILE_ID_INFO id{};
    if (GetFileInformationByHandleEx(handle, FileIdInfo, &id, sizeof(id)) != 0) {
        static_assert(sizeof(id.FileId) == sizeof(found.number));
        found.device = id.VolumeSerialNumber;
        std::memcpy(found.number.data(), &id.FileId, sizeof(id.FileId));
        return found;
    }
    BY_HANDLE_FILE_INFORMATION about{};
    if (GetFileInformationByHandle(handle, &about) == 0) {
        return std::nullopt;
    }
    found.device = about.dwVolumeSerialNumber;
    found.number[0] = std::uint64_t{about.nFileIndexHigh} << 32 | about.nFileIndexLow;
    return found;
}

std::vector<std::string> regular_files_in(const std::string& folder) {
    std::vector<std::string> names;
    for (FolderEntry& entry : entries_in(folder)) {
        if (entry.kind == FileKind::regular) {
            names.push_back(std::move(entry.name));
        }
    }
    return names;
}

std::vector<FolderEntry> entries_in(const std::string& folder) {
    std::vector<FolderEntry> entries;
    std::wstring pattern = wide_path(folder.empty() ? "." : folder);
    if (pattern.empty()) {
        return entries;
    }
    pattern += pattern.back() == L'\\' ? L"*" : L"\\*";
    WIN32_FIND_DATAW found{};
    const HANDLE handle = FindFirstFileW(pattern.c_str(), &found);
    if (handle == INVALID_HANDLE_VALUE) {
        return entries;
    }
    const std::unique_ptr<void, CloseSearch> search(handle);
    do {
        const std::wstring_view name(static_cast<const wchar_t*>(found.cFileName));
        if (name == L"." || name == L"..") {
            continue;
        }
        FileKind kind = FileKind::regular;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            kind = FileKind::folder;
        } else if ((found.dwFileAttributes & FILE_ATTRIBUTE_DEVICE) != 0) {
            kind = FileKind::device;
        }
        entries.push_back(
            {utf8_text(name), kind, (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0});
    } while (FindNextFileW(search.get(), &found) != 0);
    return entries;
}

std::vector<std::string> matching_files(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\:");
    const std::size_t name_at = separator == std::string::npos ? 0 : separator + 1;
    const std::wstring pattern = wide_text(std::string_view(path).substr(name_at));
    if (pattern.find_first_of(L"*?") == std::wstring::npos) {
        return {path};
    }
    std::vector<std::wstring> names;
    for (const std::string& name : regular_files_in(path.substr(0, name_at))) {
        std::wstring wide = wide_text(name);
        if ((wide[0] != L'.' || pattern[0] == L'.') && matches(pattern, wide)) {
            names.push_back(std::move(wide));
        }
    }
    std::sort(names.begin(), names.end(), [](const std::wstring& a, const std::wstring& b) {
        const int order = compared(a, b);
        return order == CSTR_EQUAL ? a < b : order == CSTR_LESS_THAN;
    });
    std::vector<std::string> paths;
    paths.reserve(names.size());
    for (const std::wstring& name : names) {
        paths.push_back(path.substr(0, name_at) + utf8_text(name));
    }
    return paths.empty() ? std::vector{path} : paths;
}

std::string absolute_path(const std::string& path) {
    constexpr std::wstring_view kPrefix = LR"(\\?\)";
    constexpr std::wstring_view kServerPrefix = LR"(\\?\UNC\)";
    std::wstring wide = wide_path(path);
    if (wide.empty()) {
        return path;
    }
    if (wide.starts_with(kServerPrefix)) {
        wide.replace(0, kServerPrefix.size(), LR"(\\)");
    } else if (wide.starts_with(kPrefix)) {
        wide.erase(0, kPrefix.size());
    }
    return utf8_text(wide);
}

std::error_code create_file(const std::string& path) {
    return opened(path, CREATE_NEW);
}

std::error_code create_replacement(const std::string& path, const std::string& /*replaced*/,
                                   std::string& /*notice*/) {
    return create_file(path);
}

std::error_code may_write(const std::string& path) {
    return opened(path, OPEN_EXISTING);
}

std::FILE* open_device(const std::string& path, std::error_code& failure) {
    // A pipe without a reader cannot be opened on Windows, so nothing waits.
    errno = 0;
    std::FILE* stream = _wfopen(wide_path(path).c_str(), L"wb");
    if (stream == nullptr) {
        failure = {errno, std::generic_category()};
    }
    return stream;
}

std::error_code fill_file(const std::string& path, std::string_view bytes) {
    const HANDLE handle = CreateFileW(wide_path(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      TRUNCATE_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return last_error();
    }
    const std::unique_ptr<void, CloseFile> file(handle);
    while (!bytes.empty()) {
        constexpr std::size_t kMostAtOnce = std::size_t{1} << 26;
        DWORD written = 0;
        if (WriteFile(handle, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce)), &written,
                      nullptr) == 0) {
            return last_error();
        }
        bytes.remove_prefix(written);
    }
    return {};
}

std::error_code flush_file(const std::string& path) {
    const HANDLE handle = CreateFileW(wide_path(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return last_error();
    }
    const std::unique_ptr<void, CloseFile> file(handle);
    return FlushFileBuffers(handle) != 0 ? std::error_code() : last_error();
}

std::string link_target(const std::string& path, std::error_code& failure) {
    // Opening or replacing a link affects its target.
    failure.clear();
    return path;
}

std::error_code replace_file(const std::string& from, const std::string& to) {
    // The file keeps the permissions that it was created with: those of its folder.
    const DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExW(wide_path(from).c_str(), wide_path(to).c_str(), how) != 0 ? std::error_code()
                                                                                 : last_error();
}

fs::path native_path(const std::string& path) {
    return wide_path(path);
}

fs::path path_of(const std::string& text) {
    return wide_text(text);
}

std::string text_of(const fs::path& path) {
    return utf8_text(path.native());
}

}  // namespace os
