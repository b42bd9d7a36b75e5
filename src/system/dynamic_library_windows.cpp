#include <windows.h>

#include <system_error>

#include "system/dynamic_library.h"
#include "system/files.h"

namespace os {
namespace {

class WindowsLibrary final : public DynamicLibrary {
  public:
    explicit WindowsLibrary(HMODULE library) : library_(library) {}
    WindowsLibrary(const WindowsLibrary&) = delete;
    WindowsLibrary& operator=(const WindowsLibrary&) = delete;
    ~WindowsLibrary() override { FreeLibrary(library_); }

    [[nodiscard]] Function function(const char* name) const override {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
    }

  private:
    HMODULE library_;
};

}  // namespace

std::unique_ptr<DynamicLibrary> DynamicLibrary::open(const std::filesystem::path& path, std::string& error) {
    // LoadLibrary looks up a bare name in the system's folders, so the path is made absolute.
    const std::filesystem::path full = native_path(absolute_path(text_of(path)));
    const HMODULE library = full.empty() ? nullptr : LoadLibraryW(full.c_str());
    if (library == nullptr) {
        const std::string reason = full.empty() ? "its name is not UTF-8" : system_reason(GetLastError());
        error = text_of(path) + ": " + reason;
        return nullptr;
    }
    return std::make_unique<WindowsLibrary>(library);
}

}  // namespace os
