#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/job/relinked_copy.h"
#include "cli/preview/preview.h"

namespace viewer {

/// The compositions of a scene, frame by frame, as `vxr preview` draws them. Only one lives at a time, and no
/// other work with an embedded host happens meanwhile (see cli::Preview).
class SceneFrames {
  public:
    /// `search` is a folder in which footage is looked for; empty for none. Throws std::runtime_error if a
    /// relinked copy of the scene cannot be made.
    SceneFrames(const std::string& path, const std::string& search, const std::string& bundle);

    struct Composition {
        std::string name;
        std::int64_t frames = 0;
    };
    /// From the outermost one on; none if the scene is not imported.
    [[nodiscard]] std::vector<Composition> compositions() const;

    // `composition` is one of compositions(), `frame` less than its number of frames.

    /// The image files that the frame shows and that are not decoded yet. Forgets decoded images that it does
    /// not show.
    [[nodiscard]] std::vector<std::string> files_to_decode(std::size_t composition, std::int64_t frame) const;
    [[nodiscard]] cli::PreviewFrame draw(std::size_t composition, std::int64_t frame);

  private:
    cli::FoundScene scene_;
    cli::Preview preview_;
};

}  // namespace viewer
