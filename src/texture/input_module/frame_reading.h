#pragma once

#include "host/host_interface.h"
#include "texture/txl/base_bitmap.h"

/// What the module keeps of one texture footage item. Lives in a host memory handle that is attached to the
/// footage as its options handle; constructed there and never changed after the import. The host owns the
/// handle; the record owns the arrays of its picture, which are ordinary heap arrays.
struct tagTexalonHeader {
    A_char path[260] =
        {};             ///< truncated to 259 bytes; for information only, the file is read from the full path
    A_long width = 0;   ///< pixels
    A_long height = 0;  ///< pixels
    A_long depth = 0;   ///< bits per pixel: 24, or 32 with alpha
    BaseBitmap bitmap;
};

/// Loads the whole file at `path` into `header`: path, picture, size, depth. Returns 0, or 3 when the texture
/// filter refuses the file; the failure has then been reported to the user, and the picture may hold the rows
/// before the fault. Throws what AEGP_SuiteHandler throws for a missing suite.
A_Err ReadFileHeader(AEIO_BasicData* basic, tagTexalonHeader* header, const A_char* path);

// Three callbacks of the function block. Each returns a host error code and throws what AEGP_SuiteHandler
// throws for a missing suite.

/// Reads the file, attaches its record to the in-spec and tells the host its depth, duration, size and frame
/// rate. Reports a failure to the user, deliberately also when ReadFileHeader has already done so: every
/// failed import ends with this report. Deliberately frees only the picture of a record that was not
/// attached, not its handle: the host calls after a failure are fixed.
A_Err InitInSpecFromFile(AEIO_BasicData* basic, const A_char* path, AEIO_InSpecH spec);

/// Draws the picture into `world`, pixel (x, y) to pixel (x, y); see draw_picture. Deliberately ignores the
/// request and the flags: the module does not scale, crop or separate fields. Without an options handle it
/// draws nothing and returns 0.
A_Err My_DrawSparseFrame(AEIO_BasicData* basic, AEIO_InSpecH spec, const AEIO_DrawSparseFramePB* request,
                         PF_LayerDef* world, AEIO_DrawingFlags* flags);

/// Frees the picture and the options handle, if there is one. Returns the result of freeing the handle, or of
/// getting it when that failed or gave none.
A_Err My_DisposeInSpec(AEIO_BasicData* basic, AEIO_InSpecH spec);
