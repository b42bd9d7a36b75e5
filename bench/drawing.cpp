#include "texture_benchmarks.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <string>
#include <vector>

#include "measuring.h"
#include "texture/input_module/draw_picture.h"

#if defined(VXR_HAS_V3)
/// draw_picture, compiled for newer processors.
void draw_picture_v3(const BaseBitmap& bitmap, const PF_LayerDef& world);
#endif

namespace {

struct Frame {
    explicit Frame(std::int32_t size_px)
        : bytes(4 * static_cast<std::size_t>(size_px) * static_cast<std::size_t>(size_px), 1) {
        world.data = reinterpret_cast<PF_Pixel*>(bytes.data());
        world.row_bytes = 4 * size_px;
        world.width = size_px;
        world.height = size_px;
    }
    std::vector<unsigned char> bytes;
    PF_LayerDef world{};
};

/// Two calls per pixel, one for colour and one for alpha, each with bounds checks.
void draw_by_pixel(const BaseBitmap& bitmap, const PF_LayerDef& world) {
    for (std::int32_t y = 0; y < world.height; ++y) {
        unsigned char* const row =
            reinterpret_cast<unsigned char*>(world.data) + std::int64_t{y} * world.row_bytes;
        for (std::int32_t x = 0; x < world.width; ++x) {
            std::uint16_t red = 0;
            std::uint16_t green = 0;
            std::uint16_t blue = 0;
            std::uint16_t alpha = 0;
            bitmap.GetPixel(x, y, &red, &green, &blue);
            bitmap.GetAlphaPixel(1, x, y, &alpha);
            const unsigned char pixel[] = {
                static_cast<unsigned char>(alpha), static_cast<unsigned char>(red >> 8),
                static_cast<unsigned char>(green >> 8), static_cast<unsigned char>(blue >> 8)};
            std::memcpy(row + 4 * std::int64_t{x}, pixel, sizeof pixel);
        }
    }
}

using Draw = void (*)(const BaseBitmap&, const PF_LayerDef&);

void measure_drawing(benchmark::State& state, Draw draw) {
    const auto size_px = static_cast<std::int32_t>(state.range(0));
    Sample& sample = sample_of(PictureKind::photographic, size_px);
    require(load_texture(sample.txl, sample.warm), "load");
    Frame frame(size_px);
    Frame expected(size_px);
    draw(sample.warm.bitmap(), frame.world);
    draw_by_pixel(sample.warm.bitmap(), expected.world);
    require(frame.bytes == expected.bytes, "the drawn frame");
    while (state.KeepRunning()) {
        draw(sample.warm.bitmap(), frame.world);
        benchmark::ClobberMemory();
    }
}

/// Drawing reads eight bytes a pixel and writes four, which moves as much as copying six.
void measure_copy(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(6 * state.range(0) * state.range(0));
    const std::vector<unsigned char> from(count, 1);
    std::vector<unsigned char> to(count, 2);
    while (state.KeepRunning()) {
        std::memcpy(to.data(), from.data(), count);
        benchmark::DoNotOptimize(to.data());
        benchmark::ClobberMemory();
    }
    require(to == from, "the copy");
}

}  // namespace

void register_drawing(std::int64_t size_px) {
    const auto add = [size_px](const char* name, Draw draw) {
        benchmark::RegisterBenchmark(name, measure_drawing, draw)
            ->Arg(size_px)
            ->Unit(benchmark::kMillisecond);
    };
    add("draw/texture", draw_picture);
    add("draw/pixels", draw_by_pixel);
#if defined(VXR_HAS_V3)
    // The features of that level that the compiler may use.
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
        __builtin_cpu_supports("fma") && __builtin_cpu_supports("popcnt")) {
        add("draw/texture_v3", draw_picture_v3);
    }
#endif
    benchmark::RegisterBenchmark("draw/memcpy", measure_copy)->Arg(size_px)->Unit(benchmark::kMillisecond);
}
