#include "cli/scene/texture_pixel.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "cli/scene/footage_check.h"
#include "system/files.h"
#include "texture/value/texture_file.h"

namespace cli {
namespace {

constexpr int kMostTextures = 16;
constexpr std::uint64_t kMostPictureSide_px = 16384;
constexpr std::uint64_t kMostPictureBytes = kMostPictureSide_px * kMostPictureSide_px * 4;

// Neighbours may differ by so much of 255 from the pixel.
constexpr int kSameStep = 2;
constexpr int kLeastAlpha = 64;
constexpr int kMostAlpha = 192;
// Colour times what is not covered: by so much of 255 * 255 do straight and premultiplied differ.
constexpr int kLeastDifference = 6500;

class PixelSearch {
  public:
    explicit PixelSearch(const Texture& texture) : texture_(texture) {}

    [[nodiscard]] std::optional<TexturePixel> find() const {
        for (std::int32_t y = 1; y + 1 < texture_.height_px; ++y) {
            for (std::int32_t x = 1; x + 1 < texture_.width_px; ++x) {
                if (is_telling(x, y) && is_among_same(x, y)) {
                    return pixel_at(x, y);
                }
            }
        }
        return std::nullopt;
    }

  private:
    [[nodiscard]] std::size_t index(std::int32_t x, std::int32_t y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(texture_.width_px) +
               static_cast<std::size_t>(x);
    }
    [[nodiscard]] int alpha(std::int32_t x, std::int32_t y) const {
        return texture_.alphas.front().values[index(x, y)];
    }
    [[nodiscard]] int color(std::int32_t x, std::int32_t y, std::size_t channel) const {
        const auto channels = static_cast<std::size_t>(texture_.channels());
        return texture_.pixels[index(x, y) * channels + std::min(channel, channels - 1)];
    }

    [[nodiscard]] bool is_telling(std::int32_t x, std::int32_t y) const {
        const int covered = alpha(x, y);
        const int most = std::max({color(x, y, 0), color(x, y, 1), color(x, y, 2)});
        return covered >= kLeastAlpha && covered <= kMostAlpha && most <= covered &&
               most * (255 - covered) >= kLeastDifference;
    }

    [[nodiscard]] bool is_among_same(std::int32_t x, std::int32_t y) const {
        for (std::int32_t down = -1; down <= 1; ++down) {
            for (std::int32_t across = -1; across <= 1; ++across) {
                bool same = std::abs(alpha(x + across, y + down) - alpha(x, y)) <= kSameStep;
                for (std::size_t channel = 0; channel < 3; ++channel) {
                    same = same &&
                           std::abs(color(x + across, y + down, channel) - color(x, y, channel)) <= kSameStep;
                }
                if (!same) {
                    return false;
                }
            }
        }
        return true;
    }

    [[nodiscard]] TexturePixel pixel_at(std::int32_t x, std::int32_t y) const {
        TexturePixel pixel;
        pixel.x_px = x + 0.5;
        pixel.y_px = y + 0.5;
        for (std::size_t channel = 0; channel < pixel.color.size(); ++channel) {
            pixel.color[channel] = color(x, y, channel) / 255.0;
        }
        pixel.alpha = alpha(x, y) / 255.0;
        return pixel;
    }

    const Texture& texture_;
};

std::optional<TexturePixel> pixel_of(const std::string& path) {
    TextureReadOptions options;
    options.limits.decoded_bytes = kMostPictureBytes;
    const TextureReading reading = read_texture(path, options);
    if (!reading.texture || reading.texture->alphas.empty()) {
        return std::nullopt;
    }
    std::optional<TexturePixel> pixel = PixelSearch(*reading.texture).find();
    if (pixel) {
        pixel->path = os::absolute_path(path);
    }
    return pixel;
}

}  // namespace

std::optional<TexturePixel> partly_covered_pixel(const SceneReading& reading) {
    int left = kMostTextures;
    for (const SceneFootage& footage : reading.facts.footage) {
        if (footage.file == nullptr || footage.file->path == nullptr || !is_texture(footage.file->path)) {
            continue;
        }
        if (left-- == 0) {
            break;
        }
        if (auto pixel = pixel_of(footage.file->path)) {
            return pixel;
        }
    }
    return std::nullopt;
}

}  // namespace cli
