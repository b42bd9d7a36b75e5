#pragma once

#include <cstddef>

#include "host/host_interface.h"

namespace bridge {

/// Of a picture or a frame, in pixels.
struct FrameSize {
    A_long width_px = 0;
    A_long height_px = 0;
    friend bool operator==(const FrameSize&, const FrameSize&) = default;
};

/// One past the last of the picture's columns (or rows) that the first `end` columns (rows) of a frame lie
/// on, when a side of the frame has `frame_px` pixels and that of the picture `picture_px`. All are above 0.
A_long picture_end(A_long end, A_long frame_px, A_long picture_px);

/// The pixels of a picture, rows from top to bottom without padding. It may be cut off on the right and at
/// the bottom where a region does not need the rest.
struct PictureRows {
    const PF_Pixel* pixels = nullptr;
    std::size_t row_px = 0;  ///< pixels in a row, after the cut
    FrameSize picture;       ///< before the cut; at most limits::kTexturePixels
};

/// Draws the whole picture, in the size of the frame, and of it only `region`, which lies within the frame
/// and has pixels; what lies outside stays as it is. Each pixel of the frame is the average of the area of
/// the picture that it covers, rounded to the nearest: exact for any ratio, also for enlarging. Alpha and
/// colours are averaged alike, which is right because the pixels are premultiplied, as the alpha label says.
/// Rows of the frame may have any length, sign and alignment. Throws std::bad_alloc.
void reduce_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame);

/// Copies `region` of a picture of the frame's size.
void copy_picture(const PictureRows& rows, const A_LRect& region, const PF_LayerDef& frame);

}  // namespace bridge
