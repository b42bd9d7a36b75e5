#include <dlfcn.h>

#include "embedded/bundle_loader.h"
#include "system/files.h"

namespace embedded {
namespace {

class PosixBundle final : public BundleLoader {
  public:
    explicit PosixBundle(void* library) : library_(library) {}
    PosixBundle(const PosixBundle&) = delete;
    PosixBundle& operator=(const PosixBundle&) = delete;
    ~PosixBundle() override { dlclose(library_); }

    [[nodiscard]] Function function(const char* name) const override {
        return reinterpret_cast<Function>(dlsym(library_, name));
    }

  private:
    void* library_;
};

/// The code of a Macintosh bundle folder, which has its name; any other path is the code itself.
std::filesystem::path code_of(const std::filesystem::path& path) {
    std::error_code none;
    return path.extension() == ".plugin" && std::filesystem::is_directory(path, none)
               ? path / "Contents" / "MacOS" / path.stem()
               : path;
}

}  // namespace

std::unique_ptr<BundleLoader> BundleLoader::open(const std::filesystem::path& path, std::string& error) {
    // Made absolute: dlopen looks a name without a slash up in the system's library folders.
    std::error_code failure;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failure);
    if (failure) {
        error = failure.message();
        return nullptr;
    }
    const std::filesystem::path code = code_of(absolute);
    // The loader would wait for somebody to write into a pipe.
    if (!os::is_regular_file(os::text_of(code), error)) {
        error = os::text_of(code) + ": " + error;
        return nullptr;
    }
    void* library = dlopen(code.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        const char* reason = dlerror();
        error = reason == nullptr ? "unknown reason" : reason;
        return nullptr;
    }
    return std::make_unique<PosixBundle>(library);
}

}  // namespace embedded
