#pragma once

#include <optional>
#include <string>

#include "cli/footage/finding_options.h"
#include "cli/footage/footage_finder.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// A copy of a scene with the paths that were found, in a new folder among the system's temporary files. The
/// destructor deletes both.
class RelinkedCopy {
  public:
    /// Nothing if the scene is right as it is, or cannot be read; the caller then reads it and says why.
    /// Throws std::runtime_error if the copy cannot be made.
    static std::optional<RelinkedCopy> make(const std::string& file, FootageFinder& finder);

    RelinkedCopy(RelinkedCopy&& other) noexcept;
    RelinkedCopy& operator=(RelinkedCopy&&) = delete;
    RelinkedCopy(const RelinkedCopy&) = delete;
    RelinkedCopy& operator=(const RelinkedCopy&) = delete;
    ~RelinkedCopy();

    [[nodiscard]] const std::string& path() const { return path_; }

  private:
    RelinkedCopy(std::string folder, std::string path) : folder_(std::move(folder)), path_(std::move(path)) {}

    std::string folder_;  // empty once it was moved from
    std::string path_;
};

/// The copy read under the name of the scene that it stands for.
[[nodiscard]] SceneReading reading_of(const RelinkedCopy& copy, const SceneReading& original);

/// A scene, with its footage where it is today if the user says where to look.
class FoundScene {
  public:
    /// Throws std::runtime_error if the relinked copy cannot be made. `watch` is told of reading the file as
    /// it is; it may be empty.
    FoundScene(const std::string& file, const FindingChoices& choices, const ReadingWatch& watch = {});

    /// As the file is.
    [[nodiscard]] const SceneReading& original() const { return original_; }
    /// What to import: the relinked copy where there is one.
    [[nodiscard]] const SceneReading& reading() const { return relinked_ ? *relinked_ : original_; }

  private:
    SceneReading original_;
    std::optional<RelinkedCopy> copy_;
    std::optional<SceneReading> relinked_;
};

}  // namespace cli
