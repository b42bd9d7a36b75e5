#pragma once

// Loading a plug-in bundle into this process. One implementation a platform: bundle_loader_<platform>.cpp.

#include <filesystem>
#include <memory>
#include <string>

namespace embedded {

/// A bundle in memory; unloaded by the destructor, so nothing of it may be called afterwards.
class BundleLoader {
  public:
    /// Null when the file cannot be loaded; `error` then says why in the platform's words.
    static std::unique_ptr<BundleLoader> open(const std::filesystem::path& path, std::string& error);

    virtual ~BundleLoader() = default;
    BundleLoader(const BundleLoader&) = delete;
    BundleLoader& operator=(const BundleLoader&) = delete;

    using Function = void (*)();

    /// An exported function, to be cast to its own type; null when the bundle does not export it.
    [[nodiscard]] virtual Function function(const char* name) const = 0;

  protected:
    BundleLoader() = default;
};

}  // namespace embedded
