#pragma once

#include <cstddef>
#include <string>

#include "host/current_interface.h"

// Opens, draws and disposes of in-specs through the callbacks of an input module. A module draws its picture
// pixel by pixel from the top left corner, and only if its options are attached to the in-spec. Current hosts
// expect more: the whole picture in a frame of any size, and frames for copies of a project, whose in-specs
// have lost their options.
//
// `place` is the place of the module in `input_modules`; `data` is the host's with the bridge's basic suite.
// Each function returns the module's result or an error of the bridge.

namespace bridge {

/// Has the module open the file, and remembers the size of its picture.
A_Err open_in_spec(std::size_t place, AEIO_BasicData* data, const A_char* path, AEIO_InSpecH spec);

/// Draws the required region of the picture, scaled to the size of `world`. If the picture has that size, the
/// module draws into `world`; otherwise it draws into a frame of the bridge, which is then reduced
/// (reduce_picture). If `spec` has no options that a module attached in this session, the module loads the
/// file again by the path that the host names, and that picture is drawn. The host's in-spec does not change,
/// because it may belong to a copy of the project that hosts only read.
///
/// Without a request the whole frame is required. `flags` is not null. Also returns 3 for a region outside
/// the frame, a negative size or overlapping rows, and 4 when memory is short.
A_Err draw_frame(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec,
                 const AEIO_DrawSparseFramePB* request, PF_LayerDef* world, AEIO_DrawingFlags* flags);

/// Has the module dispose of the in-spec. It does not see options that it did not attach in this session.
A_Err dispose_in_spec(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec);

}  // namespace bridge
