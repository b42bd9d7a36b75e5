#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/file_content.h"
#include "support/temporary_folder.h"

/// A job on a disk: scenes, and pictures in folders.
class JobFolder {
  public:
    /// Writes a scene of 8 frames, from 0 to 7, whose root composition has these entries.
    std::string scene(const std::string& name, std::string_view entries,
                      std::string_view settings = {}) const {
        return write(name, std::string("VORTAN XR COMPOSITION\nRESOLUTION 4 4\nFROM 0 TO 7 RANGE 8 FPS 25\n")
                               .append(settings)
                               .append("COMPOSITION NRM \"Main\" {\n")
                               .append(entries)
                               .append("}\n"));
    }

    /// Writes a Targa picture of 4 x 4 pixels, the size of its scenes; `shade` makes one differ from another.
    std::string image(const std::string& name, int shade = 0) const {
        std::string bytes(18, '\0');
        bytes[2] = 2;  // true colour, not compressed
        bytes[12] = 4;
        bytes[14] = 4;
        bytes[16] = 24;
        bytes.append(4 * 4 * 3, static_cast<char>(shade));
        return write(name, bytes);
    }

    std::string write(const std::string& name, std::string_view bytes) const {
        if (const std::size_t slash = name.rfind('/'); slash != std::string::npos) {
            folder_.make_folder(name.substr(0, slash));
        }
        return folder_.write(name, bytes);
    }

    [[nodiscard]] std::string path(std::string_view name) const { return folder_.path(name); }
    [[nodiscard]] std::string content(std::string_view name) const { return content_of(path(name)); }
    [[nodiscard]] const TemporaryFolder& folder() const { return folder_; }

    /// The names in a folder, hidden ones too.
    [[nodiscard]] std::set<std::string> names_in(std::string_view name) const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path(name))) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

  private:
    TemporaryFolder folder_;
};
