#include <dlfcn.h>

#include "system/dynamic_library.h"
#include "system/files.h"

namespace os {
namespace {

class PosixLibrary final : public DynamicLibrary {
  public:
    explicit PosixLibrary(void* library) : library_(library) {}
    PosixLibrary(const PosixLibrary&) = delete;
    PosixLibrary& operator=(const PosixLibrary&) = delete;
    ~PosixLibrary() override { dlclose(library_); }

    [[nodiscard]] Function function(const char* name) const override {
        return reinterpret_cast<Function>(dlsym(library_, name));
    }

  private:
    void* library_;
};

/// The code file inside a macOS plug-in folder, which carries the folder's name. Any other path is the code.
std::filesystem::path code_of(const std::filesystem::path& path) {
    std::error_code none;
    return path.extension() == ".plugin" && std::filesystem::is_directory(path, none)
               ? path / "Contents" / "MacOS" / path.stem()
               : path;
}

}  // namespace

std::unique_ptr<DynamicLibrary> DynamicLibrary::open(const std::filesystem::path& path, std::string& error) {
    // dlopen looks up a name without a slash in the system's library folders, so the path is made absolute.
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
    if (failure) {
        error = failure.message();
        return nullptr;
    }
    const std::filesystem::path code = code_of(absolute);
    // Given a pipe, dlopen would wait for a writer.
    if (!is_regular_file(text_of(code), error)) {
        error = text_of(code) + ": " + error;
        return nullptr;
    }
    void* library = dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        error = reason == nullptr ? "unknown reason" : reason;
        return nullptr;
    }
    return std::make_unique<PosixLibrary>(library);
}

}  // namespace os
