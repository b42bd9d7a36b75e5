#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/footage/finding_options.h"
#include "python/scene_calls.h"
#include "texture/value/texture.h"

// What the module's function about previews does, without anything of Python.

namespace python {

struct PreviewRequest {
    std::string path;
    cli::FindingChoices choices;
    std::string bundle;                ///< empty: the one beside the program
    std::vector<std::int64_t> frames;  ///< of the composition, from 0
    std::string composition;           ///< its name; empty for the outermost one
    bool raw = false;                  ///< a pixel of the composition is a pixel of the picture
    bool linear = false;               ///< blends light, not stored values
    std::string fields;                ///< "both", "upper" or "lower"
    std::string overlay;               ///< as --overlay takes it; empty for none
    int threads = 1;                   ///< 0: one for each processor
};

struct PreviewAnswer {
    /// {"diagnostics","problems","exit_code"}, and if the scene arrived
    /// {"composition","width","height","frame_count",
    /// "fps","pixel_aspect","frames":[{"number","diagnostics"}]}.
    std::string document;
    std::vector<Texture> pictures;  ///< RGB, colour straight, with one alpha; one for each of "frames"
};

/// Waits while another thread imports. Throws std::invalid_argument where the request is wrong, also for a
/// frame that the composition does not have. Calls `watch` while it keeps others waiting.
[[nodiscard]] PreviewAnswer draw_frames(const PreviewRequest& request, const Watch& watch);

}  // namespace python
