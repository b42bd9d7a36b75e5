// The host-call log, line by line.

#include "embedded/call_log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "embedded/bundle_side.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The lines logged during `work`.
std::vector<std::string> lines_of(BundleSide& bundle, const std::function<void()>& work) {
    std::vector<std::string> lines;
    bundle.host.log_calls([&lines](std::string_view line) { lines.emplace_back(line); });
    work();
    bundle.host.log_calls(nullptr);
    return lines;
}

/// The only line logged during `work`, without its number.
std::string line_of(BundleSide& bundle, const std::function<void()>& work) {
    const std::vector<std::string> lines = lines_of(bundle, work);
    if (lines.size() != 1) {
        return std::to_string(lines.size()) + " lines";
    }
    const std::size_t comma = lines[0].find(',');
    return "{" + lines[0].substr(comma + 1);
}

TEST(CallLog, CountsCallsWhileItIsOff) {
    embedded::TestHost host;
    std::vector<std::string> lines;
    const void* table = nullptr;
    host.basic_suite()->AcquireSuite("AEGP Comp Suite", 9, &table);
    host.log_calls([&lines](std::string_view line) { lines.emplace_back(line); });
    host.basic_suite()->ReleaseSuite("AEGP Comp Suite", 9);
    host.basic_suite()->AcquireSuite("No Suite", 1, &table);
    host.log_calls(nullptr);
    host.basic_suite()->AcquireSuite("AEGP Comp Suite", 9, &table);
    EXPECT_THAT(lines, ElementsAre(R"({"n":2,"suite":"SPBasicSuite","version":0,"function":"ReleaseSuite",)"
                                   R"("args":{"name":"AEGP Comp Suite","version":9},"out":{},"result":0})",
                                   R"({"n":3,"suite":"SPBasicSuite","version":0,"function":"AcquireSuite",)"
                                   R"("args":{"name":"No Suite","version":1},"out":{},"result":13})"));
}

TEST(CallLog, WritesArgumentsInParameterOrder) {
    BundleSide bundle;
    EXPECT_EQ(line_of(bundle,
                      [&] {
                          AEGP_CompH made = nullptr;
                          const A_Ratio aspect{106, 100};
                          bundle.comp_suite->AEGP_CreateComp(nullptr, "n\xE4me", 720, 576, &aspect,
                                                             &bundle.four_seconds, &bundle.rate, &made);
                      }),
              R"({"suite":"AEGP Comp Suite","version":9,"function":"AEGP_CreateComp",)"
              R"("args":{"parent_folder":null,"name":{"bytes":"6ee46d65"},"width":720,"height":576,)"
              R"("pixel_aspect":{"num":106,"den":100},"duration":{"value":100,"scale":25},)"
              R"("frame_rate":{"num":2500,"den":100}},"out":{},"result":3})");
    const AEGP_ItemH root = bundle.root();
    EXPECT_EQ(line_of(bundle,
                      [&] {
                          AEGP_CompH made = nullptr;
                          bundle.comp_suite->AEGP_CreateComp(root, "c", 1, 1, &bundle.square,
                                                             &bundle.four_seconds, &bundle.rate, &made);
                      }),
              R"({"suite":"AEGP Comp Suite","version":9,"function":"AEGP_CreateComp",)"
              R"("args":{"parent_folder":"item:1","name":"c","width":1,"height":1,)"
              R"("pixel_aspect":{"num":1,"den":1},"duration":{"value":100,"scale":25},)"
              R"("frame_rate":{"num":2500,"den":100}},"out":{"comp":"comp:1"},"result":0})");
}

TEST(CallLog, WritesEachFunctionWithItsHandlesRecordsAndValues) {
    BundleSide bundle;
    const AEGP_ItemH root = bundle.root();
    const AEGP_CompH comp = bundle.comp();
    const AEGP_LayerH camera = bundle.camera(comp);
    const AEGP_LayerH light = bundle.light(comp);
    const AEGP_ItemH footage_item = bundle.placeholder_item();
    const AEGP_StreamRefH zoom = bundle.stream(camera, kLayerStreamZoom);
    const AEGP_StreamRefH position = bundle.stream(camera, kLayerStreamPosition);
    const AEGP_StreamRefH color = bundle.stream(light, kLayerStreamColor);
    const AEGP_AddKeyframesInfoH info = bundle.additions(position);
    const A_Time key_time{-5, 25};
    const AEGP_PluginID id = bundle.host.plugin_id();

    struct {
        std::function<void()> call;
        std::string line;
    } const cases[] = {
        {[&] {
             AEGP_ProjectH project = nullptr;
             bundle.project_suite->AEGP_GetProjectByIndex(0, &project);
         },
         R"({"suite":"AEGP Proj Suite","version":5,"function":"AEGP_GetProjectByIndex","args":{"index":0},)"
         R"("out":{"project":"project:1"},"result":0})"},
        {[&] {
             AEGP_ItemH made = nullptr;
             bundle.item_suite->AEGP_CreateNewFolder("f", root, &made);
         },
         R"({"suite":"AEGP Item Suite","version":10,"function":"AEGP_CreateNewFolder",)"
         R"("args":{"name":"f","parent_folder":"item:1"},"out":{"folder":"item:4"},"result":0})"},
        {[&] {
             AEGP_LayerH layer = nullptr;
             bundle.comp_suite->AEGP_CreateNullInComp("n", comp, nullptr, &layer);
         },
         R"({"suite":"AEGP Comp Suite","version":9,"function":"AEGP_CreateNullInComp",)"
         R"("args":{"name":"n","comp":"comp:1","duration":null},"out":{"layer":"layer:3"},"result":0})"},
        {[&] {
             AEGP_LayerH layer = nullptr;
             bundle.comp_suite->AEGP_CreateCameraInComp("c", {0.5, -0.0}, comp, &layer);
         },
         R"({"suite":"AEGP Comp Suite","version":9,"function":"AEGP_CreateCameraInComp",)"
         R"("args":{"name":"c","center":{"x":0.5,"y":-0.0},"comp":"comp:1"},"out":{"layer":"layer:4"},"result":0})"},
        {[&] {
             A_Boolean valid = 0;
             bundle.layer_suite->AEGP_IsAddLayerValid(footage_item, comp, &valid);
         },
         R"({"suite":"AEGP Layer Suite","version":11,"function":"AEGP_IsAddLayerValid",)"
         R"("args":{"item":"item:3","comp":"comp:1"},"out":{"valid":1},"result":0})"},
        {[&] { bundle.layer_suite->AEGP_SetLayerFlag(camera, kLayerFlag3D, 1); },
         R"({"suite":"AEGP Layer Suite","version":11,"function":"AEGP_SetLayerFlag",)"
         R"("args":{"layer":"layer:1","flag":2048,"value":1},"out":{},"result":0})"},
        {[&] {
             AEGP_LayerTransferMode mode{};
             bundle.layer_suite->AEGP_GetLayerTransferMode(camera, &mode);
         },
         R"({"suite":"AEGP Layer Suite","version":11,"function":"AEGP_GetLayerTransferMode",)"
         R"("args":{"layer":"layer:1"},"out":{"mode":{"mode":2,"flags":0,"track_matte":0}},"result":0})"},
        {[&] { bundle.light_suite->AEGP_SetLightType(light, kLightTypeSpot); },
         R"({"suite":"AEGP Light Suite","version":2,"function":"AEGP_SetLightType",)"
         R"("args":{"layer":"layer:2","light_type":1},"out":{},"result":0})"},
        {[&] {
             AEGP_StreamValue value{};
             value.stream = zoom;
             value.value.one_d = std::numeric_limits<double>::infinity();
             bundle.stream_suite->AEGP_SetStreamValue(id, zoom, &value);
         },
         R"({"suite":"AEGP Stream Suite","version":7,"function":"AEGP_SetStreamValue",)"
         R"("args":{"plugin_id":1,"stream":"stream:1","value":{"stream":"stream:1","value":"inf"}},"out":{},"result":0})"},
        {[&] {
             AEGP_StreamValue value{};
             value.stream = color;
             value.value.color = {1.0, 0.25, 0.5, 0.75};
             bundle.stream_suite->AEGP_SetStreamValue(id, color, &value);
         },
         R"({"suite":"AEGP Stream Suite","version":7,"function":"AEGP_SetStreamValue",)"
         R"("args":{"plugin_id":1,"stream":"stream:3","value":{"stream":"stream:3",)"
         R"("value":{"alpha":1.0,"red":0.25,"green":0.5,"blue":0.75}}},"out":{},"result":0})"},
        {[&] {
             A_long index = 0;
             bundle.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &key_time, &index);
         },
         R"({"suite":"AEGP Keyframe Suite","version":3,"function":"AEGP_AddKeyframes",)"
         R"("args":{"additions":"additions:1","time_mode":0,"time":{"value":-5,"scale":25}},"out":{"key_index":0},"result":0})"},
        {[&] {
             AEGP_StreamValue value{};
             value.stream = position;
             value.value.three_d = {1.0, -2.0, 1.0 / 3.0};
             bundle.keyframe_suite->AEGP_SetAddKeyframe(info, 0, &value);
         },
         R"({"suite":"AEGP Keyframe Suite","version":3,"function":"AEGP_SetAddKeyframe",)"
         R"("args":{"additions":"additions:1","key_index":0,"value":{"stream":"stream:2",)"
         R"("value":{"x":1.0,"y":-2.0,"z":0.3333333333333333}}},"out":{},"result":0})"},
        {[&] { bundle.keyframe_suite->AEGP_EndAddKeyframes(1, info); },
         R"({"suite":"AEGP Keyframe Suite","version":3,"function":"AEGP_EndAddKeyframes",)"
         R"("args":{"add":1,"additions":"additions:1"},"out":{},"result":0})"},
        {[&] { bundle.stream_suite->AEGP_DisposeStream(position); },
         R"({"suite":"AEGP Stream Suite","version":7,"function":"AEGP_DisposeStream",)"
         R"("args":{"stream":"stream:2"},"out":{},"result":0})"},
        {[&] { bundle.stream_suite->AEGP_DisposeStream(reinterpret_cast<AEGP_StreamRefH>(&bundle)); },
         R"({"suite":"AEGP Stream Suite","version":7,"function":"AEGP_DisposeStream",)"
         R"("args":{"stream":"foreign"},"out":{},"result":3})"},
        {[&] { bundle.ansi_suite->sin(0.5); },
         R"({"suite":"PF ANSI Suite","version":1,"function":"sin","args":{"x":0.5},"out":{},"result":0.479425538604203})"},
        {[&] { bundle.ansi_suite->cos(0.0); },
         R"({"suite":"PF ANSI Suite","version":1,"function":"cos","args":{"x":0.0},"out":{},"result":1.0})"},
        {[&] {
             char destination[8] = {};
             bundle.ansi_suite->strcpy(destination, "copied");
         },
         R"({"suite":"PF ANSI Suite","version":1,"function":"strcpy","args":{"source":"copied"},)"
         R"("out":{"destination":"copied"},"result":"copied"})"},
        {[&] { bundle.utility_suite->AEGP_ReportInfo(id, "told"); },
         R"({"suite":"AEGP Utility Suite","version":7,"function":"AEGP_ReportInfo",)"
         R"("args":{"plugin_id":1,"text":"told"},"out":{},"result":0})"},
        {[&] { bundle.host.basic_data()->msg_func(1, "said"); },
         R"({"suite":"AEIO_BasicData","version":0,"function":"msg_func","args":{"code":1,"text":"said"},)"
         R"("out":{},"result":null})"},
        {[&] {
             std::uint8_t value = 3;
             bundle.data_suite->AEGP_SetData(bundle.blob(), "s", "k", 1, &value);
         },
         "2 lines"},
        {[&] {
             AEGP_MemHandle memory = nullptr;
             bundle.memory_suite->AEGP_NewMemHandle(id, "optionsH", 12, 1, &memory);
         },
         R"({"suite":"AEGP Memory Suite","version":1,"function":"AEGP_NewMemHandle",)"
         R"("args":{"plugin_id":1,"what":"optionsH","size":12,"flags":1},"out":{"handle":"mem:1"},"result":0})"},
        {[&] {
             AEGP_FootageH made = nullptr;
             const AEGP_FileSequenceImportOptions options{1, 0, -1, -1};
             bundle.footage_suite->AEGP_NewFootage(id, "/no/such/file.17.tif", nullptr, &options, 0, nullptr,
                                                   &made);
         },
         R"({"suite":"AEGP Footage Suite","version":7,"function":"AEGP_NewFootage",)"
         R"("args":{"plugin_id":1,"path":"/no/such/file.17.tif","layer_key":null,)"
         R"("sequence_options":{"all_in_folder":1,"force_alphabetical":0,"start_frame":-1,"end_frame":-1},)"
         R"("interpretation_style":0,"reserved":null},"out":{},"result":1})"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(line_of(bundle, c.call), c.line);
    }
}

TEST(CallLog, WritesTheInterpretationReadAndSet) {
    BundleSide bundle;
    const AEGP_ItemH item = bundle.placeholder_item();
    const std::vector<std::string> lines = lines_of(bundle, [&] {
        AEGP_FootageInterp record{};
        bundle.footage_suite->AEGP_GetFootageInterpretation(item, 0, &record);
        record.conform_fps = 25.0;
        bundle.footage_suite->AEGP_SetFootageInterpretation(item, 0, &record);
    });
    ASSERT_EQ(lines.size(), 2U);
    const auto got = nlohmann::ordered_json::parse(lines[0]);
    const auto set = nlohmann::ordered_json::parse(lines[1]);
    EXPECT_EQ(got["out"]["interpretation"].size(), 9U);
    EXPECT_EQ(got["out"]["interpretation"]["conform_fps"], 0.0);
    EXPECT_EQ(set["args"]["interpretation"]["conform_fps"], 25.0);
    EXPECT_EQ(set["args"]["item"], "item:2");
}

TEST(CallLog, WritesNothingWhileItIsOff) {
    BundleSide bundle;
    std::vector<std::string> lines;
    bundle.host.log_calls([&lines](std::string_view line) { lines.emplace_back(line); });
    bundle.host.log_calls(nullptr);
    bundle.folder();
    EXPECT_THAT(lines, IsEmpty());
}

TEST(CallLogOrder, HoldsInnerCallsBackUntilTheOuterEnds) {
    std::vector<std::string> lines;
    embedded::CallLog log;
    log.set_sink([&lines](std::string_view line) { lines.emplace_back(line); });
    const auto outer = log.begin();
    const auto first = log.begin();
    log.end(first, "first");
    const auto second = log.begin();
    log.end(second, "second");
    EXPECT_THAT(lines, IsEmpty());
    log.end(outer, "outer");
    EXPECT_THAT(lines, ElementsAre("outer", "first", "second"));
    EXPECT_EQ(log.last(), 3);
}

}  // namespace
