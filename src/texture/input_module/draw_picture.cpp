#include "texture/input_module/draw_picture.h"

#include <algorithm>

#include "texture/file/little_endian.h"
#include "texture/kernel/cache_hints.h"
#include "texture/kernel/planes16.h"
#include "texture/kernel/expand_to_16_bits.h"

namespace {

/// Pixels between two requests for what comes: the smallest number that is whole cache lines everywhere.
constexpr std::int32_t kStretch = 32;

/// How many pixels ahead memory is asked for. A picture is larger than any cache, and the processor's own
/// guessing stops at the end of every page: without this, drawing takes half as long again.
constexpr std::int32_t kAhead = 512;

constexpr std::uint32_t kOpaque = 0xFF;

/// Asks for the cache lines of a stretch, those of the frame unless they are passed by.
template <bool Streamed>
[[gnu::always_inline]] inline void FetchStretch(const DrawnRow& row, std::int32_t x) {
    constexpr std::int64_t kLineValues = 32;  // of 16 bits in a cache line
    const std::uint16_t* const rgb = row.rgb + 3 * std::int64_t{x};
    FetchToRead(rgb);
    FetchToRead(rgb + kLineValues);
    FetchToRead(rgb + 2 * kLineValues);
    if (row.alpha != nullptr)
        FetchToRead(row.alpha + x);
    if constexpr (!Streamed) {
        FetchToWrite(row.argb + 4 * std::int64_t{x});
        FetchToWrite(row.argb + 4 * std::int64_t{x} + 2 * kLineValues);
    }
}

void DrawOne(const DrawnRow& row, std::int64_t x) {
    const std::uint16_t* const rgb = row.rgb + 3 * x;
    const std::uint32_t alpha = row.alpha == nullptr ? kOpaque : row.alpha[x] & 0xFFU;
    StoreLittle(
        alpha | (rgb[0] & 0xFF00U) | std::uint32_t{rgb[1]} >> 8 << 16 | std::uint32_t{rgb[2]} >> 8 << 24,
        row.argb + 4 * x);
}

[[gnu::always_inline]] inline Bytes16 HighBytesAt(const std::uint16_t* values) {
    return HighBytes(LoadBytes16(values), LoadBytes16(values + 8));
}

template <bool Streamed>
[[gnu::always_inline]] inline void StorePixels(Bytes16 pixels, unsigned char* argb) {
    if constexpr (Streamed)
        StreamBytes16(pixels, argb);
    else
        StoreBytes16(pixels, argb);
}

template <bool HasAlpha, bool Streamed>
[[gnu::always_inline]] inline void DrawSixteen(const DrawnRow& row, std::int64_t x) {
    const std::uint16_t* const rgb = row.rgb + 3 * x;
    const Pixels16 planes = Split16({HighBytesAt(rgb), HighBytesAt(rgb + 16), HighBytesAt(rgb + 32)});
    const Bytes16 alpha = HasAlpha ? LowBytes(LoadBytes16(row.alpha + x), LoadBytes16(row.alpha + x + 8))
                                   : Bytes16{} + static_cast<unsigned char>(kOpaque);
    const Bytes16 alpha_red_low = ZipLow(alpha, planes.first);
    const Bytes16 alpha_red_high = ZipHigh(alpha, planes.first);
    const Bytes16 green_blue_low = ZipLow(planes.second, planes.third);
    const Bytes16 green_blue_high = ZipHigh(planes.second, planes.third);
    unsigned char* const argb = row.argb + 4 * x;
    StorePixels<Streamed>(ZipPairsLow(alpha_red_low, green_blue_low), argb);
    StorePixels<Streamed>(ZipPairsHigh(alpha_red_low, green_blue_low), argb + 16);
    StorePixels<Streamed>(ZipPairsLow(alpha_red_high, green_blue_high), argb + 32);
    StorePixels<Streamed>(ZipPairsHigh(alpha_red_high, green_blue_high), argb + 48);
}

/// The rows are copies, which no store into the frame can change as far as the compiler knows.
template <bool HasAlpha, bool Streamed>
// cppcheck-suppress passedByValue
void Draw(const DrawnRow row, std::int32_t count, const DrawnRow next) {
    std::int32_t x = 0;
    if constexpr (Streamed) {
        for (; x < count && reinterpret_cast<std::uintptr_t>(row.argb + 4 * std::int64_t{x}) % 16 != 0; ++x)
            DrawOne(row, x);
    }
    for (; count - x >= kStretch; x += kStretch) {
        if (count - x >= kAhead + kStretch)
            FetchStretch<Streamed>(row, x + kAhead);
        else
            FetchStretch<Streamed>(next, std::clamp(x + kAhead - count, 0, count - kStretch));
        DrawSixteen<HasAlpha, Streamed>(row, x);
        DrawSixteen<HasAlpha, Streamed>(row, x + kStretch / 2);
    }
    if constexpr (Streamed)
        EndStream();
    for (; x < count; ++x)
        DrawOne(row, x);
}

template <bool HasAlpha>
void DrawInto(FrameMemory memory, const DrawnRow& row, std::int32_t count, const DrawnRow& next) {
    // Pixels that lie across words are not streamed: no number of them reaches an address to begin at.
    if (memory == FrameMemory::past_caches && reinterpret_cast<std::uintptr_t>(row.argb) % 4 == 0)
        Draw<HasAlpha, true>(row, count, next);
    else
        Draw<HasAlpha, false>(row, count, next);
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

void DrawRow(const DrawnRow& row, std::int32_t count, const DrawnRow& next, FrameMemory memory) {
    if (row.alpha != nullptr)
        DrawInto<true>(memory, row, count, next);
    else
        DrawInto<false>(memory, row, count, next);
}

void DrawPicture(const BaseBitmap& bitmap, const PF_LayerDef& world) {
    const A_long width = std::min(bitmap.width(), world.width);
    const A_long height = std::min(bitmap.height(), world.height);
    const FrameMemory memory = std::int64_t{4} * width * height >= kStreamedPictureBytes
                                   ? FrameMemory::past_caches
                                   : FrameMemory::through_caches;
    for (A_long y = 0; y < height; ++y)
        DrawRow(RowOf(bitmap, world, y), width, RowOf(bitmap, world, std::min(y + 1, height - 1)), memory);
}
