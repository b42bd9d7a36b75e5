// How long a texture takes to load and to save, how small it becomes and how much memory that needs, beside
// libtiff doing the same work on the same pixels.

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "measuring.h"
#include "pictures.h"
#include "support/temporary_folder.h"
#include "texture/base_bitmap.h"
#include "texture/example_txl_image.h"
#include "texture/texture_file.h"
#include "texture/txl_image_filter.h"
#include "tiff_peer.h"

namespace {

/// One picture and its two files.
struct Sample {
    PictureKind kind;
    std::int32_t size_px;
    TemporaryFolder folder;
    Texture picture;
    std::string txl = folder.path("picture.txl");
    std::string tiff = folder.path("picture.tif");

    Sample(PictureKind kind_wanted, std::int32_t size_wanted_px)
        : kind(kind_wanted), size_px(size_wanted_px), picture(make_picture(kind_wanted, size_wanted_px)) {}

    [[nodiscard]] std::string name() const {
        return std::string(picture_name(kind)) + "/" + std::to_string(size_px);
    }
    [[nodiscard]] std::size_t raw_bytes() const { return picture.pixel_count() * 4; }
};

bool load_bitmap(const std::string& path, BaseBitmap& bitmap) {
    ExampleTXLImage image(&bitmap);
    return TXLImageFilter().LoadImage(path.c_str(), &image);
}

bool holds(const BaseBitmap& bitmap, const Texture& picture) {
    if (bitmap.width() != picture.width_px || bitmap.height() != picture.height_px)
        return false;
    const std::uint8_t* color = picture.pixels.data();
    const std::uint8_t* alpha = picture.alphas[0].values.data();
    for (std::int32_t y = 0; y < picture.height_px; ++y) {
        for (std::int32_t x = 0; x < picture.width_px; ++x, color += 3, ++alpha) {
            std::uint16_t r = 0;
            std::uint16_t g = 0;
            std::uint16_t b = 0;
            std::uint16_t a = 0;
            // The bitmap keeps colour times 256 and alpha as it is.
            if (bitmap.GetPixel(x, y, &r, &g, &b) != 0 || bitmap.GetAlphaPixel(1, x, y, &a) != 0 ||
                r != color[0] * 256 || g != color[1] * 256 || b != color[2] * 256 || a != *alpha)
                return false;
        }
    }
    return true;
}

/// Writes both files and requires the same pixels back from all three ways of loading.
void check(const Sample& sample) {
    const std::string name = sample.name() + ": ";
    require(!write_texture(sample.txl, sample.picture), name + "the texture was not written");
    require(write_tiff(sample.tiff, sample.picture), name + "the TIFF was not written");
    require(read_texture(sample.txl).texture == sample.picture, name + "the texture reads back different");
    require(read_tiff(sample.tiff) == sample.picture, name + "the TIFF reads back different");
    BaseBitmap bitmap;
    require(load_bitmap(sample.txl, bitmap), name + "the texture does not load into a bitmap");
    require(holds(bitmap, sample.picture), name + "the bitmap holds different pixels");
}

/// The sample of these arguments, checked. One is kept: benchmarks come ordered by sample.
const Sample& sample_of(PictureKind kind, std::int32_t size_px) {
    static std::unique_ptr<Sample> kept;
    if (!kept || kept->kind != kind || kept->size_px != size_px) {
        kept.reset();
        kept = std::make_unique<Sample>(kind, size_px);
        check(*kept);
    }
    return *kept;
}

struct Way {
    const char* name;
    void (*run)(const Sample&);
    std::string Sample::*file;  ///< what is loaded or saved
};

// There is no saving from a bitmap: read back through its adapter its colour is 0 throughout, so what would
// be timed is a black picture.
const Way kWays[] = {
    {"save/facade",
     [](const Sample& sample) { benchmark::DoNotOptimize(write_texture(sample.txl, sample.picture)); },
     &Sample::txl},
    {"save/tiff",
     [](const Sample& sample) { benchmark::DoNotOptimize(write_tiff(sample.tiff, sample.picture)); },
     &Sample::tiff},
    {"load/facade", [](const Sample& sample) { benchmark::DoNotOptimize(read_texture(sample.txl)); },
     &Sample::txl},
    {"load/bitmap",
     [](const Sample& sample) {
         BaseBitmap bitmap;
         benchmark::DoNotOptimize(load_bitmap(sample.txl, bitmap));
     },
     &Sample::txl},
    {"load/tiff", [](const Sample& sample) { benchmark::DoNotOptimize(read_tiff(sample.tiff)); },
     &Sample::tiff},
};

/// Bytes a second are those of the pixels, so that ways and kinds compare.
void measure(benchmark::State& state, PictureKind kind, const Way& way) {
    const Sample& sample = sample_of(kind, static_cast<std::int32_t>(state.range(0)));
    const std::int64_t peak =
        peak_memory_bytes_once(std::string(way.name) + "/" + sample.name(), [&] { way.run(sample); });
    while (state.KeepRunning())
        way.run(sample);
    const auto raw = static_cast<double>(sample.raw_bytes());
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sample.raw_bytes()));
    state.counters["ratio"] = raw / static_cast<double>(std::filesystem::file_size(sample.*way.file));
    state.counters["peak_bytes"] = static_cast<double>(peak);
}

}  // namespace

int main(int argc, char** argv) {
    constexpr std::int64_t kSmall_px = 256;
    constexpr std::int64_t kLarge_px = 4096;
    for (const std::int64_t size_px : {kSmall_px, kLarge_px})
        for (const PictureKind kind : {PictureKind::flat, PictureKind::photographic, PictureKind::noise})
            for (const Way& way : kWays)
                benchmark::RegisterBenchmark((std::string(way.name) + "/" + picture_name(kind)).c_str(),
                                             measure, kind, way)
                    ->Arg(size_px)
                    ->Unit(benchmark::kMillisecond);
    return run_benchmarks(argc, argv);
}
