#include "cli/doctor/needed_libraries.h"

#include <algorithm>
#include <array>
#include <set>

#include "cli/doctor/bundle_files.h"
#include "cli/doctor/finding.h"
#include "text/ascii.h"
#include "text/printable.h"

namespace cli::doctor {
namespace {

using binary_file::BinaryImage;
using binary_file::Container;
using binary_file::NeededLibrary;

enum class Where { there, elsewhere, missing };

struct Lookup {
    Where where = Where::there;
    std::string reason;
};

bool is_file(const std::string& path) {
    return path_kind(path) == PathKind::file;
}

// Libraries that come with every Windows that hosts run on. A plug-in of this kind needs the first two.
constexpr std::array<std::string_view, 38> kWindowsLibraries{
    "kernel32.dll", "msvcrt.dll",     "advapi32.dll", "bcrypt.dll",  "cfgmgr32.dll", "comctl32.dll",
    "comdlg32.dll", "crypt32.dll",    "d2d1.dll",     "d3d11.dll",   "d3d9.dll",     "dbghelp.dll",
    "dwmapi.dll",   "dwrite.dll",     "dxgi.dll",     "gdi32.dll",   "gdiplus.dll",  "imm32.dll",
    "iphlpapi.dll", "kernelbase.dll", "ntdll.dll",    "ole32.dll",   "oleaut32.dll", "opengl32.dll",
    "powrprof.dll", "psapi.dll",      "rpcrt4.dll",   "secur32.dll", "setupapi.dll", "shell32.dll",
    "shlwapi.dll",  "ucrtbase.dll",   "user32.dll",   "userenv.dll", "uxtheme.dll",  "version.dll",
    "winmm.dll",    "ws2_32.dll"};

Lookup look_up_on_windows(const std::string& binary, const NeededLibrary& library) {
    const std::string name = text::lower_case(library.name);
    if (std::find(kWindowsLibraries.begin(), kWindowsLibraries.end(), name) != kWindowsLibraries.end() ||
        name.starts_with("api-ms-win-")) {
        return {};
    }
    if (is_file(folder_of(binary) + '/' + std::string(library.name))) {
        return {Where::elsewhere,
                "is beside the plug-in, where Windows does not look for it when a host loads the plug-in"};
    }
    for (const std::string_view runtime : {"vcruntime", "msvcp", "concrt"}) {
        if (name.starts_with(runtime)) {
            return {Where::elsewhere, "comes with a compiler's runtime, not with Windows"};
        }
    }
    return {Where::missing, "does not come with Windows"};
}

/// @loader_path is the folder of the plug-in's own file, @rpath each of its search paths.
Lookup look_up_on_macos(const std::string& binary, const BinaryImage& image, const NeededLibrary& library) {
    const std::string path(library.name);
    if (path.starts_with("/usr/lib/") || path.starts_with("/System/")) {
        return {};
    }
    if (path.starts_with("@executable_path/")) {
        return {Where::elsewhere, "is searched for in the host's own folder"};
    }
    constexpr std::string_view kLoader = "@loader_path/";
    constexpr std::string_view kRunPath = "@rpath/";
    std::vector<std::string> candidates;
    if (path.starts_with(kLoader)) {
        candidates.push_back(path);
    }
    if (path.starts_with(kRunPath)) {
        for (const std::string_view folder : image.search_paths) {
            candidates.push_back(std::string(folder) + '/' + path.substr(kRunPath.size()));
        }
    }
    for (const std::string& candidate : candidates) {
        if (candidate.starts_with(kLoader) &&
            is_file(folder_of(binary) + '/' + candidate.substr(kLoader.size()))) {
            return {};
        }
    }
    return {Where::missing, path.starts_with("/") ? "is an absolute path outside /usr/lib and /System"
                            : candidates.empty()  ? "is searched for in no folder"
                                                  : "is in none of the folders that are searched for it"};
}

class LibraryChecks {
  public:
    LibraryChecks(const std::string& binary, Diagnosis& diagnosis) : binary_(binary), diagnosis_(diagnosis) {}

    void check(const BinaryImage& image) {
        for (const NeededLibrary& library : image.needed) {
            const Lookup lookup = look_up(image, library);
            if (lookup.where == Where::there || !told_.insert(library.name).second) {
                continue;
            }
            const bool warning = library.optional || lookup.where == Where::elsewhere;
            diagnosis_.findings.push_back(
                diagnostic::make(warning ? Finding::library_elsewhere : Finding::library_missing, {binary_},
                                 "the library " + text::quoted(library.name) + ' ' + lookup.reason));
        }
    }

  private:
    [[nodiscard]] Lookup look_up(const BinaryImage& image, const NeededLibrary& library) const {
        switch (image.container) {
            case Container::pe:
                return look_up_on_windows(binary_, library);
            case Container::mach_o:
                return look_up_on_macos(binary_, image, library);
            case Container::elf:
                break;
        }
        return has_elf_library(binary_, image, library.name)
                   ? Lookup{}
                   : Lookup{Where::missing, "is in none of the folders that are searched for it"};
    }

    const std::string& binary_;
    Diagnosis& diagnosis_;
    std::set<std::string_view> told_;
};

}  // namespace

void check_needed_libraries(const std::string& binary, const std::vector<BinaryImage>& images,
                            Diagnosis& diagnosis) {
    LibraryChecks checks(binary, diagnosis);
    for (const BinaryImage& image : images) {
        checks.check(image);
    }
}

}  // namespace cli::doctor
