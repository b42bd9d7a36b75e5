#pragma once

#include "host/host_interface.h"
#include "texture/txl/base_bitmap.h"

/// What the module keeps of one texture footage item. Lives in a host memory handle that is attached to the
/// footage as its options handle; made there and never changed after the import. The handle is the host's,
/// the picture's arrays are ordinary heap arrays owned through the record.
struct tagTexalonHeader {
    A_char path[260] = {};  ///< cut after 259 bytes; informative, the file is read from the path as given
    A_long width = 0;       ///< pixels
    A_long height = 0;      ///< pixels
    A_long depth = 0;       ///< bits a pixel: 24, with alpha 32
    BaseBitmap bitmap;
};

/// Loads the whole file at `path` into `header`: path, picture, size, depth. 0, or 3 when the texture filter
/// refuses the file; the user has then been told, and the picture may hold the rows that came before the
/// fault. Throws what AEGP_SuiteHandler throws for a missing suite.
A_Err ReadFileHeader(AEIO_BasicData* basic, tagTexalonHeader* header, const A_char* path);

// Three callbacks of the function block. All return a host error code and throw what AEGP_SuiteHandler throws
// for a missing suite.

/// Reads the file, attaches its record to the in-spec and tells the host its depth, duration, size and rate.
/// A fault is reported to the user here, deliberately also when ReadFileHeader has done so already. The
/// handle of a record that was not attached is deliberately not given back; its picture is.
A_Err InitInSpecFromFile(AEIO_BasicData* basic, const A_char* path, AEIO_InSpecH spec);

/// Copies the picture into `world`, pixel (x, y) to pixel (x, y), as far as both reach; the rest of `world`
/// is left alone. Deliberately consults neither the request nor the flags: no scaling, cropping or fields.
/// Without an options handle nothing is drawn and 0 returned.
A_Err My_DrawSparseFrame(AEIO_BasicData* basic, AEIO_InSpecH spec, const AEIO_DrawSparseFramePB* request,
                         PF_LayerDef* world, AEIO_DrawingFlags* flags);

/// Gives back the picture and the options handle, if there is one. The result is that of freeing the handle,
/// or of asking for it.
A_Err My_DisposeInSpec(AEIO_BasicData* basic, AEIO_InSpecH spec);
