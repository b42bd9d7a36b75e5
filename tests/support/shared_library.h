#pragma once

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <filesystem>
#include <stdexcept>
#include <string>

/// A library loaded by the platform with every symbol resolved, and unloaded by the destructor. Throws if it
/// does not load.
class SharedLibrary {
  public:
    explicit SharedLibrary(const std::string& path) {
#if defined(_WIN32)
        library_ = LoadLibraryW(std::filesystem::path(path).make_preferred().c_str());
        if (library_ == nullptr) {
            throw std::runtime_error(path + ": error " + std::to_string(GetLastError()));
        }
#else
        library_ = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library_ == nullptr) {
            throw std::runtime_error(::dlerror());
        }
#endif
    }
    ~SharedLibrary() {
#if defined(_WIN32)
        FreeLibrary(library_);
#else
        ::dlclose(library_);
#endif
    }
    SharedLibrary(const SharedLibrary&) = delete;
    SharedLibrary& operator=(const SharedLibrary&) = delete;

    /// An exported function; null if the library does not export it.
    template <typename Function>
    [[nodiscard]] Function function(const char* name) const {
#if defined(_WIN32)
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library_, name)));
#else
        return reinterpret_cast<Function>(::dlsym(library_, name));
#endif
    }

  private:
#if defined(_WIN32)
    HMODULE library_;
#else
    void* library_;
#endif
};
