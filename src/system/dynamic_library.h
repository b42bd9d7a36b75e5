#pragma once

// Loads plug-ins and modules into this process. dynamic_library_<platform>.cpp implements it for each
// platform.

#include <filesystem>
#include <memory>
#include <string>

namespace os {

/// A library in memory. The destructor unloads it, so none of its functions may be called afterwards.
class DynamicLibrary {
  public:
    /// Loads the regular file at `path`, or the code inside it if it is a macOS plug-in folder. Null on
    /// failure; `error` then holds the platform's reason.
    static std::unique_ptr<DynamicLibrary> open(const std::filesystem::path& path, std::string& error);

    virtual ~DynamicLibrary() = default;
    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;

    using Function = void (*)();

    /// An exported function, to be cast to its real type. Null if the library does not export it.
    [[nodiscard]] virtual Function function(const char* name) const = 0;

  protected:
    DynamicLibrary() = default;
};

}  // namespace os
