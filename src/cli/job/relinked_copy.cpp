#include "cli/job/relinked_copy.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "cli/job/relink_run.h"
#include "system/files.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

std::string new_folder() {
    constexpr int kAttempts = 16;
    std::error_code failure;
    const fs::path place = fs::temp_directory_path(failure);
    std::random_device random;
    for (int attempt = 0; attempt < kAttempts && !failure; ++attempt) {
        std::string folder = os::text_of(place / ("vxr-" + std::to_string(random())));
        if (fs::create_directory(os::native_path(folder), failure)) {
            fs::permissions(os::native_path(folder), fs::perms::owner_all, failure);
            return folder;
        }
    }
    throw std::runtime_error("no folder for a copy of the scene can be made in " + os::text_of(place));
}

}  // namespace

std::optional<RelinkedCopy> RelinkedCopy::make(const std::string& file, FootageFinder& finder) {
    RelinkedScene scene = seek_scene(file, finder, {});
    const bool elsewhere =
        std::any_of(scene.footage.begin(), scene.footage.end(), [](const SoughtFootage& footage) {
            return footage.finding.is_found() && footage.finding.rule > FindingRule::beside_scene;
        });
    if (!elsewhere) {
        return std::nullopt;
    }
    std::string folder = new_folder();
    std::string path = joined_path(folder, os::text_of(os::path_of(scene.full_path).filename()));
    RelinkedCopy copy(std::move(folder), std::move(path));
    scene.output = copy.path();
    write_scene(scene);
    if (!scene.written) {
        throw std::runtime_error(scene.problems.back());
    }
    return copy;
}

RelinkedCopy::RelinkedCopy(RelinkedCopy&& other) noexcept
    : folder_(std::exchange(other.folder_, {})), path_(std::move(other.path_)) {}

RelinkedCopy::~RelinkedCopy() {
    if (!folder_.empty()) {
        std::error_code ignored;
        fs::remove_all(os::native_path(folder_), ignored);
    }
}

SceneReading reading_of(const RelinkedCopy& copy, const SceneReading& original) {
    SceneReading reading = read_scene(copy.path());
    reading.file = original.file;
    return reading;
}

FoundScene::FoundScene(const std::string& file, const FindingChoices& choices, const ReadingWatch& watch)
    : original_(read_scene(file, watch)) {
    if (!choices.given() || original_.error) {
        return;
    }
    FootageFinder finder(choices.finder_options());
    if (auto copy = RelinkedCopy::make(original_.input ? original_.full_path : original_.file, finder)) {
        copy_.emplace(std::move(*copy));
        relinked_.emplace(reading_of(*copy_, original_));
    }
}

}  // namespace cli
