#include "texture/input_module/draw_picture.h"

#include <algorithm>

#include "texture/file/byte_order.h"
#include "texture/kernel/cache_hints.h"
#include "texture/kernel/expand_to_16_bits.h"
#include "texture/kernel/planes.h"

namespace {

/// Pixels per prefetch: the smallest number that fills whole cache lines in every array.
constexpr std::int32_t kStretch = 32;

/// How many pixels ahead memory is prefetched. A picture is larger than any cache, and the processor's own
/// prefetcher stops at the end of every page: without this, drawing takes half as long again.
constexpr std::int32_t kAhead = 512;

constexpr std::uint32_t kOpaque = 0xFF;

/// Prefetches the cache lines of a stretch, including those of the frame unless stores bypass the caches.
template <bool Streamed>
[[gnu::always_inline]] inline void prefetch_stretch(const DrawnRow& row, std::int32_t x) {
    constexpr std::int64_t kLineValues = 32;  // of 16 bits in a cache line
    const std::uint16_t* const rgb = row.rgb + 3 * std::int64_t{x};
    prefetch_to_read(rgb);
    prefetch_to_read(rgb + kLineValues);
    prefetch_to_read(rgb + 2 * kLineValues);
    if (row.alpha != nullptr) {
        prefetch_to_read(row.alpha + x);
    }
    if constexpr (!Streamed) {
        prefetch_to_write(row.argb + 4 * std::int64_t{x});
        prefetch_to_write(row.argb + 4 * std::int64_t{x} + 2 * kLineValues);
    }
}

void draw_one(const DrawnRow& row, std::int64_t x) {
    const std::uint16_t* const rgb = row.rgb + 3 * x;
    const std::uint32_t alpha = row.alpha == nullptr ? kOpaque : row.alpha[x] & 0xFFU;
    store_little_endian(
        alpha | (rgb[0] & 0xFF00U) | std::uint32_t{rgb[1]} >> 8 << 16 | std::uint32_t{rgb[2]} >> 8 << 24,
        row.argb + 4 * x);
}

[[gnu::always_inline]] inline u8x16 high_bytes_at(const std::uint16_t* values) {
    return high_bytes(load_u8x16(values), load_u8x16(values + 8));
}

template <bool Streamed>
[[gnu::always_inline]] inline void store_pixels(u8x16 pixels, unsigned char* argb) {
    if constexpr (Streamed) {
        stream_u8x16(pixels, argb);
    } else {
        store_u8x16(pixels, argb);
    }
}

template <bool HasAlpha, bool Streamed>
[[gnu::always_inline]] inline void draw_sixteen(const DrawnRow& row, std::int64_t x) {
    const std::uint16_t* const rgb = row.rgb + 3 * x;
    const Pixels16 planes = split_16({high_bytes_at(rgb), high_bytes_at(rgb + 16), high_bytes_at(rgb + 32)});
    const u8x16 alpha = HasAlpha ? low_bytes(load_u8x16(row.alpha + x), load_u8x16(row.alpha + x + 8))
                                 : u8x16{} + static_cast<unsigned char>(kOpaque);
    const u8x16 alpha_red_low = zip_low(alpha, planes.first);
    const u8x16 alpha_red_high = zip_high(alpha, planes.first);
    const u8x16 green_blue_low = zip_low(planes.second, planes.third);
    const u8x16 green_blue_high = zip_high(planes.second, planes.third);
    unsigned char* const argb = row.argb + 4 * x;
    store_pixels<Streamed>(zip_pairs_low(alpha_red_low, green_blue_low), argb);
    store_pixels<Streamed>(zip_pairs_high(alpha_red_low, green_blue_low), argb + 16);
    store_pixels<Streamed>(zip_pairs_low(alpha_red_high, green_blue_high), argb + 32);
    store_pixels<Streamed>(zip_pairs_high(alpha_red_high, green_blue_high), argb + 48);
}

/// Takes the rows by value, so that the compiler knows that no store into the frame can change them.
template <bool HasAlpha, bool Streamed>
// cppcheck-suppress passedByValue
void draw(const DrawnRow row, std::int32_t count, const DrawnRow next) {
    std::int32_t x = 0;
    if constexpr (Streamed) {
        for (; x < count && reinterpret_cast<std::uintptr_t>(row.argb + 4 * std::int64_t{x}) % 16 != 0; ++x) {
            draw_one(row, x);
        }
    }
    for (; count - x >= kStretch; x += kStretch) {
        if (count - x >= kAhead + kStretch) {
            prefetch_stretch<Streamed>(row, x + kAhead);
        } else {
            prefetch_stretch<Streamed>(next, std::clamp(x + kAhead - count, 0, count - kStretch));
        }
        draw_sixteen<HasAlpha, Streamed>(row, x);
        draw_sixteen<HasAlpha, Streamed>(row, x + kStretch / 2);
    }
    if constexpr (Streamed) {
        end_stream();
    }
    for (; x < count; ++x) {
        draw_one(row, x);
    }
}

template <bool HasAlpha>
void draw_into(FrameMemory memory, const DrawnRow& row, std::int32_t count, const DrawnRow& next) {
    // Streaming needs aligned stores, and pixels that straddle words never reach an aligned address.
    if (memory == FrameMemory::past_caches && reinterpret_cast<std::uintptr_t>(row.argb) % 4 == 0) {
        draw<HasAlpha, true>(row, count, next);
    } else {
        draw<HasAlpha, false>(row, count, next);
    }
}

// Row `y` of the picture and its place in the frame. Draws the picture's own alpha, and opaque pixels without
// one. Deliberately does not look alpha up under channel number 0: the bitmap refuses that number.
DrawnRow row_of(const BaseBitmap& bitmap, const PF_LayerDef& world, A_long y) {
    // Rows of a host's frame may be padded, and may run from bottom to top.
    unsigned char* const argb =
        reinterpret_cast<unsigned char*>(world.data) + std::int64_t{y} * world.row_bytes;
    return {bitmap.PixelRow(y), bitmap.AlphaRow(bitmap.GetChannelNum(0), y), argb};
}

}  // namespace

void draw_row(const DrawnRow& row, std::int32_t count, const DrawnRow& next, FrameMemory memory) {
    if (row.alpha != nullptr) {
        draw_into<true>(memory, row, count, next);
    } else {
        draw_into<false>(memory, row, count, next);
    }
}

void draw_picture(const BaseBitmap& bitmap, const PF_LayerDef& world) {
    const A_long width = std::min(bitmap.width(), world.width);
    const A_long height = std::min(bitmap.height(), world.height);
    const FrameMemory memory = std::int64_t{4} * width * height >= kStreamedPictureBytes
                                   ? FrameMemory::past_caches
                                   : FrameMemory::through_caches;
    for (A_long y = 0; y < height; ++y) {
        draw_row(row_of(bitmap, world, y), width, row_of(bitmap, world, std::min(y + 1, height - 1)), memory);
    }
}
