#pragma once

#include "host/host_interface.h"

// The callbacks of the input side, except those that read files and frames (frame_reading.h). Each returns a
// host error code, 0 for success. The basic data comes from the host and is never null.

/// Sets the verbiage's type and sub-type to empty strings; the name stays unchanged.
A_Err My_GetInSpecInfo(AEIO_BasicData*, AEIO_InSpecH, AEIO_Verbiage*);

/// Shows a fixed text through the message function of the basic data, with code 0.
A_Err My_SeqOptionsDlg(AEIO_BasicData*, AEIO_InSpecH, A_Boolean* user_interacted);

/// Sets `*num` to 1: the file itself.
A_Err My_NumAuxFiles(AEIO_BasicData*, AEIO_InSpecH, A_long* num);

/// Declares every file importable without reading it.
A_Err My_VerifyFileImportable(AEIO_BasicData*, A_long signature, const A_char* path, A_Boolean* importable);

// Left to the host: these return kHostUseDefaultCallback and change no output argument.

A_Err My_FlattenOptions(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle* flat_options);
A_Err My_SynchInSpec(AEIO_BasicData*, AEIO_InSpecH, A_Boolean* changed);
A_Err My_GetActiveExtent(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_LRect* extent);
A_Err My_GetDimensions(AEIO_BasicData*, AEIO_InSpecH, const A_Ratio* scale, A_long* width, A_long* height);
A_Err My_GetDuration(AEIO_BasicData*, AEIO_InSpecH, A_Time*);
A_Err My_GetTime(AEIO_BasicData*, AEIO_InSpecH, A_Time*);
A_Err My_GetSound(AEIO_BasicData*, AEIO_InSpecH, A_short quality, const AEIO_InterruptFuncs*,
                  const A_Time* start, const A_Time* duration, A_u_long start_sample, A_u_long samples,
                  void* data);
A_Err My_InqNextFrameTime(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_short direction, A_Boolean* found,
                          A_Time* next);

// Accepted without effect: these return 0 and change no output argument.

A_Err My_InitInSpecInteractive(AEIO_BasicData*, AEIO_InSpecH);
A_Err My_InflateOptions(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle flat_options);
A_Err My_Idle(AEIO_BasicData*, A_long signature, A_long* sleep);
A_Err My_GetNumAuxChannels(AEIO_BasicData*, AEIO_InSpecH, A_long* num);
A_Err My_GetAuxChannelDesc(AEIO_BasicData*, AEIO_InSpecH, A_long index, void* description);
A_Err My_DrawAuxChannel(AEIO_BasicData*, AEIO_InSpecH, A_long index, const void* request, void* chunk);
A_Err My_FreeAuxChannel(AEIO_BasicData*, AEIO_InSpecH, void* chunk);
A_Err My_GetNthAuxFileSpec(AEIO_BasicData*, AEIO_InSpecH, A_long frame, A_long n, A_char* path);
A_Err My_CloseSourceFiles(AEIO_BasicData*, AEIO_InSpecH);
A_Err My_CountUserData(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long max_size, A_u_long* num);
A_Err My_GetUserData(AEIO_BasicData*, AEIO_InSpecH, A_u_long type, A_u_long index, A_u_long max_size,
                     AEIO_Handle* data);
