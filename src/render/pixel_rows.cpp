#include "render/pixel_rows.h"

#include <algorithm>
#include <cmath>

#include "render/compositing.h"

namespace render {
namespace {

constexpr float kFullByte = 255.0F;
constexpr float kRounding = 0.5F;  ///< of values that are not negative; faster than the library's functions

std::uint8_t byte_of(float value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 1.0F) * kFullByte + kRounding);
}

// From a value of sRGB, IEC 61966-2-1, to linear light; both from 0 to 1.
double linear_light(double stored) {
    return stored <= 0.04045 ? stored / 12.92 : std::pow((stored + 0.055) / 1.055, 2.4);
}

}  // namespace

RowReader::RowReader(const Meaning& meaning) : meaning_(meaning) {
    for (std::size_t byte = 0; byte < colour_.size(); ++byte) {
        const double value = static_cast<double>(byte) / kFullByte;
        colour_[byte] = static_cast<float>(meaning.light == Light::linear ? linear_light(value) : value);
        coverage_[byte] = static_cast<float>(meaning.inverted ? 1 - value : value);
    }
}

void RowReader::read(const std::uint8_t* bytes, float* row, std::size_t pixels) const {
    if (meaning_.coverage == Coverage::premultiplied) {
        return take_off_matte(bytes, row, pixels);
    }
    const bool full = meaning_.coverage == Coverage::full;
    for (std::size_t i = 0; i < pixels; ++i, bytes += kChannels, row += kChannels) {
        const float coverage = full ? 1.0F : coverage_[bytes[3]];
        for (std::size_t channel = 0; channel < 3; ++channel) {
            row[channel] = colour_[bytes[channel]] * coverage;
        }
        row[3] = coverage;
    }
}

void RowReader::take_off_matte(const std::uint8_t* bytes, float* row, std::size_t pixels) const {
    const bool black = std::all_of(meaning_.matte.begin(), meaning_.matte.end(),
                                   [](std::uint8_t value) { return value == 0; });
    // Over black and blended as stored, the colour of the file is what a row holds.
    if (black && meaning_.light == Light::as_stored) {
        for (std::size_t i = 0; i < pixels; ++i, bytes += kChannels, row += kChannels) {
            const float coverage = coverage_[bytes[3]];
            for (std::size_t channel = 0; channel < 3; ++channel) {
                row[channel] = std::min(colour_[bytes[channel]], coverage);
            }
            row[3] = coverage;
        }
        return;
    }
    for (std::size_t i = 0; i < pixels; ++i, bytes += kChannels, row += kChannels) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            row[channel] = off_matte(bytes[channel], bytes[3], channel);
        }
        row[3] = coverage_[bytes[3]];
    }
}

float RowReader::off_matte(std::uint8_t colour, std::uint8_t alpha, std::size_t channel) const {
    const float coverage = coverage_[alpha];
    if (coverage <= 0) {
        return 0;
    }
    const float matte = static_cast<float>(meaning_.matte[channel]) / kFullByte;
    const float covered = static_cast<float>(colour) / kFullByte - (1.0F - coverage) * matte;
    const float straight = std::clamp(covered / coverage, 0.0F, 1.0F);
    return coverage *
           (meaning_.light == Light::linear ? static_cast<float>(linear_light(straight)) : straight);
}

/// Where the byte of a value of linear light changes: below `rises[n]` it is at most n.
struct RowWriter::Steps {
    static constexpr std::size_t kGuesses = 4096;
    std::array<float, 255> rises{};
    std::array<std::uint8_t, kGuesses + 1> guesses{};  ///< the byte of the lowest value of each interval

    Steps() {
        for (std::size_t byte = 0; byte < rises.size(); ++byte) {
            rises[byte] = static_cast<float>(linear_light((static_cast<double>(byte) + 0.5) / kFullByte));
        }
        for (std::size_t i = 0; i < guesses.size(); ++i) {
            const float value = static_cast<float>(i) / static_cast<float>(kGuesses);
            guesses[i] = static_cast<std::uint8_t>(std::upper_bound(rises.begin(), rises.end(), value) -
                                                   rises.begin());
        }
    }

    [[nodiscard]] std::uint8_t byte_of(float value) const {
        const float inside = std::clamp(value, 0.0F, 1.0F);
        std::size_t byte = guesses[static_cast<std::size_t>(inside * static_cast<float>(kGuesses))];
        while (byte < rises.size() && rises[byte] <= inside) {
            ++byte;
        }
        return static_cast<std::uint8_t>(byte);
    }
};

RowWriter::RowWriter(Light light)
    : steps_(light == Light::linear ? std::make_unique<const Steps>() : nullptr) {}

RowWriter::~RowWriter() = default;

void RowWriter::write(const float* row, std::uint8_t* bytes, std::size_t pixels) const {
    for (std::size_t i = 0; i < pixels; ++i, row += kChannels, bytes += kChannels) {
        const float coverage = row[3];
        const float divisor = coverage > 0 ? 1.0F / coverage : 0.0F;
        for (std::size_t channel = 0; channel < 3; ++channel) {
            const float straight = row[channel] * divisor;
            bytes[channel] = steps_ ? steps_->byte_of(straight) : byte_of(straight);
        }
        bytes[3] = byte_of(coverage);
    }
}

}  // namespace render
