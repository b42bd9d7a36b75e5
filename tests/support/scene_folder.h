#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "support/temporary_folder.h"

/// A folder with a composition file and its footage. The importer finds footage beside the file, whatever
/// folder the paths in the file name.
class SceneFolder {
  public:
    /// Writes "shot.aec" and returns its path.
    std::string scene(std::string_view text) const { return files_.write("shot.aec", text); }

    /// Writes a small Targa picture: 24 bits a pixel, or 32 with an alpha channel. Returns its path.
    std::string image(std::string_view name, bool with_alpha = false) const {
        constexpr int kWidth_px = 4;
        constexpr int kHeight_px = 4;
        const int channels = with_alpha ? 4 : 3;
        std::string bytes(18, '\0');
        bytes[2] = 2;  // true colour, not compressed
        bytes[12] = kWidth_px;
        bytes[14] = kHeight_px;
        bytes[16] = static_cast<char>(8 * channels);
        bytes[17] = with_alpha ? 8 : 0;  // bits of alpha
        for (int i = 0; i < kWidth_px * kHeight_px * channels; ++i) {
            bytes += static_cast<char>(i * 5);
        }
        return files_.write(name, bytes);
    }

    /// Frames `first` to `last` of a sequence, numbered with four digits.
    void sequence(std::string_view prefix, int first, int last, bool with_alpha = false) const {
        for (int frame = first; frame <= last; ++frame) {
            std::string number = std::to_string(frame);
            number.insert(0, number.size() < 4 ? 4 - number.size() : 0, '0');
            image(std::string(prefix) + number + ".tga", with_alpha);
        }
    }

    [[nodiscard]] const TemporaryFolder& files() const { return files_; }

  private:
    TemporaryFolder files_;
};
