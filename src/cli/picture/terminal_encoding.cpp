#include "cli/picture/terminal_encoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "text/base64.h"

namespace cli {
namespace {

using PixelColour = std::array<std::uint8_t, 3>;

PixelColour colour_at(const render::Picture& picture, std::int32_t x, std::int32_t y) {
    const std::uint8_t* const at =
        &picture.bytes[static_cast<std::size_t>(y) * picture.row_bytes() + static_cast<std::size_t>(x) * 4];
    return {at[0], at[1], at[2]};
}

/// The nearest of the 216 colours of the cube and the 24 greys, by their numbers in a terminal.
int numbered_colour(const PixelColour& colour) {
    constexpr std::array<int, 6> kLevels{0, 95, 135, 175, 215, 255};
    constexpr int kFirstOfCube = 16;
    constexpr int kFirstGrey = 232;
    constexpr int kGreys = 24;
    constexpr int kDarkestGrey = 8;
    constexpr int kGreyStep = 10;
    const auto squared = [](int difference) { return difference * difference; };
    int in_cube = 0;
    int cube_error = 0;
    int sum = 0;
    for (const int value : colour) {
        const auto* const nearest = std::min_element(kLevels.begin(), kLevels.end(), [&](int a, int b) {
            return std::abs(a - value) < std::abs(b - value);
        });
        in_cube = in_cube * static_cast<int>(kLevels.size()) + static_cast<int>(nearest - kLevels.begin());
        cube_error += squared(*nearest - value);
        sum += value;
    }
    const int step = std::clamp((sum / 3 - kDarkestGrey + kGreyStep / 2) / kGreyStep, 0, kGreys - 1);
    int grey_error = 0;
    for (const int value : colour) {
        grey_error += squared(kDarkestGrey + kGreyStep * step - value);
    }
    return grey_error < cube_error ? kFirstGrey + step : kFirstOfCube + in_cube;
}

/// The sequence for the colour of a character or of what is behind it.
std::string text_colour(bool behind, const PixelColour& colour, TextColours colours) {
    const std::string ground = behind ? "\x1b[48;" : "\x1b[38;";
    if (colours == TextColours::few) {
        return ground + "5;" + std::to_string(numbered_colour(colour)) + 'm';
    }
    return ground + "2;" + std::to_string(colour[0]) + ';' + std::to_string(colour[1]) + ';' +
           std::to_string(colour[2]) + 'm';
}

std::string shade_picture(const render::Picture& opaque) {
    constexpr std::array<const char*, 5> kShades{" ", "\u2591", "\u2592", "\u2593", "\u2588"};
    std::string text;
    for (std::int32_t y = 0; y < opaque.height_px; y += 2) {
        for (std::int32_t x = 0; x < opaque.width_px; ++x) {
            const std::int32_t rows = std::min(2, opaque.height_px - y);
            int light = 0;
            for (std::int32_t row = y; row < y + rows; ++row) {
                const PixelColour colour = colour_at(opaque, x, row);
                light += (2 * colour[0] + 7 * colour[1] + colour[2]) / 10;  // as bright as the eye sees them
            }
            text += kShades[static_cast<std::size_t>(light) * kShades.size() /
                            (static_cast<std::size_t>(rows) * 256)];
        }
        text += '\n';
    }
    return text;
}

// Six levels of red and blue and seven of green are 252 colours; terminals have 256.
constexpr std::array<int, 3> kSixelLevels{6, 7, 6};
constexpr std::size_t kSixelColours = 252;

/// The number of a colour among these. What lies between two levels alternates between them, in a pattern of
/// four by four pixels; what lies on a level stays exact.
std::size_t sixel_colour(const PixelColour& colour, std::int32_t x, std::int32_t y) {
    constexpr std::array<int, 16> kPattern{0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
    const int threshold = (2 * kPattern[static_cast<std::size_t>((y % 4) * 4 + x % 4)] + 1) * 255 / 32;
    int number = 0;
    for (std::size_t c = 0; c < colour.size(); ++c) {
        const int level = (colour[c] * (kSixelLevels[c] - 1) + threshold) / 255;
        number = number * kSixelLevels[c] + level;
    }
    return static_cast<std::size_t>(number);
}

/// Defines a colour: its levels in percent.
std::string sixel_definition(std::size_t number) {
    std::string levels;
    auto rest = static_cast<int>(number);
    for (std::size_t c = kSixelLevels.size(); c-- > 0;) {
        const int steps = kSixelLevels[c] - 1;
        levels.insert(0, ';' + std::to_string((rest % kSixelLevels[c] * 100 + steps / 2) / steps));
        rest /= kSixelLevels[c];
    }
    return '#' + std::to_string(number) + ";2" + levels;
}

/// One colour of a band: a character for each column, whose six low bits are pixels, the uppermost first.
/// Repetitions are counted, and nothing is written behind the last pixel.
void append_sixels(std::string& text, const std::uint8_t* bits, std::int32_t width) {
    constexpr std::uint8_t kNoPixels = '?';
    constexpr std::int32_t kWorthCounting = 4;
    while (width > 0 && bits[width - 1] == 0) {
        --width;
    }
    for (std::int32_t x = 0; x < width;) {
        const std::int32_t begin = x;
        while (x < width && bits[x] == bits[begin]) {
            ++x;
        }
        const char sixel = static_cast<char>(kNoPixels + bits[begin]);
        if (x - begin < kWorthCounting) {
            text.append(static_cast<std::size_t>(x - begin), sixel);
        } else {
            text += '!' + std::to_string(x - begin) + sixel;
        }
    }
}

}  // namespace

std::string kitty_picture(const render::Picture& opaque) {
    constexpr std::size_t kPiece = 4096;  // the most that the protocol allows in one sequence
    std::string colours;
    colours.reserve(opaque.bytes.size() / 4 * 3);
    for (std::size_t i = 0; i < opaque.bytes.size(); i += 4) {
        colours.append(reinterpret_cast<const char*>(&opaque.bytes[i]), 3);
    }
    const std::string data = text::base64_of(colours);
    std::string text;
    for (std::size_t at = 0; at < data.size(); at += kPiece) {
        // "q=2": the terminal answers nothing, because nobody listens.
        text += at > 0 ? "\x1b_G"
                       : "\x1b_Ga=T,q=2,f=24,s=" + std::to_string(opaque.width_px) +
                             ",v=" + std::to_string(opaque.height_px) + ',';
        text += at + kPiece < data.size() ? "m=1;" : "m=0;";
        text.append(data, at, kPiece);
        text += "\x1b\\";
    }
    return text + '\n';
}

// Written here and not taken from libsixel, because it is little: that library would have to be there
// wherever `vxr` runs, and most of it chooses palettes, which pictures of this size do not need.
std::string sixel_picture(const render::Picture& opaque) {
    constexpr std::int32_t kBand = 6;
    const auto width = static_cast<std::size_t>(opaque.width_px);
    // Aspect 1 : 1, and pixels that no colour sets stay as they are.
    std::string text =
        "\x1bP0;1q\"1;1;" + std::to_string(opaque.width_px) + ';' + std::to_string(opaque.height_px);
    std::array<bool, kSixelColours> defined{};
    std::vector<std::uint8_t> bits(kSixelColours * width);
    for (std::int32_t top = 0; top < opaque.height_px; top += kBand) {
        text += top == 0 ? "" : "-";
        std::array<bool, kSixelColours> used{};
        std::fill(bits.begin(), bits.end(), std::uint8_t{0});
        for (std::int32_t y = top; y < std::min(top + kBand, opaque.height_px); ++y) {
            for (std::int32_t x = 0; x < opaque.width_px; ++x) {
                const std::size_t number = sixel_colour(colour_at(opaque, x, y), x, y);
                used[number] = true;
                bits[number * width + static_cast<std::size_t>(x)] |=
                    static_cast<std::uint8_t>(1U << static_cast<unsigned>(y - top));
            }
        }
        bool first = true;
        for (std::size_t number = 0; number < kSixelColours; ++number) {
            if (!used[number]) {
                continue;
            }
            text += first ? "" : "$";  // back to the first column
            first = false;
            text += defined[number] ? '#' + std::to_string(number)
                                    : sixel_definition(number) + '#' + std::to_string(number);
            defined[number] = true;
            append_sixels(text, &bits[number * width], opaque.width_px);
        }
    }
    return text + "\x1b\\\n";
}

std::string block_picture(const render::Picture& opaque, TextColours colours) {
    if (colours == TextColours::none) {
        return shade_picture(opaque);
    }
    std::string text;
    for (std::int32_t y = 0; y < opaque.height_px; y += 2) {
        std::string upper_before;
        std::string lower_before;
        for (std::int32_t x = 0; x < opaque.width_px; ++x) {
            const std::string upper = text_colour(false, colour_at(opaque, x, y), colours);
            const std::string lower = y + 1 < opaque.height_px
                                          ? text_colour(true, colour_at(opaque, x, y + 1), colours)
                                          : std::string();
            text += upper == upper_before ? std::string() : upper;
            text += lower == lower_before ? std::string() : lower;
            text += "\u2580";
            upper_before = upper;
            lower_before = lower;
        }
        text += "\x1b[0m\n";
    }
    return text;
}

}  // namespace cli
