#include "texture/value/alpha_use.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace {

using diagnostic::Severity;

constexpr std::uint8_t kOpaque = 255;

constexpr auto kUses = std::to_array<diagnostic::CodeRow<AlphaUse>>({
    {AlphaUse::straight,
     {"alpha-straight", Severity::note, "Some colour is above alpha, so it is not multiplied by alpha."}},
    {AlphaUse::premultiplied,
     {"alpha-premultiplied", Severity::note, "No colour is above alpha, as in colour multiplied by alpha."}},
    {AlphaUse::opaque,
     {"alpha-opaque", Severity::note,
      "Alpha is 255 in every pixel, so straight and premultiplied are the same."}},
});
static_assert(diagnostic::in_order(kUses, AlphaUse::opaque));

bool is_opaque(const PixelBuffer& alpha) {
    return std::all_of(alpha.begin(), alpha.end(), [](std::uint8_t value) { return value == kOpaque; });
}

std::int64_t pixels_above(const Texture& texture, std::int32_t y) {
    const auto channels = static_cast<std::size_t>(texture.channels());
    const auto width = static_cast<std::size_t>(texture.width_px);
    const std::size_t first = static_cast<std::size_t>(y) * width;
    const std::uint8_t* colour = texture.pixels.data() + first * channels;
    const std::uint8_t* const alpha = texture.alphas.front().values.data() + first;
    std::int64_t above = 0;
    if (channels == 1) {
        for (std::size_t x = 0; x < width; ++x) {
            above += colour[x] > alpha[x] ? 1 : 0;
        }
        return above;
    }
    for (std::size_t x = 0; x < width; ++x, colour += 3) {
        above += std::max({colour[0], colour[1], colour[2]}) > alpha[x] ? 1 : 0;
    }
    return above;
}

/// Replaces every byte of colour by `changed(colour, alpha)`.
template <typename Changed>
void change_colour(Texture& texture, const Changed& changed) {
    if (texture.alphas.empty()) {
        return;
    }
    const auto channels = static_cast<std::size_t>(texture.channels());
    const PixelBuffer& alpha = texture.alphas.front().values;
    for (std::size_t i = 0; i < texture.pixels.size(); ++i) {
        texture.pixels[i] = changed(texture.pixels[i], alpha[i / channels]);
    }
}

}  // namespace

std::span<const diagnostic::CodeRow<AlphaUse>> alpha_uses() {
    return kUses;
}

const diagnostic::CodeInfo& code_info(AlphaUse use) {
    return kUses[static_cast<std::size_t>(use)].info;
}

int AlphaFinding::percent() const {
    if (pixels_above == 0 || pixels_above == pixel_count) {
        return pixels_above == 0 ? 0 : 100;
    }
    const std::int64_t rounded = (pixels_above * 100 + pixel_count / 2) / pixel_count;
    return static_cast<int>(std::clamp<std::int64_t>(rounded, 1, 99));
}

AlphaFinding find_alpha_use(const Texture& texture, const RowSet& colour_rows) {
    AlphaFinding finding;
    finding.pixel_count = static_cast<std::int64_t>(texture.pixel_count());
    if (is_opaque(texture.alphas.front().values)) {
        return finding;
    }
    for (const RowSet::Range& range : colour_rows.ranges()) {
        for (std::int32_t y = range.begin; y < range.end; ++y) {
            finding.pixels_above += pixels_above(texture, y);
        }
    }
    finding.use = finding.pixels_above > 0 ? AlphaUse::straight : AlphaUse::premultiplied;
    return finding;
}

AlphaFinding find_alpha_use(const Texture& texture) {
    RowSet every_row;
    for (std::int32_t y = 0; y < texture.height_px; ++y) {
        every_row.add(y);
    }
    return find_alpha_use(texture, every_row);
}

std::string alpha_use_text(const AlphaFinding& finding) {
    switch (finding.use) {
        case AlphaUse::straight:
            return "colour above alpha in " + std::to_string(finding.percent()) +
                   " % of the pixels: straight; in After Effects choose Interpret Footage, Straight";
        case AlphaUse::premultiplied:
            return "no colour above alpha: premultiplied, as After Effects is told; there is nothing to "
                   "choose";
        case AlphaUse::opaque:
            break;
    }
    return "alpha is 255 in every pixel: straight and premultiplied are the same";
}

void multiply_by_alpha(Texture& texture) {
    change_colour(texture, [](std::uint8_t colour, std::uint8_t alpha) {
        return static_cast<std::uint8_t>((colour * alpha + kOpaque / 2) / kOpaque);
    });
}

std::uint8_t divided_by_alpha(std::uint8_t colour, std::uint8_t alpha) {
    return alpha == 0
               ? colour
               : static_cast<std::uint8_t>(std::min((colour * kOpaque + alpha / 2) / alpha, int{kOpaque}));
}

void divide_by_alpha(Texture& texture) {
    change_colour(texture, divided_by_alpha);
}
