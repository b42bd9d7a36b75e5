#pragma once

// What compositors call the values that the host keeps as numbers.

#include <string>

#include "embedded/project.h"
#include "text/plain_number.h"

namespace cli {

using text::plain_number;

/// A time in frames at `rate`: "17", or "17.5" between two frames.
std::string frames_text(double seconds, const A_Ratio& rate);
/// "1 frame", "8 frames"
std::string frame_count_text(double seconds, const A_Ratio& rate);
double seconds_of(const A_Time& time);
double rate_of(const A_Ratio& rate);

/// "normal", "add", "multiply"; "mode 7" for any other.
std::string blend_label(const AEGP_LayerTransferMode& mode);
/// "straight", "premultiplied", "ignored", or "none" for footage without an alpha channel.
std::string alpha_label(const embedded::Footage& footage);
/// "progressive", "upper first", "lower first"
std::string fields_label(const AEGP_FootageInterp& interpretation);
/// "point light", "spot light", ...; "light" while the type is not set.
std::string light_type_label(const embedded::Layer& layer);
/// "camera", "point light", "composition", ...; "one-node camera" and "spot light, not aimed" for layers that
/// do not turn towards their points of interest. For footage "still", "sequence", "texture", "MISSING".
std::string layer_label(const embedded::Project& project, const embedded::Layer& layer);
std::string footage_label(embedded::FootageKind kind);
/// "grey", "RGB", "RGBA", "5 channels"
std::string channels_label(int channels);

/// Frame numbers and the gaps between them: "17-24", "1-9 without 4, 6-7".
std::string frame_range_text(const embedded::SequenceFrames& frames);

}  // namespace cli
