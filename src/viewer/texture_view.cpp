#include "viewer/texture_view.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace viewer {
namespace {

constexpr int kOpaque = 255;
constexpr int kMostSamples = 4;

/// One pixel over the chequered ground.
struct Colour {
    std::array<int, 3> rgb{};
};

/// Fields of 8 x 8 pixels of the window, so that they stay as they are at any scale.
int ground_at(std::int32_t x, std::int32_t y) {
    constexpr int kField_px = 8;
    constexpr int kLight = 0xCC;
    constexpr int kDark = 0x99;
    return (x / kField_px + y / kField_px) % 2 == 0 ? kLight : kDark;
}

/// a * b / 255, rounded.
int scaled(int a, int b) {
    return (a * b + kOpaque / 2) / kOpaque;
}

class Looker {
  public:
    Looker(const Texture& texture, Look look, std::size_t alpha) : texture_(texture), look_(look) {
        if (alpha < texture.alphas.size()) {
            alpha_ = texture.alphas[alpha].values.data();
        } else {
            look_ = Look::colour;
        }
    }

    [[nodiscard]] Colour at(std::size_t pixel, int ground) const {
        if (look_ == Look::alpha) {
            const int value = alpha_[pixel];
            return {{value, value, value}};
        }
        Colour colour = stored(pixel);
        if (look_ == Look::colour) {
            return colour;
        }
        const int cover = alpha_[pixel];
        for (int& one : colour.rgb) {
            const int front = look_ == Look::straight ? scaled(one, cover) : one;
            one = std::min(kOpaque, front + scaled(ground, kOpaque - cover));
        }
        return colour;
    }

  private:
    [[nodiscard]] Colour stored(std::size_t pixel) const {
        const std::uint8_t* const pixels = texture_.pixels.data();
        if (texture_.channels() == 1) {
            const int grey = pixels[pixel];
            return {{grey, grey, grey}};
        }
        return {{pixels[3 * pixel], pixels[3 * pixel + 1], pixels[3 * pixel + 2]}};
    }

    const Texture& texture_;
    Look look_;
    const std::uint8_t* alpha_ = nullptr;
};

/// The pixels of the picture along one side that a pixel of the window shows.
struct Samples {
    std::array<std::size_t, kMostSamples> places{};
    int count = 0;
};

Samples samples_of(double first_px, double step_px, std::int32_t i, std::int32_t side_px) {
    Samples samples;
    const int wanted = static_cast<int>(std::clamp(std::ceil(step_px), 1.0, double{kMostSamples}));
    for (int k = 0; k < wanted; ++k) {
        const double place = std::floor(first_px + (i + (k + 0.5) / wanted) * step_px);
        if (place >= 0 && place < side_px) {
            samples.places.at(static_cast<std::size_t>(samples.count++)) = static_cast<std::size_t>(place);
        }
    }
    return samples;
}

bool has_pixels(const Texture& texture) {
    return texture.pixels.size() > 0 && texture.pixel_count() > 0;
}

}  // namespace

std::vector<std::uint8_t> draw_window(const Texture& texture, const Window& window, Look look,
                                      std::size_t alpha) {
    const auto width = static_cast<std::size_t>(std::max(window.width_px, 0));
    const auto height = static_cast<std::size_t>(std::max(window.height_px, 0));
    std::vector<std::uint8_t> out(width * height * 4);
    if (!has_pixels(texture) || !(window.step_px > 0)) {
        return out;
    }
    const Looker looker(texture, look, alpha);
    std::vector<Samples> columns(width);
    for (std::size_t x = 0; x < width; ++x) {
        columns[x] =
            samples_of(window.left_px, window.step_px, static_cast<std::int32_t>(x), texture.width_px);
    }
    std::size_t at = 0;
    for (std::int32_t y = 0; y < window.height_px; ++y) {
        const Samples rows = samples_of(window.top_px, window.step_px, y, texture.height_px);
        for (std::int32_t x = 0; x < window.width_px; ++x, at += 4) {
            const Samples& column = columns[static_cast<std::size_t>(x)];
            const int count = rows.count * column.count;
            if (count == 0) {
                continue;
            }
            const int ground = ground_at(x, y);
            std::array<int, 3> sum{};
            for (int i = 0; i < rows.count; ++i) {
                const std::size_t row =
                    rows.places.at(static_cast<std::size_t>(i)) * static_cast<std::size_t>(texture.width_px);
                for (int j = 0; j < column.count; ++j) {
                    const Colour colour =
                        looker.at(row + column.places.at(static_cast<std::size_t>(j)), ground);
                    for (std::size_t c = 0; c < 3; ++c) {
                        sum.at(c) += colour.rgb.at(c);
                    }
                }
            }
            for (std::size_t c = 0; c < 3; ++c) {
                out[at + c] = static_cast<std::uint8_t>((sum.at(c) + count / 2) / count);
            }
            out[at + 3] = kOpaque;
        }
    }
    return out;
}

std::vector<std::uint8_t> values_at(const Texture& texture, std::int32_t x_px, std::int32_t y_px) {
    std::vector<std::uint8_t> values;
    if (!has_pixels(texture) || x_px < 0 || y_px < 0 || x_px >= texture.width_px ||
        y_px >= texture.height_px) {
        return values;
    }
    const std::size_t pixel = static_cast<std::size_t>(y_px) * static_cast<std::size_t>(texture.width_px) +
                              static_cast<std::size_t>(x_px);
    const auto channels = static_cast<std::size_t>(texture.channels());
    for (std::size_t c = 0; c < channels; ++c) {
        values.push_back(texture.pixels[pixel * channels + c]);
    }
    for (const AlphaChannel& alpha : texture.alphas) {
        values.push_back(alpha.values[pixel]);
    }
    return values;
}

Plane plane_to_save(const Texture& texture, Look look, std::size_t alpha) {
    Plane plane;
    const std::uint8_t* const cover =
        alpha < texture.alphas.size() ? texture.alphas[alpha].values.data() : nullptr;
    const bool alone = look == Look::alpha && cover != nullptr;
    const bool with_alpha = look != Look::colour && cover != nullptr;
    const auto colours = alone ? 0 : static_cast<std::size_t>(texture.channels());
    const std::size_t channels = colours + (with_alpha ? 1 : 0);
    plane.channels = static_cast<std::int32_t>(channels);
    plane.bytes.resize(texture.pixel_count() * channels);
    std::uint8_t* to = plane.bytes.data();
    for (std::size_t pixel = 0; pixel < texture.pixel_count(); ++pixel) {
        for (std::size_t c = 0; c < colours; ++c) {
            *to++ = texture.pixels[pixel * colours + c];
        }
        if (with_alpha) {
            *to++ = cover[pixel];
        }
    }
    return plane;
}

}  // namespace viewer
