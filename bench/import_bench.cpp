// How long a composition file takes: imported through the loaded bundle on the embedded host, read alone, and
// looked at byte by byte; and how each of that grows with what the file holds.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "composition/ascii_parser.h"
#include "composition/composition_file.h"
#include "composition/project_settings.h"
#include "composition_text.h"
#include "embedded/host.h"
#include "measuring.h"
#include "support/temporary_folder.h"

namespace {

struct Scene {
    const char* name;
    SceneShape shape;
};

// Read as "FACTOR/NUMBER": what grows from row to row, the rest being held. A null or light without keys
// would be no load at all, so growing objects have ten each.
const Scene kScenes[] = {
    {"keys_in_100_objects/100000", {.objects = 100, .keys_per_object = 1000}},
    {"keys_in_one_object/1000", {.objects = 1, .keys_per_object = 1000}},
    {"keys_in_one_object/10000", {.objects = 1, .keys_per_object = 10000}},
    {"keys_in_one_object/100000", {.objects = 1, .keys_per_object = 100000}},
    {"objects/100", {.objects = 100, .keys_per_object = 10}},
    {"objects/1000", {.objects = 1000, .keys_per_object = 10}},
    {"objects/10000", {.objects = 10000, .keys_per_object = 10}},
    {"nesting/10", {.nesting = 10}},
    {"nesting/100", {.nesting = 100}},
    {"nesting/1000", {.nesting = 1000}},
    {"layers/100", {.layers = 100}},
    {"layers/1000", {.layers = 1000}},
    {"layers/10000", {.layers = 10000}},
};

/// The file of a scene. The folder goes at the end of the program.
const std::string& scene_file(const Scene& scene) {
    static const TemporaryFolder folder;
    static std::map<std::string, std::string> written;
    std::string& path = written[scene.name];
    if (path.empty())
        path = folder.write("scene" + std::to_string(written.size()) + ".aec", composition_text(scene.shape));
    return path;
}

std::size_t file_bytes(const std::string& path) {
    return static_cast<std::size_t>(std::filesystem::file_size(path));
}

// --- importing

std::unique_ptr<embedded::Host> loaded_host() {
    auto host = std::make_unique<embedded::Host>();
    const embedded::LoadResult loaded = host->load(VXR_BUNDLE);
    require(loaded.ok(), "the bundle was not loaded: " + loaded.error);
    return host;
}

std::size_t position_keys(const embedded::Layer& layer) {
    const auto stream = layer.streams.find(kLayerStreamPosition);
    return stream == layer.streams.end() ? 0 : stream->second.keyframes.size();
}

/// Every key of every object has arrived, in every composition that there should be, without a complaint.
void check_import(embedded::Host& host, const Scene& scene) {
    const std::string name = std::string("import of ") + scene.name + ": ";
    const embedded::CallbackResult result = host.import_file(scene_file(scene));
    require(result.code == kHostErrorNone, name + "host error " + std::to_string(result.code));
    require(host.messages().empty(), name + "the user was shown a message");
    require(host.discipline().clean(), name + "the discipline report is not empty");

    const SceneShape& shape = scene.shape;
    const embedded::Project& project = host.project();
    require(project.compositions.size() == static_cast<std::size_t>(shape.nesting), name + "compositions");
    const std::int64_t layers = std::int64_t{shape.nesting} - 1 + shape.layers + shape.objects;
    require(static_cast<std::int64_t>(project.layers.size()) == layers, name + "layers");
    std::size_t keys = 0;
    for (const embedded::Layer& layer : project.layers)
        keys += position_keys(layer);
    const std::size_t expected =
        static_cast<std::size_t>(shape.objects) * static_cast<std::size_t>(shape.keys_per_object);
    require(keys == expected, name + std::to_string(keys) + " keys instead of " + std::to_string(expected));
}

void measure_import(benchmark::State& state, const Scene& scene) {
    const std::string& path = scene_file(scene);
    std::unique_ptr<embedded::Host> host = loaded_host();
    const std::int64_t peak =
        peak_memory_bytes_once(std::string("import/") + scene.name, [&] { check_import(*host, scene); });
    while (state.KeepRunning()) {
        state.PauseTiming();
        host.reset();  // one host at a time
        host = loaded_host();
        state.ResumeTiming();
        benchmark::DoNotOptimize(host->import_file(path));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file_bytes(path)));
    state.counters["peak_bytes"] = static_cast<double>(peak);
}

// --- reading alone: text to project model, and the model gone again

int read_model(const std::string& path, tagProjectSettings& settings) {
    ASCIIParser parser;
    return parser.Init(Filename(path.c_str()), 1, 0) == 0 ? ReadCompositionFile(parser, settings) : 0;
}

void check_read(const Scene& scene) {
    tagProjectSettings settings;
    const std::string name = std::string("reading of ") + scene.name + ": ";
    require(read_model(scene_file(scene), settings) == 1, name + "failed");
    int objects = 0;
    for (CSceneObject* object = settings.objects.First(); object != nullptr;
         object = settings.objects.Next(object), ++objects)
        require(object->keyCount == scene.shape.keys_per_object, name + "keys");
    require(objects == scene.shape.objects, name + "objects");
}

void measure_reading(benchmark::State& state, const Scene& scene) {
    const std::string& path = scene_file(scene);
    const std::int64_t peak =
        peak_memory_bytes_once(std::string("read/") + scene.name, [&] { check_read(scene); });
    while (state.KeepRunning()) {
        tagProjectSettings settings;
        benchmark::DoNotOptimize(read_model(path, settings));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file_bytes(path)));
    state.counters["peak_bytes"] = static_cast<double>(peak);
}

// --- the peer of reading: the file in memory, and every byte of it looked at once

void measure_bytes(benchmark::State& state, const Scene& scene) {
    const std::string& path = scene_file(scene);
    std::vector<char> text(file_bytes(path));
    while (state.KeepRunning()) {
        std::FILE* file = std::fopen(path.c_str(), "rb");
        require(file != nullptr, "cannot open " + path);
        const std::size_t got = std::fread(text.data(), 1, text.size(), file);
        std::fclose(file);
        const bool has_nul = std::memchr(text.data(), 0, text.size()) != nullptr;
        require(got == text.size() && !has_nul, "the scene's text is not what was written");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

// --- the keyframe array alone, which grows by one slot a key

void measure_keyframe_array(benchmark::State& state) {
    while (state.KeepRunning()) {
        CSceneObject object;
        for (std::int64_t i = 0; i < state.range(0); ++i)
            require(object.AddKeyframe() != nullptr, "out of memory");
        benchmark::DoNotOptimize(object.keys);
    }
}

struct Measure {
    std::string name;
    void (*function)(benchmark::State&, const Scene&);
};

const Measure kMeasures[] = {
    {"import/", measure_import},
    {"read/", measure_reading},
    {"bytes/", measure_bytes},
};

}  // namespace

int main(int argc, char** argv) {
    for (const Scene& scene : kScenes) {
        const std::string name = scene.name;
        for (const Measure& measure : kMeasures)
            benchmark::RegisterBenchmark((measure.name + name).c_str(), measure.function, scene)
                ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("keyframe_array", measure_keyframe_array)
        ->RangeMultiplier(10)
        ->Range(1000, 100000)
        ->Unit(benchmark::kMillisecond);
    return run_benchmarks(argc, argv);
}
