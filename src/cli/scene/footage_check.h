#pragma once

#include <string>
#include <string_view>

#include "cli/footage/footage_survey.h"
#include "cli/scene/scene_reading.h"
#include "cli/scene/warning_list.h"
#include "image/image.h"

// The parts of check_footage(), and what they share.

namespace cli {

/// A path for a message: its first 400 bytes.
[[nodiscard]] std::string shown_path(std::string_view path);
/// The text after the last separator of any system.
[[nodiscard]] std::string_view last_component(std::string_view path);
/// Whether the bundle itself reads the file.
[[nodiscard]] bool is_texture(std::string_view path);

/// The files of the sequence at `path`: gaps, their numbers and the frames of the scene, their count and the
/// length of layers.
void check_sequence(const SceneReading& reading, const SceneFootage& footage, const std::string& path,
                    FootageSurvey& survey, WarningList& warnings);

/// The image at `path`, or the sequence with it, whose header is known: does it fit the composition and the
/// alpha mode of its entry, and do the images of the sequence fit each other?
void check_image_fit(const SceneReading& reading, const SceneFootage& footage, const std::string& path,
                     const image::Header& header, FootageSurvey& survey, WarningList& warnings);

/// Adds every file that an ambiguous path may mean to the warning about it.
void add_candidates(const Finding& finding, Diagnostic& warning);
/// Adds what looks like the missing footage, and the command that uses it.
void add_near_miss(const SceneReading& reading, const SceneFootage& footage, FootageSurvey& survey,
                   Diagnostic& warning);

}  // namespace cli
