#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "embedded/testing.h"
#include "host/host_interface.h"

/// `options` with the classic generation.
inline embedded::HostOptions in_a_classic_host(embedded::HostOptions options = {}) {
    options.generation = embedded::HostGeneration::classic;
    return options;
}

/// A classic host as a bundle sees it, with every suite acquired and shorthands for frequent calls. The
/// suites stay acquired, so tests about suites use a TestHost of their own.
struct BundleSide {
    explicit BundleSide(const embedded::HostOptions& options = {}) : host(in_a_classic_host(options)) {
        project_suite = host.acquire<AEGP_ProjSuite5>("AEGP Proj Suite", 5);
        item_suite = host.acquire<AEGP_ItemSuite10>("AEGP Item Suite", 10);
        footage_suite = host.acquire<AEGP_FootageSuite7>("AEGP Footage Suite", 7);
        comp_suite = host.acquire<AEGP_CompSuite9>("AEGP Comp Suite", 9);
        layer_suite = host.acquire<AEGP_LayerSuite11>("AEGP Layer Suite", 11);
        stream_suite = host.acquire<AEGP_StreamSuite7>("AEGP Stream Suite", 7);
        keyframe_suite = host.acquire<AEGP_KeyframeSuite3>("AEGP Keyframe Suite", 3);
        light_suite = host.acquire<AEGP_LightSuite2>("AEGP Light Suite", 2);
        utility_suite = host.acquire<AEGP_UtilitySuite7>("AEGP Utility Suite", 7);
        memory_suite = host.acquire<AEGP_MemorySuite1>("AEGP Memory Suite", 1);
        data_suite = host.acquire<AEGP_PersistentDataSuite1>("AEGP Persistent Data Suite", 1);
        register_suite = host.acquire<AEGP_RegisterSuite4>("AEGP Register Suite", 4);
        import_suite = host.acquire<AEGP_FileImportManagerSuite2>("AEGP File Import Manager Suite", 2);
        io_in_suite = host.acquire<AEGP_IOInSuite1>("AEGP IO In Suite", 1);
        io_out_suite = host.acquire<AEGP_IOOutSuite1>("AEGP IO Out Suite", 1);
        ansi_suite = host.acquire<PF_ANSISuite1>("PF ANSI Suite", 1);
    }

    AEGP_ItemH root() {
        AEGP_ProjectH project = nullptr;
        AEGP_ItemH folder = nullptr;
        project_suite->AEGP_GetProjectByIndex(0, &project);
        project_suite->AEGP_GetProjectRootFolder(project, &folder);
        return folder;
    }
    AEGP_ItemH folder(const char* name = "folder") {
        AEGP_ItemH made = nullptr;
        item_suite->AEGP_CreateNewFolder(name, root(), &made);
        return made;
    }
    AEGP_CompH comp(const char* name = "comp") {
        AEGP_CompH made = nullptr;
        comp_suite->AEGP_CreateComp(root(), name, 640, 480, &square, &four_seconds, &rate, &made);
        return made;
    }
    AEGP_ItemH item_of(AEGP_CompH comp) {
        AEGP_ItemH item = nullptr;
        comp_suite->AEGP_GetItemFromComp(comp, &item);
        return item;
    }
    AEGP_LayerH camera(AEGP_CompH in) {
        AEGP_LayerH layer = nullptr;
        comp_suite->AEGP_CreateCameraInComp("camera", {320.0, 240.0}, in, &layer);
        return layer;
    }
    AEGP_LayerH light(AEGP_CompH in) {
        AEGP_LayerH layer = nullptr;
        comp_suite->AEGP_CreateLightInComp("light", {320.0, 240.0}, in, &layer);
        return layer;
    }
    AEGP_FootageH placeholder(const char* name = "missing.tif") {
        AEGP_FootageH made = nullptr;
        footage_suite->AEGP_NewPlaceholderFootage(host.plugin_id(), name, 64, 32, &four_seconds, &made);
        return made;
    }
    AEGP_ItemH placeholder_item() {
        AEGP_ItemH item = nullptr;
        footage_suite->AEGP_AddFootageToProject(placeholder(), root(), &item);
        return item;
    }
    AEGP_StreamRefH stream(AEGP_LayerH layer, AEGP_LayerStream which) {
        AEGP_StreamRefH made = nullptr;
        stream_suite->AEGP_GetNewLayerStream(host.plugin_id(), layer, which, &made);
        return made;
    }
    AEGP_AddKeyframesInfoH additions(AEGP_StreamRefH stream) {
        AEGP_AddKeyframesInfoH made = nullptr;
        keyframe_suite->AEGP_StartAddKeyframes(stream, &made);
        return made;
    }
    AEGP_MemHandle memory(AEGP_MemSize size = 16, AEGP_MemFlag flags = kMemFlagClear) {
        AEGP_MemHandle made = nullptr;
        memory_suite->AEGP_NewMemHandle(host.plugin_id(), "block", size, flags, &made);
        return made;
    }
    AEGP_PersistentBlobH blob() {
        AEGP_PersistentBlobH made = nullptr;
        data_suite->AEGP_GetApplicationBlob(&made);
        return made;
    }
    [[nodiscard]] std::size_t count(embedded::RuleViolation violation) const {
        return host.conformance().count(violation);
    }

    embedded::TestHost host;
    A_Ratio square{1, 1};
    A_Ratio rate{2500, 100};
    A_Time four_seconds{100, 25};
    A_Time no_scale{1, 0};

    const AEGP_ProjSuite5* project_suite = nullptr;
    const AEGP_ItemSuite10* item_suite = nullptr;
    const AEGP_FootageSuite7* footage_suite = nullptr;
    const AEGP_CompSuite9* comp_suite = nullptr;
    const AEGP_LayerSuite11* layer_suite = nullptr;
    const AEGP_StreamSuite7* stream_suite = nullptr;
    const AEGP_KeyframeSuite3* keyframe_suite = nullptr;
    const AEGP_LightSuite2* light_suite = nullptr;
    const AEGP_UtilitySuite7* utility_suite = nullptr;
    const AEGP_MemorySuite1* memory_suite = nullptr;
    const AEGP_PersistentDataSuite1* data_suite = nullptr;
    const AEGP_RegisterSuite4* register_suite = nullptr;
    const AEGP_FileImportManagerSuite2* import_suite = nullptr;
    const AEGP_IOInSuite1* io_in_suite = nullptr;
    const AEGP_IOOutSuite1* io_out_suite = nullptr;
    const PF_ANSISuite1* ansi_suite = nullptr;
};
