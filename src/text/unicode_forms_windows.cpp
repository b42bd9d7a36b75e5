#include <windows.h>

#include <cstddef>

#include "text/ascii.h"
#include "text/unicode_forms.h"

namespace text {
namespace {

// No name on a disk is longer; the lengths of the functions below are of 32 bits.
constexpr std::size_t kMostBytes = std::size_t{1} << 20U;

// Empty for text that is not UTF-8.
std::wstring wide(std::string_view utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring units(utf8.size(), L'\0');
    const int made =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size, units.data(), size);
    units.resize(made > 0 ? static_cast<std::size_t>(made) : 0);
    return units;
}

std::string narrow(const std::wstring& units) {
    std::string utf8(units.size() * 3, '\0');
    const int made = WideCharToMultiByte(CP_UTF8, 0, units.data(), static_cast<int>(units.size()),
                                         utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(made > 0 ? static_cast<std::size_t>(made) : 0);
    return utf8;
}

// Empty for text that is not UTF-8.
std::wstring composed_units(std::string_view utf8) {
    if (utf8.empty() || utf8.size() > kMostBytes) {
        return {};
    }
    const std::wstring units = wide(utf8);
    if (units.empty()) {
        return {};
    }
    std::wstring made(units.size() * 3 + 16, L'\0');
    const int size = NormalizeString(NormalizationC, units.data(), static_cast<int>(units.size()),
                                     made.data(), static_cast<int>(made.size()));
    if (size <= 0) {
        return units;
    }
    made.resize(static_cast<std::size_t>(size));
    return made;
}

}  // namespace

std::string composed(std::string_view utf8) {
    const std::wstring units = composed_units(utf8);
    return units.empty() ? std::string(utf8) : narrow(units);
}

std::string case_folded(std::string_view utf8) {
    std::wstring units = composed_units(utf8);
    if (units.empty()) {
        return lower_case(utf8);
    }
    CharLowerBuffW(units.data(), static_cast<DWORD>(units.size()));
    return narrow(units);
}

}  // namespace text
