// How long a texture takes to load, save, read as an image and draw, compared with other programs doing the
// same work on the same pixels and with the work that any coding must do; and how the time grows.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "measuring.h"
#include "support/file_content.h"
#include "texture/value/texture_file.h"
#include "texture_benchmarks.h"
#include "texture_peers.h"
#include "texture_samples.h"

namespace {

/// The planes of row `y` of the sample.
PlaneRow planes_at(const Sample& sample, std::int32_t y) {
    PlaneRow row{};
    for (std::size_t plane = 0; plane < row.size(); ++plane) {
        row[plane] = sample.planes.data() + plane * sample.picture.pixel_count() +
                     static_cast<std::size_t>(y) * static_cast<std::size_t>(sample.size_px);
    }
    return row;
}

void expand(Sample& sample) {
    for (std::int32_t y = 0; y < sample.size_px; ++y) {
        expand_row(planes_at(sample, y), y, sample.warm.bitmap());
    }
    benchmark::ClobberMemory();
}

void split(Sample& sample) {
    std::vector<std::uint8_t> colour(3 * static_cast<std::size_t>(sample.size_px));
    for (std::int32_t y = 0; y < sample.size_px; ++y) {
        const PlaneRow row = split_row(sample.picture, y, colour.data());
        benchmark::DoNotOptimize(row);
        benchmark::ClobberMemory();
    }
}

/// The split, and as many bytes as a saved texture has into a file.
void split_and_write(Sample& sample) {
    static std::map<const Sample*, std::string> saved;  // the first run, which is not timed, reads it
    std::string& bytes = saved[&sample];
    if (bytes.empty()) {
        bytes = content_of(sample.txl);
    }
    split(sample);
    const std::string path = sample.folder.path("written");
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    require(written == static_cast<ssize_t>(bytes.size()) && ::close(file) == 0, "write");
}

struct Way {
    const char* name;
    void (*run)(Sample&);
    std::string Sample::*file;  ///< the file that is loaded or that saving produces
};

constexpr char kNowhere[] = "/dev/null";

// Saving from a bitmap is not measured: its adapter reads back colour as 0, so the benchmark would time a
// black picture.
const Way kWays[] = {
    {"load/texture", [](Sample& sample) { require(load_texture(sample.txl, sample.warm), "load"); },
     &Sample::txl},
    {"load/tiff", [](Sample& sample) { require(load_tiff(sample.tiff, sample.warm.bitmap()), "load"); },
     &Sample::tiff},
    {"expand", expand, &Sample::txl},
    {"load/bitmap",
     [](Sample& sample) {
         BaseBitmap bitmap;
         require(load_bitmap(sample.txl, bitmap), "load");
     },
     &Sample::txl},
    {"load/facade", [](Sample& sample) { benchmark::DoNotOptimize(read_texture(sample.txl)); }, &Sample::txl},
    {"save/texture", [](Sample& sample) { require(save_texture(kNowhere, sample.picture), "save"); },
     &Sample::txl},
    {"save/tiff", [](Sample& sample) { require(save_tiff_nowhere(sample.picture), "save"); }, &Sample::tiff},
    {"split", split, &Sample::txl},
    {"split_write", split_and_write, &Sample::txl},
    {"save_file/texture", [](Sample& sample) { require(save_texture(sample.txl, sample.picture), "save"); },
     &Sample::txl},
    {"save_file/tiff", [](Sample& sample) { require(save_tiff(sample.tiff, sample.picture), "save"); },
     &Sample::tiff},
};

/// Reports bytes of pixels per second, so that all ways and kinds compare.
void measure(benchmark::State& state, PictureKind kind, const Way& way) {
    Sample& sample = sample_of(kind, static_cast<std::int32_t>(state.range(0)));
    const std::int64_t peak =
        peak_memory_bytes_once(std::string(way.name) + "/" + sample.name(), [&] { way.run(sample); });
    while (state.KeepRunning()) {
        way.run(sample);
    }
    const std::size_t raw_bytes = sample.picture.pixel_count() * 4;
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(raw_bytes));
    state.counters["ratio"] =
        static_cast<double>(raw_bytes) / static_cast<double>(std::filesystem::file_size(sample.*way.file));
    state.counters["peak_bytes"] = static_cast<double>(peak);
    state.counters["pixels"] = static_cast<double>(sample.picture.pixel_count());
}

}  // namespace

int main(int argc, char** argv) {
    keep_freed_memory();
    constexpr std::int64_t kSmall_px = 256;
    constexpr std::int64_t kLarge_px = 4096;
    for (const std::int64_t size_px : {kSmall_px, kLarge_px}) {
        for (const PictureKind kind : {PictureKind::flat, PictureKind::photographic, PictureKind::noise}) {
            for (const Way& way : kWays) {
                benchmark::RegisterBenchmark((std::string(way.name) + "/" + picture_name(kind)).c_str(),
                                             measure, kind, way)
                    ->Arg(size_px)
                    ->Unit(benchmark::kMillisecond);
            }
            register_image_reading(kind, size_px);
        }
        register_drawing(size_px);
    }
    register_image_alphas();
    register_texture_growth();
    return run_benchmarks(argc, argv);
}
