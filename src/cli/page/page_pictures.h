#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "cli/project/host_setup.h"
#include "cli/scene/scene_reading.h"

namespace cli {

/// A frame of a scene, small enough for a page.
struct PagePicture {
    std::int64_t frame = 0;  ///< on the scene's timeline
    std::string url;         ///< "data:image/jpeg;base64,..."
};

/// What a scene looks like, composited as `vxr preview` does, over black.
struct PagePictures {
    std::string composition;  ///< its name
    std::int32_t width_px = 0;
    std::int32_t height_px = 0;
    std::vector<PagePicture> frames;
    std::vector<std::string>
        problems;  ///< one sentence each: why frames are missing, or what they do not show
};

/// At most `most` frames of the outermost composition, evenly spaced, the first among them. One call at a
/// time, as for page_scene(); draws on `threads` threads.
[[nodiscard]] PagePictures page_pictures(const SceneReading& reading, const FoundBundle& bundle,
                                         std::size_t most, std::size_t threads);

}  // namespace cli
