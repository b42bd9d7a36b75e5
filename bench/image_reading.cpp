#include "texture_benchmarks.h"

#include <OpenImageIO/imageio.h>
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "measuring.h"

namespace {

bool read_image(const std::string& path, std::int32_t size_px, std::vector<std::uint8_t>& pixels) {
    const auto input = OIIO::ImageInput::open(path);
    return input != nullptr && input->spec().width == size_px && input->spec().height == size_px &&
           input->spec().nchannels == 4 &&
           input->read_image(0, 0, 0, 4, OIIO::TypeDesc::UINT8, pixels.data()) && input->close();
}

bool is_picture(const std::vector<std::uint8_t>& pixels, const Texture& picture) {
    for (std::size_t i = 0; i < picture.pixel_count(); ++i) {
        const std::uint8_t* const pixel = pixels.data() + 4 * i;
        const std::uint8_t* const colour = picture.pixels.data() + 3 * i;
        if (pixel[0] != colour[0] || pixel[1] != colour[1] || pixel[2] != colour[2] ||
            pixel[3] != picture.alphas[0].values[i]) {
            return false;
        }
    }
    return true;
}

void measure_reading(benchmark::State& state, PictureKind kind, std::string Sample::*file) {
    OIIO::attribute("plugin_searchpath", VXR_PLUGIN_DIR);
    OIIO::attribute("threads", 1);  // for both files: the processor time of one thread is compared
    const auto size_px = static_cast<std::int32_t>(state.range(0));
    const Sample& sample = sample_of(kind, size_px);
    std::vector<std::uint8_t> pixels(4 * sample.picture.pixel_count());
    const std::string& path = sample.*file;
    const std::int64_t peak =
        peak_memory_bytes_once("image/" + path, [&] { require(read_image(path, size_px, pixels), path); });
    require(read_image(path, size_px, pixels), path + ": " + OIIO::geterror());
    require(is_picture(pixels, sample.picture), path + " reads different through the image library");
    while (state.KeepRunning()) {
        require(read_image(path, size_px, pixels), path);
    }
    state.counters["peak_bytes"] = static_cast<double>(peak);
    state.counters["pixels"] = static_cast<double>(sample.picture.pixel_count());
}

void measure_alphas(benchmark::State& state) {
    OIIO::attribute("plugin_searchpath", VXR_PLUGIN_DIR);
    OIIO::attribute("threads", 1);
    const std::string& path = layered_texture(state.range(0));
    const auto channels = static_cast<int>(3 + state.range(0));
    std::vector<std::uint8_t> pixels;
    const auto read = [&] {
        const auto input = OIIO::ImageInput::open(path);
        require(input != nullptr && input->spec().nchannels == channels, path + ": " + OIIO::geterror());
        pixels.resize(static_cast<std::size_t>(input->spec().image_pixels()) *
                      static_cast<std::size_t>(channels));
        require(input->read_image(0, 0, 0, channels, OIIO::TypeDesc::UINT8, pixels.data()), path);
    };
    read();
    while (state.KeepRunning()) {
        read();
    }
}

}  // namespace

void register_image_alphas() {
    for (std::int64_t alphas = 10; alphas <= 1'000; alphas *= 10) {
        benchmark::RegisterBenchmark("image/alphas", measure_alphas)
            ->Arg(alphas)
            ->Unit(benchmark::kMillisecond);
    }
}

void register_image_reading(PictureKind kind, std::int64_t size_px) {
    const auto add = [&](const std::string& name, std::string Sample::*file) {
        benchmark::RegisterBenchmark((name + picture_name(kind)).c_str(), measure_reading, kind, file)
            ->Arg(size_px)
            ->Unit(benchmark::kMillisecond);
    };
    add("image/texture/", &Sample::txl);
    add("image/tiff/", &Sample::tiff);
}
