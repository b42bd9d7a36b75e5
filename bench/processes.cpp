// Whole processes: their files are in the page cache, everything else is cold.

#include "processes.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "measuring.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

using Arguments = std::vector<std::string>;

/// Requires once that the process ends well and says `expected_output`.
void check_answer(const Arguments& arguments, const std::string& expected_output) {
    const ProcessResult answer = run_process(arguments);
    require(answer.exit_code == 0 && answer.out.find(expected_output) != std::string::npos,
            arguments.front() + " said: " + answer.out + answer.err);
}

/// The processor time of the process.
void register_process(const std::string& name, Arguments (*arguments)(const Scene*), const Scene* scene,
                      const char* expected_output) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     const Arguments words = arguments(scene);
                                     check_answer(words, expected_output);
                                     while (state.KeepRunning()) {
                                         state.SetIterationTime(child_seconds(words));
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
}

/// Six files of five formats, as they are among the examples.
Arguments pictures() {
    Arguments files;
    for (const char* file : {"square/plate.tif", "square/contact.png", "square/haze.tga",
                             "square/grey_card.jpg", "interlaced/street.rla", "square/flare.png"}) {
        files.push_back(std::string(VXR_EXAMPLES_DIR "/") + file);
    }
    return files;
}

Arguments check_pictures(const Scene* /*scene*/) {
    static const TemporaryFolder folder;
    std::string text =
        "VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO 0\nRANGE 1\nFPS 25\nCOMPOSITION NRM \"Main\" "
        "{\n";
    for (const std::string& file : pictures()) {
        text += "FILE NRM STRAIGHT \"" + file + "\"\n";
    }
    return {VXR_PROGRAM, "check", "--quiet", folder.write("pictures.aec", text + "}\n")};
}

Arguments stat_pictures(const Scene* /*scene*/) {
    Arguments words = pictures();
    words.insert(words.begin(), "stat");
    return words;
}

/// The time that elapses for a thousand scenes, with `jobs` at a time.
void measure_thousand(benchmark::State& state, int jobs) {
    static const TemporaryFolder folder;
    static const bool written = [] {
        const std::string text =
            composition_text({.objects = 10, .keys_per_object = 100, .nesting = 1, .layers = 0});
        for (int i = 0; i < 1000; ++i) {
            folder.write(std::to_string(i) + ".aec", text);
        }
        return true;
    }();
    require(written, "a thousand scenes");
    const Arguments words{
        VXR_PROGRAM, "check", "--quiet", "--jobs", std::to_string(jobs), folder.folder().string()};
    check_answer(words, "/999.aec: ok");
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(child_seconds(words));
    }
}

}  // namespace

void register_processes(const Scene& scene) {
    const std::string name = scene.name;
    // The keys are random, so some of the motion is lost.
    register_process(
        "check/" + name,
        [](const Scene* one) {
            return Arguments{VXR_PROGRAM, "check", "--quiet", scene_file(*one)};
        },
        &scene, ": ok");
    register_process(
        "words/" + name,
        [](const Scene* one) {
            return Arguments{"wc", "-w", scene_file(*one)};
        },
        &scene, " ");
}

void register_processes() {
    register_process("check/pictures", check_pictures, nullptr, ": ok");
    register_process("stat/pictures", stat_pictures, nullptr, "File: ");
    for (const int jobs : {1, 2}) {
        benchmark::RegisterBenchmark(("check/thousand/jobs:" + std::to_string(jobs)).c_str(),
                                     [jobs](benchmark::State& state) { measure_thousand(state, jobs); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
}
