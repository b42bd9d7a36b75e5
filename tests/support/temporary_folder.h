#pragma once

#if defined(_WIN32)
#include <direct.h>
#endif

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A folder for one test, which the destructor deletes with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        // Several test programs run at a time, so a name may be taken.
        std::random_device random;
        const std::filesystem::path place = std::filesystem::temp_directory_path();
        constexpr int kAttempts = 100;
        for (int attempt = 0; attempt < kAttempts; ++attempt) {
            folder_ = place / ("vxr-test-" + std::to_string(random()));
            if (std::filesystem::create_directory(folder_)) {
                std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
                return;
            }
        }
        throw std::runtime_error("cannot make a folder in " + place.string());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
#if defined(_WIN32)
        // Without the prefix, a name that ends with a blank or a full stop is never found again, and the
        // library tries for ever.
        std::filesystem::remove_all(LR"(\\?\)" + folder_.native(), ignored);
#else
        std::filesystem::remove_all(folder_, ignored);
#endif
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The full path of `name` in this folder. Creates nothing.
    [[nodiscard]] std::string path(std::string_view name) const {
#if defined(_WIN32)
        const std::u8string folder = folder_.u8string();
        return std::string(folder.begin(), folder.end()).append(1, '\\').append(name);
#else
        return full_path(name).string();
#endif
    }

    [[nodiscard]] const std::filesystem::path& folder() const {
        return folder_;
    }

    /// Makes the folder `name` in this one and the folders that lead to it, separated by '/'.
    void make_folder(std::string_view name) const {
#if defined(_WIN32)
        for (std::size_t end = 0; end < name.size(); ++end) {
            end = std::min(name.find('/', end), name.size());
            if (::_wmkdir(full_path(name.substr(0, end)).c_str()) != 0 && errno != EEXIST) {
                throw std::runtime_error("cannot make the folder " + path(name));
            }
        }
#else
        std::filesystem::create_directories(full_path(name));
#endif
    }

    /// Writes `bytes` to `name`, replacing an existing file, and returns the full path.
    std::string write(std::string_view name, std::string_view bytes) const {
        std::string full = path(name);
        std::ofstream out(full_path(name), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush()) {
            throw std::runtime_error("cannot write " + full);
        }
        return full;
    }

  private:
    /// Names are UTF-8 on Windows, of any length and with any full stops; elsewhere they are bytes.
    [[nodiscard]] std::filesystem::path full_path(std::string_view name) const {
#if defined(_WIN32)
        const std::filesystem::path below(std::u8string(name.begin(), name.end()));
        return LR"(\\?\)" + (folder_ / below).lexically_normal().make_preferred().native();
#else
        return folder_ / name;
#endif
    }

    std::filesystem::path folder_;
};

/// The names of what is in a folder, sorted.
inline std::vector<std::string> names_in(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

inline std::vector<std::string> names_in(const TemporaryFolder& folder) {
    return names_in(folder.folder());
}
