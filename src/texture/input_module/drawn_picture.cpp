#include "texture/input_module/drawn_picture.h"

#include <algorithm>

#include "texture/fetch.h"
#include "texture/little_endian.h"

namespace {

/// Pixels between two requests for what comes: the smallest number that is whole cache lines everywhere.
constexpr std::int32_t kStretch = 32;

/// How many pixels ahead memory is asked for. A picture is larger than any cache, and the processor's own
/// guessing stops at the end of every page: without this, drawing takes half as long again.
constexpr std::int32_t kAhead = 512;

constexpr std::uint32_t kOpaque = 0xFF;

/// Asks for the cache lines of a stretch.
[[gnu::always_inline]] inline void FetchStretch(const DrawnRow& row, std::int32_t x) {
    constexpr std::int64_t kLineValues = 32;  // of 16 bits in a cache line
    const std::uint16_t* const rgb = row.rgb + 3 * std::int64_t{x};
    FetchToRead(rgb);
    FetchToRead(rgb + kLineValues);
    FetchToRead(rgb + 2 * kLineValues);
    if (row.alpha != nullptr)
        FetchToRead(row.alpha + x);
    FetchToWrite(row.argb + 4 * std::int64_t{x});
    FetchToWrite(row.argb + 4 * std::int64_t{x} + 2 * kLineValues);
}

void DrawOne(const DrawnRow& row, std::int64_t x) {
    const std::uint16_t* const rgb = row.rgb + 3 * x;
    const std::uint32_t alpha = row.alpha == nullptr ? kOpaque : row.alpha[x] & 0xFFU;
    StoreLittle(
        alpha | (rgb[0] & 0xFF00U) | std::uint32_t{rgb[1]} >> 8 << 16 | std::uint32_t{rgb[2]} >> 8 << 24,
        row.argb + 4 * x);
}

/// Byte `From` of `word`, moved to byte `To`.
template <unsigned From, unsigned To>
std::uint64_t Moved(std::uint64_t word) {
    constexpr std::uint64_t kByte = std::uint64_t{0xFF} << (8 * To);
    constexpr unsigned kUp = 8 * (std::max(From, To) - From);
    constexpr unsigned kDown = 8 * (std::max(From, To) - To);
    return word << kUp >> kDown & kByte;
}

template <bool HasAlpha>
void DrawFour(const DrawnRow& row, std::int64_t x) {
    // R G B R, G B R G, B R G B: the high byte of each is at an odd place.
    const std::uint64_t first = LoadFour(row.rgb + 3 * x);
    const std::uint64_t second = LoadFour(row.rgb + 3 * x + 4);
    const std::uint64_t third = LoadFour(row.rgb + 3 * x + 8);
    const std::uint64_t alpha = HasAlpha ? LoadFour(row.alpha + x) : kOpaque * 0x0001000100010001U;
    unsigned char* const argb = row.argb + 4 * x;
    StoreLittle(Moved<0, 0>(alpha) | Moved<1, 1>(first) | Moved<3, 2>(first) | Moved<5, 3>(first) |
                    Moved<2, 4>(alpha) | Moved<7, 5>(first) | Moved<1, 6>(second) | Moved<3, 7>(second),
                argb);
    StoreLittle(Moved<4, 0>(alpha) | Moved<5, 1>(second) | Moved<7, 2>(second) | Moved<1, 3>(third) |
                    Moved<6, 4>(alpha) | Moved<3, 5>(third) | Moved<5, 6>(third) | Moved<7, 7>(third),
                argb + 8);
}

/// The rows are copies, which no store into the frame can change as far as the compiler knows.
template <bool HasAlpha>
// cppcheck-suppress passedByValue
void Draw(const DrawnRow row, std::int32_t count, const DrawnRow next) {
    std::int32_t x = 0;
    for (; count - x >= kStretch; x += kStretch) {
        if (count - x >= kAhead + kStretch)
            FetchStretch(row, x + kAhead);
        else
            FetchStretch(next, std::clamp(x + kAhead - count, 0, count - kStretch));
        for (std::int32_t i = x; i < x + kStretch; i += 4)
            DrawFour<HasAlpha>(row, i);
    }
    for (; x < count; ++x)
        DrawOne(row, x);
}

// Where row `y` of the picture is drawn. The host's alpha is the picture's own, opaque for a picture without.
// Deliberately not what a lookup under channel number 0 gives: the bitmap refuses that number.
DrawnRow RowOf(const BaseBitmap& bitmap, const PF_LayerDef& world, A_long y) {
    // Rows of a host's frame may be padded, and may run upwards.
    unsigned char* const argb =
        reinterpret_cast<unsigned char*>(world.data) + std::int64_t{y} * world.row_bytes;
    return {bitmap.PixelRow(y), bitmap.AlphaRow(bitmap.GetChannelNum(0), y), argb};
}

}  // namespace

void DrawRow(const DrawnRow& row, std::int32_t count, const DrawnRow& next) {
    if (row.alpha != nullptr)
        Draw<true>(row, count, next);
    else
        Draw<false>(row, count, next);
}

void DrawPicture(const BaseBitmap& bitmap, const PF_LayerDef& world) {
    const A_long width = std::min(bitmap.width(), world.width);
    const A_long height = std::min(bitmap.height(), world.height);
    for (A_long y = 0; y < height; ++y)
        DrawRow(RowOf(bitmap, world, y), width, RowOf(bitmap, world, std::min(y + 1, height - 1)));
}
