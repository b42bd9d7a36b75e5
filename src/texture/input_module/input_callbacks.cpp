#include "texture/input_module/input_callbacks.h"

A_Err My_VerifyFileImportable(AEIO_BasicData* /*basic*/, A_long /*signature*/, const A_char* /*path*/,
                              A_Boolean* importable) {
    *importable = 1;
    return kHostErrorNone;
}

A_Err My_GetInSpecInfo(AEIO_BasicData* /*basic*/, AEIO_InSpecH /*spec*/, AEIO_Verbiage* verbiage) {
    verbiage->type[0] = 0;
    verbiage->sub_type[0] = 0;
    return kHostErrorNone;
}

A_Err My_SeqOptionsDlg(AEIO_BasicData* basic, AEIO_InSpecH /*spec*/, A_Boolean* /*user_interacted*/) {
    basic->msg_func(0, "IO: Here's my sequence options dialog!");
    return kHostErrorNone;
}

A_Err My_NumAuxFiles(AEIO_BasicData* /*basic*/, AEIO_InSpecH /*spec*/, A_long* num) {
    *num = 1;
    return kHostErrorNone;
}

A_Err My_FlattenOptions(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle*) {
    return kHostUseDefaultCallback;
}

A_Err My_SynchInSpec(AEIO_BasicData*, AEIO_InSpecH, A_Boolean*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetActiveExtent(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_LRect*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetDimensions(AEIO_BasicData*, AEIO_InSpecH, const A_Ratio*, A_long*, A_long*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetDuration(AEIO_BasicData*, AEIO_InSpecH, A_Time*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetTime(AEIO_BasicData*, AEIO_InSpecH, A_Time*) {
    return kHostUseDefaultCallback;
}

A_Err My_GetSound(AEIO_BasicData*, AEIO_InSpecH, A_short, const AEIO_InterruptFuncs*, const A_Time*,
                  const A_Time*, A_u_long, A_u_long, void*) {
    return kHostUseDefaultCallback;
}

A_Err My_InqNextFrameTime(AEIO_BasicData*, AEIO_InSpecH, const A_Time*, A_short, A_Boolean*, A_Time*) {
    return kHostUseDefaultCallback;
}

A_Err My_InitInSpecInteractive(AEIO_BasicData*, AEIO_InSpecH) {
    return kHostErrorNone;
}

A_Err My_InflateOptions(AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle) {
    return kHostErrorNone;
}

A_Err My_Idle(AEIO_BasicData*, A_long, A_long*) {
    return kHostErrorNone;
}

A_Err My_GetNumAuxChannels(AEIO_BasicData*, AEIO_InSpecH, A_long*) {
    return kHostErrorNone;
}

A_Err My_GetAuxChannelDesc(AEIO_BasicData*, AEIO_InSpecH, A_long, void*) {
    return kHostErrorNone;
}

A_Err My_DrawAuxChannel(AEIO_BasicData*, AEIO_InSpecH, A_long, const void*, void*) {
    return kHostErrorNone;
}

A_Err My_FreeAuxChannel(AEIO_BasicData*, AEIO_InSpecH, void*) {
    return kHostErrorNone;
}

A_Err My_GetNthAuxFileSpec(AEIO_BasicData*, AEIO_InSpecH, A_long, A_long, A_char*) {
    return kHostErrorNone;
}

A_Err My_CloseSourceFiles(AEIO_BasicData*, AEIO_InSpecH) {
    return kHostErrorNone;
}

A_Err My_CountUserData(AEIO_BasicData*, AEIO_InSpecH, A_u_long, A_u_long, A_u_long*) {
    return kHostErrorNone;
}

A_Err My_GetUserData(AEIO_BasicData*, AEIO_InSpecH, A_u_long, A_u_long, A_u_long, AEIO_Handle*) {
    return kHostErrorNone;
}
