#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

/// A folder of its own for one test, deleted with everything in it when the object goes.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "vxr-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("cannot make a folder like " + name);
        }
        folder_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Full path of `name` in this folder; nothing is made.
    [[nodiscard]] std::string path(std::string_view name) const { return (folder_ / name).string(); }

    [[nodiscard]] const std::filesystem::path& folder() const { return folder_; }

    /// Writes `bytes` to `name`, replacing what was there, and returns its full path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::string full = path(name);
        std::ofstream out(full, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + full);
        }
        return full;
    }

  private:
    std::filesystem::path folder_;
};
