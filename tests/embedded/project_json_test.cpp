#include "embedded/project_json.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "embedded/bundle_side.h"

namespace {

using embedded::Json;
using ::testing::ElementsAre;

std::vector<std::string> keys_of(const Json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items()) {
        keys.push_back(key);
    }
    return keys;
}

/// A project with one of everything.
void fill(BundleSide& bundle) {
    bundle.utility_suite->AEGP_StartUndoGroup("Import");
    const AEGP_CompH comp = bundle.comp("sh\xE4t");
    AEGP_LayerH layer = nullptr;
    bundle.layer_suite->AEGP_AddLayer(bundle.placeholder_item(), comp, &layer);
    const AEGP_StreamRefH zoom = bundle.stream(bundle.camera(comp), kLayerStreamZoom);
    const AEGP_AddKeyframesInfoH info = bundle.additions(zoom);
    const A_Time time{-5, 25};
    A_long index = 0;
    bundle.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &time, &index);
    AEGP_StreamValue value{};
    value.stream = zoom;
    value.value.one_d = 320.1;
    bundle.keyframe_suite->AEGP_SetAddKeyframe(info, index, &value);
    bundle.keyframe_suite->AEGP_EndAddKeyframes(1, info);
    bundle.light_suite->AEGP_SetLightType(bundle.light(comp), kLightTypeSpot);
    bundle.utility_suite->AEGP_EndUndoGroup();
    bundle.utility_suite->AEGP_ReportInfo(bundle.host.plugin_id(), "told");
    bundle.host.basic_data()->msg_func(1, "said");
    bundle.host.new_in_spec("a.txl");
}

TEST(ProjectJson, WritesTheWholeProjectInAFixedOrder) {
    embedded::HostOptions options;
    options.alpha_preference = 2;
    BundleSide bundle(options);
    fill(bundle);
    const Json json = embedded::project_to_json(bundle.host.project());
    EXPECT_THAT(keys_of(json), ElementsAre("schema", "items", "footage", "compositions", "in_specs",
                                           "undo_steps", "preferences", "messages"));
    EXPECT_EQ(json["schema"], 2);
    EXPECT_EQ(json["items"].dump(),
              R"([{"id":1,"kind":"folder","name":"","parent_folder":null,"content":null},)"
              R"({"id":2,"kind":"composition","name":{"bytes":"7368e474"},"parent_folder":1,"content":1},)"
              R"({"id":3,"kind":"footage","name":"missing.tif","parent_folder":1,"content":1}])");
    const Json& footage = json["footage"][0];
    EXPECT_EQ(footage["kind"], "placeholder");
    EXPECT_TRUE(footage["sequence"].is_null());
    EXPECT_TRUE(footage["in_spec"].is_null());
    EXPECT_EQ(footage["interpretation"]["pixel_aspect"].dump(), R"({"num":1,"den":1})");

    const Json& layers = json["compositions"][0]["layers"];
    ASSERT_EQ(layers.size(), 3U);
    EXPECT_EQ(layers[0]["kind"], "light") << "top to bottom";
    EXPECT_EQ(layers[0]["light_type"], "spot");
    EXPECT_EQ(layers[1]["kind"], "camera");
    EXPECT_EQ(layers[1]["center"].dump(), R"({"x":320.0,"y":240.0})");
    EXPECT_EQ(layers[1]["streams"].dump(),
              R"([{"kind":11,"name":"zoom","shape":"one_d","value_set":false,"value":888.8888888888889,)"
              R"("keyframes":[[-5,25,320.1]]}])");
    EXPECT_EQ(layers[2]["source_item"], 3);
    EXPECT_EQ(layers[2]["transfer"].dump(), R"({"mode":2,"flags":0,"track_matte":0})");

    EXPECT_EQ(json["in_specs"][0]["path"], "a.txl");
    EXPECT_TRUE(json["in_specs"][0]["alpha_label"].is_null());
    EXPECT_EQ(json["undo_steps"].dump(), R"([{"name":"Import","changes":7,"closed":true}])");
    EXPECT_EQ(
        json["preferences"].dump(),
        R"([{"section":"Main Pref Section","key":"Pref_DEFAULT_UNLABELED_ALPHA","value":{"bytes":"02"}}])");
    EXPECT_EQ(json["messages"].dump(), R"([{"text":"told","code":null},{"text":"said","code":1}])");
}

TEST(ProjectJson, IsTheSameForTheSameProject) {
    std::string first;
    for (int run = 0; run < 2; ++run) {
        BundleSide bundle;
        fill(bundle);
        const std::string text = embedded::project_to_json(bundle.host.project()).dump(2);
        if (run == 0) {
            first = text;
        }
        EXPECT_EQ(text, first);
    }
}

TEST(ProjectJson, WritesSequencesWithTheirGaps) {
    embedded::Project project = embedded::empty_project();
    embedded::Footage footage;
    footage.id = 1;
    footage.kind = embedded::FootageKind::sequence;
    footage.sequence = embedded::SequenceFrames{"a.##.png", {17, 30}, 3, 2, {{19, 20}}};
    project.footage.push_back(footage);
    EXPECT_EQ(
        embedded::project_to_json(project)["footage"][0]["sequence"].dump(),
        R"({"pattern":"a.##.png","first":17,"last":30,"count":3,"padding":2,"gaps":[{"first":19,"last":20}]})");
}

TEST(ConformanceJson, WritesViolationsAndNotes) {
    embedded::ConformanceReport report;
    EXPECT_EQ(embedded::conformance_to_json(report).dump(),
              R"({"clean":true,"problems":[],"notes":[],"dropped":0})");
    report.add(embedded::conformance_finding(embedded::RuleViolation::reserved_slot, 4, "suite", "slot 2"));
    report.add(embedded::conformance_finding(embedded::RuleViolation::name_cut, 0, "callback", "cut"));
    EXPECT_EQ(
        embedded::conformance_to_json(report).dump(),
        R"({"clean":false,"problems":[{"breach":"reserved_slot","call":4,"where":"suite","text":"slot 2"}],)"
        R"("notes":[{"breach":"name_cut","call":null,"where":"callback","text":"cut"}],"dropped":0})");
}

TEST(RuleViolations, HaveThePublishedNamesAndSeverities) {
    using diagnostic::Severity;
    // Scripts rely on these; docs/project-json.md lists them.
    struct {
        const char* name;
        Severity severity;
    } const published[] = {
        {"bad_argument", Severity::error},
        {"dead_handle", Severity::error},
        {"foreign_handle", Severity::error},
        {"reserved_slot", Severity::error},
        {"stream_not_disposed", Severity::error},
        {"additions_not_ended", Severity::error},
        {"undo_group_unbalanced", Severity::error},
        {"change_outside_undo_group", Severity::error},
        {"footage_never_adopted", Severity::error},
        {"suite_not_released", Severity::error},
        {"suite_not_acquired", Severity::error},
        {"memory_use_after_free", Severity::error},
        {"memory_double_free", Severity::error},
        {"memory_unlock_without_lock", Severity::error},
        {"memory_left_locked", Severity::error},
        {"memory_left_alive", Severity::error},
        {"write_outside_frame", Severity::error},
        {"frame_not_drawn", Severity::error},
        {"output_not_set", Severity::error},
        {"call_off_main_thread", Severity::error},
        {"copy_changed", Severity::error},
        {"missing_suite_exception", Severity::error},
        {"name_cut", Severity::note},
        {"sequence_gap", Severity::note},
    };
    ASSERT_EQ(std::size(published), static_cast<std::size_t>(embedded::RuleViolation::sequence_gap) + 1);
    for (std::size_t i = 0; i < std::size(published); ++i) {
        SCOPED_TRACE(published[i].name);
        const diagnostic::Code code = static_cast<embedded::RuleViolation>(i);
        EXPECT_STREQ(code.name(), published[i].name);
        EXPECT_EQ(code.severity(), published[i].severity);
        EXPECT_STRNE(code.meaning(), "");
    }
}

}  // namespace
