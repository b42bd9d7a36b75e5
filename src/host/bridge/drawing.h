#pragma once

#include <cstddef>
#include <string>

#include "host/current_interface.h"

// What the bridge adds to the callbacks of an input module that open, draw and dispose of an in-spec. A
// module draws its picture pixel by pixel from the top left corner, and only where its options are attached
// to the in-spec. Current hosts want more: the whole picture in a frame of any size, and frames for copies of
// a project, whose in-specs have lost their options.
//
// `place` is that of the module in `input_modules`, `data` the host's with the bridge's basic suite. Each
// function returns the module's result or an error of its own.

namespace bridge {

/// Has the module open the file, and remembers the size of its picture.
A_Err open_in_spec(std::size_t place, AEIO_BasicData* data, const A_char* path, AEIO_InSpecH spec);

/// Has the module draw the whole picture in the size of `world`, and of it only the required region. A
/// picture of the frame's size is drawn into the frame itself; any other into a frame of the bridge's own,
/// which is then reduced (reduce_picture). If no options that a module attached in this session are attached
/// to `spec`, the module loads the file again by the host's path for it, and that picture is drawn; the
/// host's in-spec does not change, because it may belong to a copy of the project that is only drawn.
///
/// `request` may be null: then the whole frame is required. So it is for a region without pixels, because a
/// host that needs nothing does not ask. `*flags` is 0 unless the module sets it; `flags` may be null. Also
/// returns 3 for a region outside of the frame, a frame of negative size and rows that overlap, and 4 when
/// there is no memory.
A_Err draw_frame(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec,
                 const AEIO_DrawSparseFramePB* request, PF_LayerDef* world, AEIO_DrawingFlags* flags);

/// Has the module dispose of the in-spec. It does not see options that it did not attach in this session.
A_Err dispose_in_spec(std::size_t place, AEIO_BasicData* data, AEIO_InSpecH spec);

}  // namespace bridge
