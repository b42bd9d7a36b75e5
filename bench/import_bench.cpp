// How long a composition file takes: imported by the bundle in the embedded host, only read, and only scanned
// byte by byte; and how each time grows with the contents of the file.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "cli/handover/handover_run.h"
#include "cli/terminal/ordered_jobs.h"
#include "composition/model/project_settings.h"
#include "composition/model/scene_object.h"
#include "composition/read/ascii_parser.h"
#include "composition/read/composition_file.h"
#include "embedded/host.h"
#include "embedded/project_json.h"
#include "handover/jsx/jsx_script.h"
#include "json_scene.h"
#include "measuring.h"
#include "processes.h"
#include "scenes.h"

namespace {

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

/// Requires that every composition and every key of every object arrived and that the host found no rule
/// violation.
void check_import(embedded::Host& host, const Scene& scene) {
    const std::string name = std::string("import of ") + scene.name + ": ";
    const embedded::CallbackResult result = host.import_file(scene_file(scene));
    require(result.code == kHostErrorNone, name + "host error " + std::to_string(result.code));
    require(host.messages().empty(), name + "the user was shown a message");
    require(host.conformance().clean(), name + "the conformance report is not empty");

    const SceneShape& shape = scene.shape;
    const embedded::Project& project = host.project();
    require(project.compositions.size() == static_cast<std::size_t>(shape.nesting), name + "compositions");
    const std::int64_t layers = std::int64_t{shape.nesting} - 1 + shape.layers + shape.objects;
    require(static_cast<std::int64_t>(project.layers.size()) == layers, name + "layers");
    std::size_t keys = 0;
    for (const embedded::Layer& layer : project.layers) {
        keys += position_keys(layer);
    }
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
    state.counters["file_bytes"] = static_cast<double>(file_bytes(path));
}

// --- the project as JSON

void measure_project_json(benchmark::State& state, const Scene& scene) {
    const std::unique_ptr<embedded::Host> host = loaded_host();
    check_import(*host, scene);
    std::size_t size_bytes = 0;
    const auto write = [&] { size_bytes = embedded::project_to_json(host->project()).dump().size(); };
    const std::int64_t peak = peak_memory_bytes_once(std::string("project_json/") + scene.name, write);
    write();
    while (state.KeepRunning()) {
        write();
        benchmark::DoNotOptimize(size_bytes);
    }
    const auto keys = static_cast<double>(scene.shape.objects) * scene.shape.keys_per_object;
    // The frame and six numbers of a key take at least two characters each.
    require(static_cast<double>(size_bytes) > keys * 14, "the JSON of the project");
    state.counters["peak_bytes"] = static_cast<double>(peak);
    state.counters["json_bytes"] = static_cast<double>(size_bytes);
    state.counters["keys"] = keys;
}

// --- reading alone: text to project model

int read_model(const std::string& path, tagProjectSettings& settings) {
    ASCIIParser parser;
    return parser.Init(Filename(path.c_str()), 1, 0) == 0 ? read_composition_file(parser, settings) : 0;
}

void check_read(const Scene& scene, tagProjectSettings& settings) {
    const std::string name = std::string("reading of ") + scene.name + ": ";
    require(read_model(scene_file(scene), settings) == 1, name + "failed");
    int objects = 0;
    for (CSceneObject* object = settings.objects.First(); object != nullptr;
         object = settings.objects.Next(object), ++objects) {
        require(object->keyCount == scene.shape.keys_per_object, name + "keys");
    }
    require(objects == scene.shape.objects, name + "objects");
}

/// Times `read` into a new model each time, without deleting the model.
template <class Read>
void time_reading(benchmark::State& state, std::size_t size_bytes, Read read) {
    std::unique_ptr<tagProjectSettings> settings;
    while (state.KeepRunning()) {
        state.PauseTiming();
        settings = std::make_unique<tagProjectSettings>();
        state.ResumeTiming();
        benchmark::DoNotOptimize(read(*settings));
        state.PauseTiming();
        settings.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size_bytes));
}

void measure_reading(benchmark::State& state, const Scene& scene) {
    const std::string& path = scene_file(scene);
    const std::int64_t peak = peak_memory_bytes_once(std::string("read/") + scene.name, [&] {
        tagProjectSettings settings;
        check_read(scene, settings);
    });
    time_reading(state, file_bytes(path),
                 [&](tagProjectSettings& settings) { return read_model(path, settings); });
    state.counters["peak_bytes"] = static_cast<double>(peak);
    state.counters["file_bytes"] = static_cast<double>(file_bytes(path));
}

// --- the script for After Effects

std::size_t keys_of(const handover::Handover& handover) {
    std::size_t keys = 0;
    for (const handover::Composition& composition : handover.compositions) {
        for (const handover::Layer& layer : composition.layers) {
            for (const handover::Track& track : layer.tracks) {
                keys += track.property == handover::Property::position ? track.frames.size() : 0;
            }
        }
    }
    return keys;
}

/// Only the writing, as the command line does it: the scene was imported and corrected before.
void measure_script(benchmark::State& state, const Scene& scene) {
    const cli::HandedOver made = cli::hand_over(
        cli::read_scene(scene_file(scene)), cli::find_bundle(VXR_BUNDLE), handover::Version::corrected, {});
    const std::string name = std::string("script of ") + scene.name + ": ";
    require(made.handover.has_value(), name + "the scene was not handed over");
    const std::size_t expected =
        static_cast<std::size_t>(scene.shape.objects) * static_cast<std::size_t>(scene.shape.keys_per_object);
    // Random keys hardly ever lie on a line.
    require(keys_of(*made.handover) > expected * 9 / 10, name + "keys");
    std::size_t size_bytes = 0;
    handover::JsxOptions options;
    options.threads = cli::threads_for(0);
    const auto write = [&] {
        size_bytes = 0;
        handover::write_jsx(*made.handover, options,
                            [&](std::string_view piece) { size_bytes += piece.size(); });
    };
    const std::int64_t peak = peak_memory_bytes_once(std::string("script/") + scene.name, write);
    write();
    while (state.KeepRunning()) {
        write();
        benchmark::DoNotOptimize(size_bytes);
    }
    // A key has at least its three numbers of two characters.
    require(size_bytes > expected * 6, name + "text");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size_bytes));
    state.counters["peak_bytes"] = static_cast<double>(peak);
    state.counters["script_bytes"] = static_cast<double>(size_bytes);
}

// --- the peer of reading: the same records from JSON

bool same_key(const tagKeyFrame& one, const tagKeyFrame& other, bool camera) {
    return one.frame == other.frame && std::ranges::equal(one.position, other.position) &&
           std::ranges::equal(one.rotation, other.rotation) &&
           (!camera || (one.fov == other.fov && one.targetDistance == other.targetDistance));
}

void check_same_models(tagProjectSettings& one, tagProjectSettings& other, const std::string& name) {
    require(one.width == other.width && one.height == other.height && one.from == other.from &&
                one.to == other.to && one.range == other.range && one.fps == other.fps,
            name + "settings");
    require(std::strcmp(one.composition.name, other.composition.name) == 0, name + "composition");
    require(one.objects.count == other.objects.count, name + "objects");
    CSceneObject* theirs = other.objects.First();
    for (CSceneObject* ours = one.objects.First(); ours != nullptr; ours = one.objects.Next(ours)) {
        require(typeid(*ours) == typeid(*theirs) && std::strcmp(ours->name, theirs->name) == 0 &&
                    ours->isNull == theirs->isNull && ours->keyCount == theirs->keyCount,
                name + "an object");
        const bool camera = typeid(*ours) == typeid(CCamera);
        for (A_long i = 0; i < ours->keyCount; ++i) {
            require(same_key(*ours->keys[i], *theirs->keys[i], camera), name + "a key");
        }
        theirs = other.objects.Next(theirs);
    }
}

void measure_json(benchmark::State& state, const Scene& scene) {
    const std::string& path = json_scene_file(scene);
    std::vector<char> buffer(file_bytes(path) + 1);
    (void)peak_memory_bytes_once(std::string("json/") + scene.name, [&] {
        tagProjectSettings ours;
        tagProjectSettings theirs;
        const std::string name = std::string("JSON of ") + scene.name + ": ";
        check_read(scene, ours);
        require(read_json_scene(path, buffer, theirs), name + "failed");
        check_same_models(ours, theirs, name);
    });
    time_reading(state, file_bytes(path),
                 [&](tagProjectSettings& settings) { return read_json_scene(path, buffer, settings); });
}

// --- the limit of reading: one pass over the bytes of the file, already in memory

void measure_memchr(benchmark::State& state, const Scene& scene) {
    const std::string& path = scene_file(scene);
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> text(std::istreambuf_iterator<char>(file), {});
    constexpr char kInNoText = '\1';
    require(text.size() == file_bytes(path) && std::find(text.begin(), text.end(), kInNoText) == text.end(),
            "the text of a scene");
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(text.data());
        benchmark::DoNotOptimize(std::memchr(text.data(), kInNoText, text.size()));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

struct Measure {
    const char* name;
    void (*function)(benchmark::State&, const Scene&);
    bool text_only;  ///< only for the scenes that grow in text, because only those have a peer
    enum class Time {
        processor,  ///< of the thread that measures
        elapsed,    ///< several threads work
    } time;
};

const Measure kMeasures[] = {
    {"import", measure_import, false, Measure::Time::processor},
    {"read", measure_reading, false, Measure::Time::processor},
    {"memchr", measure_memchr, false, Measure::Time::processor},
    {"json", measure_json, true, Measure::Time::processor},
    {"script", measure_script, true, Measure::Time::elapsed},
    {"project_json", measure_project_json, true, Measure::Time::processor},
};

void register_measure(const Measure& measure, const Scene& scene) {
    const std::string scene_name = scene.name;
    if (measure.text_only && !scene_name.starts_with("text/")) {
        return;
    }
    auto* const registered =
        benchmark::RegisterBenchmark((measure.name + ("/" + scene_name)).c_str(), measure.function, scene);
    registered->Unit(benchmark::kMillisecond);
    if (measure.time == Measure::Time::elapsed) {
        registered->UseRealTime();
    }
}

}  // namespace

int main(int argc, char** argv) {
    keep_freed_memory();
    for (const Scene& scene : all_scenes()) {
        for (const Measure& measure : kMeasures) {
            register_measure(measure, scene);
        }
        if (std::string_view(scene.name).starts_with("text/")) {
            register_processes(scene);
        }
    }
    register_processes();
    return run_benchmarks(argc, argv);
}
