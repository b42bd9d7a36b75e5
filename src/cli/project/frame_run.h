#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_codes.h"
#include "cli/project/host_setup.h"
#include "embedded/host.h"
#include "embedded/json_values.h"
#include "texture/value/texture.h"

namespace cli {

struct FrameSize {
    A_long width_px = 0;
    A_long height_px = 0;
};

/// The frame that a user asks for.
struct FrameRequest {
    std::optional<FrameSize> size;  ///< unset: the texture's, divided by the resolution and rounded up
    /// 2 for half.
    A_long resolution_divisor = 1;
    std::uint8_t fill = 0;  ///< every byte before drawing
};

/// The outcome of opening one file with its input module and drawing a frame.
struct FrameRun {
    std::string file;  ///< as the user named it
    ExitCode code = ExitCode::fine;
    std::string module;  ///< the input module that reads the file
    embedded::CallbackResult open;
    embedded::CallbackResult draw;
    std::optional<embedded::InSpec> in_spec;  ///< what the module said about the file
    std::optional<Texture> frame;             ///< RGB and alpha, every byte as it was drawn
    std::vector<std::string> problems;        ///< what did not happen, one sentence each
};

/// Loads the bundle, opens the file with the module for its extension, draws, unloads.
FrameRun draw_file(embedded::Host& host, const FoundBundle& bundle, const std::string& file,
                   const FrameRequest& request);

/// "160 x 120, 32 bits, alpha premultiplied, still at 30 frames a second"
std::string in_spec_text(const embedded::InSpec& in_spec);

/// The project's document with two more members at its end: "discipline", and "frame" with
/// {"file","exit_code","module","open_result","draw_result","width_px","height_px","output","problems"}.
embedded::Json frame_document(const embedded::Host& host, const FrameRun& run, const std::string& output);

}  // namespace cli
