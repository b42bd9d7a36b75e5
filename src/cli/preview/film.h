#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/preview/preview.h"
#include "cli/preview/preview_run.h"

namespace cli {

/// Whether the extension of `path` is that of a film: ".mp4" or ".webp".
[[nodiscard]] bool is_film(const std::string& path);

/// Draws the frames and has the system's ffmpeg make a film of them, which takes its place when it is
/// complete: MP4 with H.264 on black, or WebP that keeps alpha. One frame is as long as `step` frames
/// of the composition, from 1 to all of them. `drawing` is called before each frame with its place in
/// `frames`.
[[nodiscard]] PreviewRun write_film(Preview& preview, const std::vector<std::int64_t>& frames,
                                    std::int64_t step, const std::string& output,
                                    const std::function<void(std::size_t)>& drawing);

}  // namespace cli
