#include "entry/plugin_entry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "composition/build/import_file.h"
#include "host/plugin_globals.h"
#include "support/recording_host.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

A_Err enter(RecordingHost& host, A_long major = 11, A_long minor = 0) {
    return Main_VORTANXR_AE(host.basic(), major, minor, nullptr, nullptr, RecordingHost::kPluginId, nullptr);
}

// "AEC_" as a number, most significant byte first: 0x4145435f. ".aec" as bytes, the rest of the record
// cleared.
const char* const kDeathHook = "RegisterDeathHook(7, null)";
const char* const kFlavor = "RegisterImportFlavor(\"VORTAN XR Composition\", -2147483648)";
const char* const kTypes =
    "RegisterImportFlavorFileTypes(42, 1, type 1095058271 creator -1, 1, bytes 2e61656300000000)";
const char* const kCallbacks = "RegisterImportFlavorImportCallbacks(42, 2, null)";
const char* const kModule = "RegisterIO(7, null, \"Texalon 3D\")";

TEST(PluginEntry, RegistersTheImporterAndTheTextureModule) {
    RecordingHost host;
    EXPECT_EQ(enter(host), 0);
    EXPECT_THAT(host.calls, ElementsAre(kDeathHook, kFlavor, kTypes, kCallbacks, kModule));
    EXPECT_THAT(host.death_hooks, ElementsAre(::testing::Pair(&DeathHook, nullptr)));
    EXPECT_EQ(host.registered_callbacks.refcon, nullptr);
    EXPECT_EQ(host.registered_callbacks.import_cb, &ImportFile);
    EXPECT_EQ(host.registered_callbacks.verify_cb, &VerifyFileImportable);
    EXPECT_NE(host.registered_functions.AEIO_InitInSpecFromFile, nullptr);
    EXPECT_THAT(host.left_open(), IsEmpty());
    EXPECT_THAT(host.reports, IsEmpty());
}

TEST(PluginEntry, KeepsTheHostsArguments) {
    RecordingHost host;
    g_pBasicSuite = nullptr;
    g_PluginID = 0;
    EXPECT_EQ(enter(host), 0);
    EXPECT_EQ(g_pBasicSuite, host.basic());
    EXPECT_EQ(g_PluginID, RecordingHost::kPluginId);
}

TEST(PluginEntry, SceneLayersNeedInterfaceVersion9Point32) {
    const struct {
        A_long major;
        A_long minor;
        bool scene_layers;
    } cases[] = {
        {9, 31, false}, {9, 32, true},  {9, 33, true},  {10, 0, true},  {13, 28, true},
        {8, 99, false}, {9, -1, false}, {0, 32, false}, {-1, 0, false},
    };
    for (const auto& c : cases) {
        RecordingHost host;
        version55 = !c.scene_layers;
        EXPECT_EQ(enter(host, c.major, c.minor), 0);
        EXPECT_EQ(version55, c.scene_layers) << c.major << "." << c.minor;
    }
}

TEST(PluginEntry, SuitesAreAcquiredOnceAndTheRegisterSuiteIsKept) {
    RecordingHost host;
    EXPECT_EQ(enter(host), 0);
    EXPECT_THAT(host.traffic, ElementsAre("acquire AEGP Register Suite 4", kDeathHook,
                                          "acquire AEGP File Import Manager Suite 2", kFlavor, kTypes,
                                          kCallbacks, kModule, "release AEGP File Import Manager Suite 2"));
}

TEST(PluginEntry, EachRegistrationThatFailsEndsTheSequenceWithItsMessage) {
    const std::string plugin = "There was an error registering the plugin.";
    const std::string file_type = "Could not register file type.";
    const struct {
        const char* function;
        std::size_t calls;  // up to and including the failing one
        std::string message;
    } cases[] = {
        {"RegisterDeathHook", 1, plugin},
        {"RegisterImportFlavor", 2, file_type},
        {"RegisterImportFlavorFileTypes", 3, file_type},
        {"RegisterImportFlavorImportCallbacks", 4, file_type},
        {"RegisterIO", 5, file_type},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.function);
        RecordingHost host;
        host.fail(c.function, 3);
        EXPECT_EQ(enter(host), 3);
        EXPECT_EQ(host.calls.size(), c.calls + 1) << "the report is the last call";
        EXPECT_THAT(host.calls[c.calls - 1], ::testing::EndsWith(" = 3"));
        EXPECT_THAT(host.reports, ElementsAre(c.message));
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
}

TEST(PluginEntry, AReportThatFailsChangesNothing) {
    RecordingHost host;
    host.fail("RegisterIO", 5);
    host.fail("ReportInfo", 6);
    EXPECT_EQ(enter(host), 5);
}

TEST(PluginEntry, WithoutAFlavorOnlyTheTextureModuleIsRegistered) {
    RecordingHost host;
    host.flavor = kInvalidImportFlavor;
    EXPECT_EQ(enter(host), 0);
    EXPECT_THAT(host.calls_of({"RegisterImportFlavorImportCallbacks"}), IsEmpty());
    EXPECT_THAT(host.calls.back(), kModule);
    EXPECT_EQ(host.registered_callbacks.import_cb, nullptr);
}

TEST(PluginEntry, AMissingSuiteThrowsTheHandlersException) {
    const std::pair<const char*, A_long> suites[] = {{"AEGP Register Suite", 4},
                                                     {"AEGP File Import Manager Suite", 2}};
    for (const auto& [name, version] : suites) {
        RecordingHost host;
        host.withhold_suite(name, version);
        try {
            enter(host);
            ADD_FAILURE() << name << " is missing and nothing was thrown";
        } catch (long value) {
            EXPECT_EQ(value, 516);
        }
        EXPECT_THAT(host.left_open(), IsEmpty());
    }
    try {
        Main_VORTANXR_AE(nullptr, 11, 0, nullptr, nullptr, 1, nullptr);
        ADD_FAILURE() << "there is no basic suite and nothing was thrown";
    } catch (long value) {
        EXPECT_EQ(value, 516);
    }
}

TEST(PluginEntry, TheUtilitySuiteIsOnlyNeededForAReport) {
    RecordingHost host;
    host.withhold_suite("AEGP Utility Suite", 7);
    EXPECT_EQ(enter(host), 0);
    host.fail("RegisterDeathHook", 3, 2);
    EXPECT_THROW(enter(host), long);
}

TEST(PluginEntry, TheDeathHookDoesNothing) {
    RecordingHost host;
    EXPECT_EQ(DeathHook(nullptr, nullptr), 0);
    EXPECT_THAT(host.traffic, IsEmpty());
}

TEST(Messages, AreTheTextsThatUsersSee) {
    const std::pair<const char*, const char*> messages[] = {
        {g_pCh_Unknown_null, "Unknown null"},
        {g_pCh_Unknown_light, "Unknown light"},
        {g_pCh_Unknown_camera, "Unknown camera"},
        {g_pCh_Cam_and_lights, "Cameras and lights"},
        {g_pCh_Import_media, "Import media"},
        {g_pCh_Error_interpret_footage, "Could not interpret footage."},
        {g_pCh_Error_create_composition, "Unable to create composition."},
        {g_pCh_Error_register_file_type, "Could not register file type."},
        {g_pCh_Unable_get_file_data, "Unable to get file data"},
        {g_pCh_Error_Drawing_frame, "There was an error drawing the frame."},
        {g_pCh_Error_Register_plugin, "There was an error registering the plugin."},
        {g_pCh_Error_loading_file, "There was an error loading the file in line %d."},
        {g_pCh_Others, "Special Passes"},
        {g_pCh_VortanXR_composition, "VORTAN XR Composition"},
    };
    for (const auto& [message, text] : messages) {
        EXPECT_STREQ(message, text);
    }
}

}  // namespace
