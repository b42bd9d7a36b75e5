#pragma once

// Every host suite that AEGP_SuiteHandler knows, in one place: ROW(name, version, accessor, type).
//
// The host matches names character for character, including the lower-case "PF iterate16 Suite" and "PF
// iterateFloat Suite", "PF ColorParamSuite" without a blank and "AE Plugin Helper Suite2" with its
// trailing 2. The plug-in reads only the tables that host_interface.h declares; the other types stay
// incomplete.

/// The suites that a handler releases, in the order in which it releases them. "PF Path Data Suite" 1
/// deliberately appears twice, with a slot and an accessor each: hosts count every acquisition, and each is
/// released on its own.
// clang-format off
#define VXR_RELEASED_SUITE_ROWS(ROW) \
    ROW("AEGP Marker Suite", 1, MarkerSuite1, AEGP_MarkerSuite1) \
    ROW("AEGP Layer Suite", 8, LayerSuite8, AEGP_LayerSuite8) \
    ROW("AEGP Layer Suite", 10, LayerSuite10, AEGP_LayerSuite10) \
    ROW("AEGP Stream Suite", 8, StreamSuite8, AEGP_StreamSuite8) \
    ROW("AEGP Stream Suite", 7, StreamSuite7, AEGP_StreamSuite7) \
    ROW("AEGP Stream Suite", 4, StreamSuite4, AEGP_StreamSuite4) \
    ROW("AEGP Dynamic Stream Suite", 2, DynamicStreamSuite2, AEGP_DynamicStreamSuite2) \
    ROW("AEGP Dynamic Stream Suite", 3, DynamicStreamSuite3, AEGP_DynamicStreamSuite3) \
    ROW("AEGP Keyframe Suite", 4, KeyframeSuite4, AEGP_KeyframeSuite4) \
    ROW("AEGP Keyframe Suite", 3, KeyframeSuite3, AEGP_KeyframeSuite3) \
    ROW("AEGP Keyframe Suite", 1, KeyframeSuite1, AEGP_KeyframeSuite1) \
    ROW("AEGP Comp Suite", 9, CompSuite9, AEGP_CompSuite9) \
    ROW("AEGP Comp Suite", 11, CompSuite11, AEGP_CompSuite11) \
    ROW("AEGP Comp Suite", 14, CompSuite14, AEGP_CompSuite14) \
    ROW("AEGP Proj Suite", 2, ProjSuite2, AEGP_ProjSuite2) \
    ROW("AEGP Proj Suite", 5, ProjSuite5, AEGP_ProjSuite5) \
    ROW("AEGP Canvas Suite", 10, CanvasSuite10, AEGP_CanvasSuite10) \
    ROW("AEGP Canvas Suite", 11, CanvasSuite11, AEGP_CanvasSuite11) \
    ROW("AEGP Camera Suite", 2, CameraSuite2, AEGP_CameraSuite2) \
    ROW("AEGP Register Suite", 2, RegisterSuite2, AEGP_RegisterSuite2) \
    ROW("AEGP Item Suite", 11, ItemSuite11, AEGP_ItemSuite11) \
    ROW("AEGP Item Suite", 10, ItemSuite10, AEGP_ItemSuite10) \
    ROW("AEGP Item Suite", 7, ItemSuite7, AEGP_ItemSuite7) \
    ROW("AEGP Item Suite", 3, ItemSuite3, AEGP_ItemSuite3) \
    ROW("AEGP PF Interface Suite", 1, PFInterfaceSuite1, AEGP_PFInterfaceSuite1) \
    ROW("PF Path Query Suite", 1, PathQuerySuite1, PF_PathQuerySuite1) \
    ROW("AEGP Memory Suite", 1, MemorySuite1, AEGP_MemorySuite1) \
    ROW("PF Path Data Suite", 1, PathDataSuite1, PF_PathDataSuite1) \
    ROW("PF Path Data Suite", 1, PathDataSuite1Second, PF_PathDataSuite1) \
    ROW("PF AE App Suite", 2, AEAppSuite2, PF_AEAppSuite2) \
    ROW("PF AE App Suite", 5, AEAppSuite5, PF_AEAppSuite5) \
    ROW("PF AE Adv App Suite", 2, AEAdvAppSuite2, PF_AEAdvAppSuite2) \
    ROW("AEGP Light Suite", 1, LightSuite1, AEGP_LightSuite1) \
    ROW("AEGP Light Suite", 2, LightSuite2, AEGP_LightSuite2) \
    ROW("AEGP Effect Suite", 1, EffectSuite1, AEGP_EffectSuite1) \
    ROW("AEGP Effect Suite", 2, EffectSuite2, AEGP_EffectSuite2) \
    ROW("AEGP Effect Suite", 3, EffectSuite3, AEGP_EffectSuite3) \
    ROW("AEGP Layer Mask Suite", 5, LayerMaskSuite5, AEGP_LayerMaskSuite5) \
    ROW("AEGP Mask Outline Suite", 3, MaskOutlineSuite3, AEGP_MaskOutlineSuite3) \
    ROW("AEGP Footage Suite", 7, FootageSuite7, AEGP_FootageSuite7) \
    ROW("AEGP Command Suite", 1, CommandSuite1, AEGP_CommandSuite1) \
    ROW("AEGP Utility Suite", 7, UtilitySuite7, AEGP_UtilitySuite7) \
    ROW("AEGP Render Suite", 1, RenderSuite1, AEGP_RenderSuite1) \
    ROW("AEGP Render Suite", 2, RenderSuite2, AEGP_RenderSuite2) \
    ROW("PF ANSI Suite", 1, ANSISuite1, PF_ANSISuite1) \
    ROW("PF Handle Suite", 1, HandleSuite1, PF_HandleSuite1) \
    ROW("PF Fill Matte Suite", 1, FillMatteSuite1, PF_FillMatteSuite1) \
    ROW("PF World Transform Suite", 1, WorldTransformSuite1, PF_WorldTransformSuite1) \
    ROW("AEGP QueryXform Suite", 4, QueryXformSuite4, AEGP_QueryXformSuite4) \
    ROW("AEGP Composite Suite", 2, CompositeSuite2, AEGP_CompositeSuite2) \
    ROW("PF World Suite", 1, WorldSuite1, PF_WorldSuite1) \
    ROW("AEGP IO In Suite", 1, IOInSuite1, AEGP_IOInSuite1) \
    ROW("AEGP IO Out Suite", 1, IOOutSuite1, AEGP_IOOutSuite1) \
    ROW("AEGP IO Out Suite", 6, IOOutSuite6, AEGP_IOOutSuite6) \
    ROW("AEGP Render Queue Suite", 1, RenderQueueSuite1, AEGP_RenderQueueSuite1) \
    ROW("AEGP Render Queue Item Suite", 3, RenderQueueItemSuite3, AEGP_RenderQueueItemSuite3) \
    ROW("AEGP Output Module Suite", 1, OutputModuleSuite1, AEGP_OutputModuleSuite1) \
    ROW("AEGP Output Module Suite", 2, OutputModuleSuite2, AEGP_OutputModuleSuite2) \
    ROW("AEGP File Import Manager Suite", 2, FileImportManagerSuite2, AEGP_FileImportManagerSuite2) \
    ROW("PF Sampling8 Suite", 1, Sampling8Suite1, PF_Sampling8Suite1) \
    ROW("PF Sampling16 Suite", 1, Sampling16Suite1, PF_Sampling16Suite1) \
    ROW("PF Iterate8 Suite", 1, Iterate8Suite1, PF_Iterate8Suite1) \
    ROW("PF iterate16 Suite", 1, iterate16Suite1, PF_iterate16Suite1) \
    ROW("PF iterateFloat Suite", 1, iterateFloatSuite1, PF_iterateFloatSuite1) \
    ROW("AEGP Collection Suite", 2, CollectionSuite2, AEGP_CollectionSuite2) \
    ROW("AEGP Text Document Suite", 1, TextDocumentSuite1, AEGP_TextDocumentSuite1) \
    ROW("AEGP Sound Data Suite", 1, SoundDataSuite1, AEGP_SoundDataSuite1) \
    ROW("AEGP Text Layer Suite", 1, TextLayerSuite1, AEGP_TextLayerSuite1) \
    ROW("AEGP Artisan Util Suite", 1, ArtisanUtilSuite1, AEGP_ArtisanUtilSuite1) \
    ROW("AEGP World Suite", 2, WorldSuite2, AEGP_WorldSuite2) \
    ROW("AEGP Render Options Suite", 1, RenderOptionsSuite1, AEGP_RenderOptionsSuite1) \
    ROW("AEGP Tracker Suite", 1, TrackerSuite1, AEGP_TrackerSuite1) \
    ROW("AEGP Tracker Utility Suite", 1, TrackerUtilitySuite1, AEGP_TrackerUtilitySuite1) \
    ROW("AE Plugin Helper Suite2", 2, AEPluginHelperSuite22, AE_PluginHelperSuite22) \
    ROW("AEGP Layer Suite", 11, LayerSuite11, AEGP_LayerSuite11) \
    ROW("PF AE Adv Item Suite", 1, AEAdvItemSuite1, PF_AEAdvItemSuite1) \
    ROW("AEGP Layer Suite", 5, LayerSuite5, AEGP_LayerSuite5) \
    ROW("AEGP Layer Mask Suite", 2, LayerMaskSuite2, AEGP_LayerMaskSuite2) \
    ROW("AEGP Comp Suite", 4, CompSuite4, AEGP_CompSuite4) \
    ROW("AEGP Collection Suite", 1, CollectionSuite1, AEGP_CollectionSuite1) \
    ROW("AEGP Register Suite", 1, RegisterSuite1, AEGP_RegisterSuite1) \
    ROW("AEGP Mask Outline Suite", 2, MaskOutlineSuite2, AEGP_MaskOutlineSuite2) \
    ROW("PF AE Adv App Suite", 1, AEAdvAppSuite1, PF_AEAdvAppSuite1) \
    ROW("AEGP Utility Suite", 3, UtilitySuite3, AEGP_UtilitySuite3) \
    ROW("AEGP Render Options Suite", 2, RenderOptionsSuite2, AEGP_RenderOptionsSuite2) \
    ROW("AEGP Proj Suite", 7, ProjSuite7, AEGP_ProjSuite7) \
    ROW("AEGP Footage Suite", 10, FootageSuite10, AEGP_FootageSuite10) \
    ROW("AEGP Render Queue Item Suite", 4, RenderQueueItemSuite4, AEGP_RenderQueueItemSuite4) \
    ROW("AEGP Utility Suite", 10, UtilitySuite10, AEGP_UtilitySuite10) \
    ROW("PF Color Settings Suite", 3, ColorSettingsSuite3, PF_ColorSettingsSuite3) \
    ROW("PF Color Settings Suite", 1, ColorSettingsSuite1, PF_ColorSettingsSuite1) \
    ROW("PF ColorParamSuite", 1, ColorParamSuite1, PF_ColorParamSuite1) \
    ROW("PF SamplingFloat Suite", 1, SamplingFloatSuite1, PF_SamplingFloatSuite1) \
    ROW("AEGP Utility Suite", 11, UtilitySuite11, AEGP_UtilitySuite11)

/// The suites that a handler acquires like the others and deliberately never releases: what was registered through
/// them must stay reachable for the host after the call.
#define VXR_KEPT_SUITE_ROWS(ROW) \
    ROW("AEGP Register Suite", 4, RegisterSuite4, AEGP_RegisterSuite4) \
    ROW("AEGP Persistent Data Suite", 1, PersistentDataSuite1, AEGP_PersistentDataSuite1)
// clang-format on
