// Whole processes: their files are in the page cache, everything else is cold.

#include "processes.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "measuring.h"
#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace {

using Arguments = std::vector<std::string>;

constexpr char kHead[] = "VORTAN XR COMPOSITION\nRESOLUTION 640 360\nFROM 0\nTO 0\nRANGE 1\nFPS 25\n";

/// A process, and how it ends when all is well.
struct Process {
    Arguments arguments;
    std::string output;  ///< a part of what it says
    int exit_code = 0;
};

/// Requires once that the process ends as it should.
void check_answer(const Process& process) {
    const ProcessResult answer = run_process(process.arguments);
    require(answer.exit_code == process.exit_code &&
                (answer.out + answer.err).find(process.output) != std::string::npos,
            process.arguments.front() + " said: " + answer.out + answer.err);
}

/// The processor time of the process, which `make` prepares when it is measured.
void register_process(const std::string& name, const std::function<Process()>& make) {
    benchmark::RegisterBenchmark(
        name.c_str(),
        [=](benchmark::State& state) {
            const Process process = make();
            check_answer(process);
            while (state.KeepRunning()) {
                state.SetIterationTime(child_seconds(process.arguments, process.exit_code));
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

Process check_pictures() {
    static const TemporaryFolder folder;
    std::string text = std::string(kHead) + "COMPOSITION NRM \"Main\" {\n";
    for (const std::string& file : pictures()) {
        text += "FILE NRM STRAIGHT \"" + file + "\"\n";
    }
    return {{VXR_PROGRAM, "check", "--quiet", folder.write("pictures.aec", text + "}\n")}, ": ok"};
}

Process stat_pictures() {
    Arguments words = pictures();
    words.insert(words.begin(), "stat");
    return {words, "File: "};
}

/// A folder with so many scenes of a thousand keys.
std::string folder_of_scenes(int count) {
    static const TemporaryFolder folder;
    static const std::string text =
        composition_text({.objects = 10, .keys_per_object = 100, .nesting = 1, .layers = 0});
    const std::string name = std::to_string(count);
    if (!std::filesystem::exists(folder.path(name))) {
        folder.make_folder(name);
        for (int i = 0; i < count; ++i) {
            folder.write(name + '/' + std::to_string(i) + ".aec", text);
        }
    }
    return folder.path(name);
}

/// The time that elapses for a thousand scenes, with `jobs` at a time.
void measure_thousand(benchmark::State& state, int jobs) {
    const Process process{
        {VXR_PROGRAM, "check", "--quiet", "--jobs", std::to_string(jobs), folder_of_scenes(1000)},
        "/999.aec: ok"};
    check_answer(process);
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(child_seconds(process.arguments));
    }
}

Process check_scenes(int count) {
    return {{VXR_PROGRAM, "check", "--quiet", folder_of_scenes(count)}, "/0.aec: ok"};
}

/// A scene with so many findings, each about another missing file.
Process check_findings(int count) {
    static const TemporaryFolder folder;
    const std::string text =
        composition_text({.objects = 0, .keys_per_object = 0, .nesting = 1, .layers = count});
    constexpr int kFootageMissing = 4;
    return {{VXR_PROGRAM, "check", folder.write(std::to_string(count) + ".aec", text)},
            "missing_9.tif",
            kFootageMissing};
}

constexpr int kFilesOfASequence = 1000;

/// A folder with so many files, a thousand of each sequence, and a scene beside it that has all sequences.
std::string scene_of_sequences(int files) {
    static const TemporaryFolder folder;
    const std::string name = std::to_string(files);
    std::string scene = folder.path(name + ".aec");
    if (std::filesystem::exists(scene)) {
        return scene;
    }
    folder.make_folder(name);
    std::string text = std::string(kHead) + "COMPOSITION NRM \"Main\" {\n";
    // Of one pixel, RGB, 24 bits.
    const std::string tga = std::string("\0\0\2\0\0\0\0\0\0\0\0\0\1\0\1\0\30\0", 18) + "bgr";
    for (int i = 0; i < files; ++i) {
        const int frame = i % kFilesOfASequence;
        const std::string file = name + "/pass" + std::to_string(i / kFilesOfASequence) + "_" +
                                 std::to_string(frame + kFilesOfASequence) + ".tga";
        folder.write(file, tga);
        if (frame == 0) {
            text += "FSEQ NRM STRAIGHT \"" + folder.path(file) + "\"\n";
        }
    }
    return folder.write(name + ".aec", text + "}\n");
}

Process check_sequences(int files) {
    return {{VXR_PROGRAM, "check", "--quiet", scene_of_sequences(files)}, ": ok"};
}

Process list_sequences(int files) {
    const std::string scene = scene_of_sequences(files);
    return {{"ls", "-fU", scene.substr(0, scene.rfind('.'))}, "pass0_1000.tga"};
}

}  // namespace

void register_processes(const Scene& scene) {
    const std::string name = scene.name;
    // The keys are random, so some of the motion is lost.
    register_process("check/" + name, [&scene] {
        return Process{{VXR_PROGRAM, "check", "--quiet", scene_file(scene)}, ": ok"};
    });
    register_process("words/" + name, [&scene] { return Process{{"wc", "-w", scene_file(scene)}, " "}; });
}

void register_processes() {
    register_process("check/pictures", check_pictures);
    register_process("stat/pictures", stat_pictures);
    for (const int jobs : {1, 2}) {
        benchmark::RegisterBenchmark(("check/thousand/jobs:" + std::to_string(jobs)).c_str(),
                                     [jobs](benchmark::State& state) { measure_thousand(state, jobs); })
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    for (const int count : {10, 100, 1'000, 10'000}) {
        register_process("check/scenes/" + std::to_string(count), [count] { return check_scenes(count); });
        register_process("check/findings/" + std::to_string(count),
                         [count] { return check_findings(count); });
    }
    for (const int files : {1'000, 10'000, 100'000}) {
        register_process("check/sequences/" + std::to_string(files),
                         [files] { return check_sequences(files); });
        register_process("list/sequences/" + std::to_string(files),
                         [files] { return list_sequences(files); });
    }
}
