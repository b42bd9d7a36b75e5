#include <windows.h>

#include <system_error>

#include "embedded/bundle_loader.h"
#include "system/files.h"

namespace embedded {
namespace {

class WindowsBundle final : public BundleLoader {
  public:
    explicit WindowsBundle(HMODULE library) : library_(library) {}
    WindowsBundle(const WindowsBundle&) = delete;
    WindowsBundle& operator=(const WindowsBundle&) = delete;
    ~WindowsBundle() override { FreeLibrary(library_); }

    [[nodiscard]] Function function(const char* name) const override {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
    }

  private:
    HMODULE library_;
};

}  // namespace

std::unique_ptr<BundleLoader> BundleLoader::open(const std::filesystem::path& path, std::string& error) {
    // From the root on: a name alone is looked up in the system's folders.
    const std::filesystem::path full = os::native_path(os::absolute_path(os::text_of(path)));
    const HMODULE library = full.empty() ? nullptr : LoadLibraryW(full.c_str());
    if (library == nullptr) {
        const std::string reason = full.empty() ? "its name is not UTF-8" : os::system_reason(GetLastError());
        error = os::text_of(path) + ": " + reason;
        return nullptr;
    }
    return std::make_unique<WindowsBundle>(library);
}

}  // namespace embedded
