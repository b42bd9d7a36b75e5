#pragma once

#include "host/host_interface.h"

// The callbacks of the output side. The module only reads; these exist because the host's record requires
// them. Each returns a host error code, 0 for success. The basic data comes from the host and is never null.

/// Frees memory from the global operator new; null is allowed. The type of the object is unknown here, so no
/// destructor runs.
A_Err My_DisposeOutputOptions(AEIO_BasicData*, void* options);

/// Shows a fixed text through the message function of the basic data, with code 1.
A_Err My_UserOptionsDialog(AEIO_BasicData*, AEIO_OutSpecH, const PF_LayerDef* sample,
                           A_Boolean* user_interacted);

/// Describes the output file: the name is the part of the host's path after the last backslash, at most 31
/// characters, or "???" without a backslash; type and sub-type are the module's name. Deliberately recognises
/// only the backslash, also where the host's paths use another separator: the rule for the name is fixed.
/// Reports "Unable to get file data" and returns the host's error when the host has no path.
A_Err My_GetOutputInfo(AEIO_BasicData*, AEIO_OutSpecH, AEIO_Verbiage*);

/// Gives 32 bits with alpha as the only supported depth.
A_Err My_GetDepths(AEIO_BasicData*, AEIO_OutSpecH, A_long* which);

// Left to the host: these return kHostUseDefaultCallback and change no output argument.

A_Err My_InitOutputSpec(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean* user_interacted);
A_Err My_GetFlatOutputOptions(AEIO_BasicData*, AEIO_OutSpecH, AEIO_Handle* options);
A_Err My_OutputInfoChanged(AEIO_BasicData*, AEIO_OutSpecH);
A_Err My_SetOutputFile(AEIO_BasicData*, AEIO_OutSpecH, const A_char* path);
A_Err My_WriteLabels(AEIO_BasicData*, AEIO_OutSpecH, A_u_long* written);
A_Err My_GetSizes(AEIO_BasicData*, AEIO_OutSpecH, std::uint64_t* free_space, std::uint64_t* file_size);
A_Err My_GetOutputSuffix(AEIO_BasicData*, AEIO_OutSpecH, A_char* suffix);
A_Err My_UserAudioOptionsDialog(AEIO_BasicData*, AEIO_OutSpecH, A_Boolean* user_interacted);

// Accepted without effect: these return 0 and change no output argument.

A_Err My_StartAdding(AEIO_BasicData*, AEIO_OutSpecH, A_long flags);
A_Err My_AddFrame(AEIO_BasicData*, AEIO_OutSpecH, A_long index, A_long frames, const PF_LayerDef*,
                  const A_LPoint* origin, A_Boolean was_compressed, AEIO_InterruptFuncs*);
A_Err My_EndAdding(AEIO_BasicData*, AEIO_OutSpecH, A_long flags);
A_Err My_OutputFrame(AEIO_BasicData*, AEIO_OutSpecH, const PF_LayerDef*);
A_Err My_Flush(AEIO_BasicData*, AEIO_OutSpecH);
A_Err My_AddSoundChunk(AEIO_BasicData*, AEIO_OutSpecH, const A_Time* start, A_u_long samples,
                       const void* data);
A_Err My_SetUserData(AEIO_BasicData*, AEIO_OutSpecH, A_u_long type, A_u_long index, AEIO_Handle data);
A_Err My_AddMarker(AEIO_BasicData*, AEIO_OutSpecH, A_long frame, A_short type, void* data,
                   AEIO_InterruptFuncs*);
