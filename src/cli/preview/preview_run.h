#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/preview/preview.h"
#include "cli/report/diagnostic_text.h"
#include "cli/terminal/terminal.h"

namespace cli {

/// A frame and the file that it goes into.
struct FrameFile {
    std::int64_t frame = 0;
    std::string path;
};

/// What became of the frames of one scene.
struct PreviewRun {
    ExitCode code = ExitCode::fine;
    std::vector<FrameFile> written;       ///< complete files, in the order of their frames
    std::vector<Diagnostic> diagnostics;  ///< what the frames do not show as the scene says, each once
    std::vector<std::string> problems;    ///< why a frame is not there, one sentence each
};

/// Draws the frames one after the other, each on all threads, and writes a few at a time beside one another.
/// Ends with the first frame that cannot be drawn or written; those before it stay. Pictures of formats
/// without alpha lie on black. `drawing` is called before each frame with its place in `files`.
[[nodiscard]] PreviewRun write_frames(Preview& preview, const std::vector<FrameFile>& files,
                                      std::size_t threads, const std::function<void(std::size_t)>& drawing);

/// Takes over what a frame does not show, or why it was not drawn.
void add_findings(PreviewFrame& frame, PreviewRun& run);

/// For people: what was written where.
[[nodiscard]] std::string preview_text(const Preview& preview, const PreviewRun& run,
                                       const std::string& output, const Paint& paint);

/// The document of `vxr preview --json`, docs/schema/preview.json. `preview` may have failed.
[[nodiscard]] nlohmann::ordered_json preview_document(const std::string& scene, const Preview& preview,
                                                      const PreviewOptions& options, const PreviewRun& run);

}  // namespace cli
