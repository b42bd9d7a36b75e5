// scene_reading_time FILE: prints the least of several times that reading a scene takes in C++, and reading
// and checking it, in seconds. For bench/python_speed.py.

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "cli/footage/footage_survey.h"
#include "cli/scene/scene_reading.h"
#include "cli/verb/check_files.h"

namespace {

constexpr int kRuns = 7;

template <class Work>
double least_seconds(const Work& work) {
    double least = 1e9;
    for (int i = 0; i < kRuns; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        least =
            std::min(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return least;
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        return 2;
    }
    // The scene is given back within the time, as in Python.
    const double reading = least_seconds([&] { (void)cli::read_scene(arguments[1]); });
    const double checking = least_seconds([&] {
        const cli::SceneReading scene = cli::read_scene(arguments[1]);
        cli::FootageSurvey survey;
        (void)cli::check_scene(scene, survey);
    });
    std::printf("%.6f %.6f\n", reading, checking);
}
