#pragma once

#include <cstddef>

#include "host/host_interface.h"

namespace bridge {

/// The size of a picture or a frame, in pixels.
struct FrameSize {
    A_long width_px = 0;
    A_long height_px = 0;
    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

/// The number of columns (or rows) of a picture that the first `end` columns (rows) of a frame cover, where
/// the frame has `frame_px` and the picture `picture_px` of them. All are above 0.
A_long picture_end(A_long end, A_long frame_px, A_long picture_px);

/// The pixels of a picture, rows from top to bottom without padding. Columns on the right and rows at the
/// bottom that no region needs may be missing.
struct PictureRows {
    const PF_Pixel* pixels = nullptr;
    std::size_t row_px = 0;  ///< pixels in a row, after the cut
    FrameSize picture;       ///< before the cut; at most limits::kTexturePixels
};

/// Scales the picture to the size of the frame and draws `region`, which lies within the frame and is not
/// empty; the rest of the frame stays unchanged. Each pixel of the frame is the average of the area of the
/// picture that it covers, rounded to the nearest: exact for any ratio, also when enlarging. Averaging
/// colours like alpha is correct because the alpha label declares them premultiplied. Rows of the frame may
/// have any length, sign and alignment. Throws std::bad_alloc.
void reduce_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame);

/// Copies `region` of a picture of the frame's size.
void copy_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame);

}  // namespace bridge
