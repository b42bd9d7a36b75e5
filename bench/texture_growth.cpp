#include "texture_benchmarks.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "measuring.h"
#include "support/temporary_folder.h"
#include "texture/txl_builder.h"
#include "texture/value/texture_file.h"
#include "texture/value/texture_report.h"

namespace {

// --- pixels: the total number, in a square picture

std::int32_t side_of(std::int64_t pixels) {
    return static_cast<std::int32_t>(std::lround(std::sqrt(static_cast<double>(pixels))));
}

void measure_pixel_loads(benchmark::State& state) {
    Sample& sample = sample_of(PictureKind::photographic, side_of(state.range(0)));
    while (state.KeepRunning()) {
        require(load_texture(sample.txl, sample.warm), "load");
    }
}

void measure_pixel_saves(benchmark::State& state) {
    Sample& sample = sample_of(PictureKind::photographic, side_of(state.range(0)));
    while (state.KeepRunning()) {
        require(save_texture("/dev/null", sample.picture), "save");
    }
}

// --- alpha channels; only the plain texture value keeps all of them

struct Layered {
    Texture picture;
    TemporaryFolder folder;
    std::string path = folder.path("layered.txl");
};

const Layered& layered(std::int64_t alphas) {
    static std::map<std::int64_t, std::unique_ptr<Layered>> known;
    std::unique_ptr<Layered>& one = known[alphas];
    if (one == nullptr) {
        constexpr std::int32_t kSize_px = 32;
        one = std::make_unique<Layered>();
        one->picture = make_picture(PictureKind::photographic, kSize_px);
        const PixelBuffer values = one->picture.alphas[0].values;
        for (std::int64_t i = 1; i < alphas; ++i) {
            one->picture.alphas.push_back({"Alpha." + std::to_string(i + 1), values});
        }
        require(!write_texture(one->path, one->picture), "the layered texture was not written");
        require(read_texture(one->path).texture == one->picture, "the layered texture reads different");
    }
    return *one;
}

void measure_alpha_loads(benchmark::State& state) {
    const Layered& file = layered(state.range(0));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(read_texture(file.path));
    }
}

void measure_alpha_saves(benchmark::State& state) {
    const Layered& file = layered(state.range(0));
    while (state.KeepRunning()) {
        require(save_texture("/dev/null", file.picture), "save");
    }
}

// --- chunks that nothing reads, each holding another chunk and a few values

std::string file_with_chunks(std::int64_t chunks) {
    HyperBytes bytes = HyperBytes().Header().Start(kChunkTexture, 0);
    bytes.Start(kChunkTextureHeader, 1).Long(1).Long(1).Long(Texture::kRgb).End();
    for (std::int64_t i = 0; i < chunks; ++i) {
        bytes.Start(4711, 1).Long(1).Block("some bytes").Start(4712, 0).Bool(1).End().End();
    }
    return bytes.End().bytes();
}

void measure_skips(benchmark::State& state) {
    const TemporaryFolder folder;
    const std::string path = folder.write("chunks.txl", file_with_chunks(state.range(0)));
    const TextureReading reading = read_texture(path);
    // The file has no rows either, which is another warning.
    const bool skipped =
        std::any_of(reading.warnings.begin(), reading.warnings.end(), [&](const auto& warning) {
            return warning.code == TextureNotice::chunk_skipped && warning.count == state.range(0);
        });
    require(reading.texture.has_value() && skipped, "skipped chunks");
    WarmPicture picture;
    while (state.KeepRunning()) {
        require(load_texture(path, picture), "load");
    }
}

struct Grown {
    const char* name;
    void (*measure)(benchmark::State&);
    std::int64_t least;
    std::int64_t most;
    int factor;
};

const Grown kGrown[] = {
    {"load/pixels", measure_pixel_loads, 4096, 16777216, 16},
    {"save/pixels", measure_pixel_saves, 4096, 16777216, 16},
    {"load/alphas", measure_alpha_loads, 10, 10000, 10},
    {"save/alphas", measure_alpha_saves, 10, 10000, 10},
    {"load/skipped_chunks", measure_skips, 1000, 1000000, 10},
};

}  // namespace

const std::string& layered_texture(std::int64_t alphas) {
    return layered(alphas).path;
}

void register_texture_growth() {
    for (const Grown& grown : kGrown) {
        for (std::int64_t size = grown.least; size <= grown.most; size *= grown.factor) {
            benchmark::RegisterBenchmark(grown.name, grown.measure)->Arg(size)->Unit(benchmark::kMillisecond);
        }
    }
}
