// Which rules a bundle can break, and what it may leave behind.

#include <gtest/gtest.h>

#include "embedded/bundle_side.h"

namespace {

using embedded::RuleViolation;

struct Case {
    const char* name;
    RuleViolation violation;
    std::function<void(BundleSide&)> work;
};

const Case kLeftBehind[] = {
    {"a stream", RuleViolation::stream_not_disposed,
     [](BundleSide& b) { b.stream(b.camera(b.comp()), kLayerStreamZoom); }},
    {"key additions", RuleViolation::additions_not_ended,
     [](BundleSide& b) {
         const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
         b.additions(stream);
         b.stream_suite->AEGP_DisposeStream(stream);
     }},
    {"an undo group", RuleViolation::undo_group_unbalanced,
     [](BundleSide& b) { b.utility_suite->AEGP_StartUndoGroup("open"); }},
    {"footage that was never added", RuleViolation::footage_never_adopted,
     [](BundleSide& b) { b.placeholder(); }},
    {"a suite", RuleViolation::suite_not_released,
     [](BundleSide& b) { b.host.acquire<PF_AEAdvAppSuite1>("PF AE Adv App Suite", 1); }},
    {"memory", RuleViolation::memory_left_alive, [](BundleSide& b) { b.memory(); }},
    {"locked memory that an in-spec owns", RuleViolation::memory_left_locked,
     [](BundleSide& b) {
         const AEGP_MemHandle memory = b.memory();
         void* address = nullptr;
         b.io_in_suite->AEGP_SetInSpecOptionsHandle(b.host.in_spec_handle(b.host.new_in_spec("x")), memory,
                                                    &address);
         b.memory_suite->AEGP_LockMemHandle(memory, &address);
     }},
};

/// Runs `work` as a callback, inside an undo group of its own.
void run_in_undo_group(BundleSide& bundle, const std::function<void(BundleSide&)>& work) {
    bundle.host.run("callback", [&]() -> A_Err {
        bundle.utility_suite->AEGP_StartUndoGroup("test");
        work(bundle);
        bundle.utility_suite->AEGP_EndUndoGroup();
        return kHostErrorNone;
    });
}

TEST(Conformance, ReportsWhatACallbackLeavesOpenOnceAtItsEnd) {
    for (const Case& c : kLeftBehind) {
        SCOPED_TRACE(c.name);
        BundleSide bundle;
        run_in_undo_group(bundle, c.work);
        ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
        const diagnostic::Diagnostic& finding = bundle.host.conformance().violations().front();
        EXPECT_EQ(finding.code, c.violation);
        EXPECT_FALSE(finding.at.line.has_value());
        EXPECT_EQ(finding.within, std::vector<std::string>{"callback"});

        run_in_undo_group(bundle, [](BundleSide&) {});
        EXPECT_EQ(bundle.host.conformance().violations().size(), 1U) << "the next callback reports it again";
    }
}

TEST(Conformance, IsCleanAfterACallbackThatTidiesUp) {
    BundleSide bundle;
    run_in_undo_group(bundle, [](BundleSide& b) {
        const AEGP_CompH comp = b.comp();
        const AEGP_StreamRefH stream = b.stream(b.camera(comp), kLayerStreamZoom);
        b.keyframe_suite->AEGP_EndAddKeyframes(1, b.additions(stream));
        b.stream_suite->AEGP_DisposeStream(stream);
        AEGP_LayerH layer = nullptr;
        b.layer_suite->AEGP_AddLayer(b.placeholder_item(), comp, &layer);
        b.memory_suite->AEGP_FreeMemHandle(b.memory());
        b.host.basic_suite()->ReleaseSuite("AEGP Comp Suite", 9);
        b.host.acquire<AEGP_CompSuite9>("AEGP Comp Suite", 9);
    });
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
    EXPECT_TRUE(bundle.host.conformance().notes().empty());
    EXPECT_EQ(bundle.host.conformance().to_text(), "");
}

TEST(Conformance, LetsTheTwoKeptSuitesStayAcquired) {
    BundleSide bundle;
    run_in_undo_group(bundle, [](BundleSide& b) {
        b.host.acquire<AEGP_RegisterSuite4>("AEGP Register Suite", 4);
        b.host.acquire<AEGP_PersistentDataSuite1>("AEGP Persistent Data Suite", 1);
    });
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST(Conformance, ReportsEveryProjectChangeOutsideAnUndoGroup) {
    // Each row changes the project once; what it needs is prepared inside a group.
    struct {
        const char* name;
        std::function<std::function<A_Err()>(BundleSide&)> prepare;
    } const changes[] = {
        {"folder", [](BundleSide& b) { return [&b] { return b.folder() == nullptr ? 1 : 0; }; }},
        {"composition", [](BundleSide& b) { return [&b] { return b.comp() == nullptr ? 1 : 0; }; }},
        {"camera",
         [](BundleSide& b) {
             const AEGP_CompH comp = b.comp();
             return [&b, comp] { return b.camera(comp) == nullptr ? 1 : 0; };
         }},
        {"null",
         [](BundleSide& b) {
             const AEGP_CompH comp = b.comp();
             return [&b, comp] {
                 AEGP_LayerH layer = nullptr;
                 return b.comp_suite->AEGP_CreateNullInComp("n", comp, nullptr, &layer);
             };
         }},
        {"layer",
         [](BundleSide& b) {
             const AEGP_CompH comp = b.comp();
             const AEGP_ItemH item = b.placeholder_item();
             return [&b, comp, item] {
                 AEGP_LayerH layer = nullptr;
                 return b.layer_suite->AEGP_AddLayer(item, comp, &layer);
             };
         }},
        {"footage added",
         [](BundleSide& b) {
             const AEGP_FootageH footage = b.placeholder();
             return [&b, footage] {
                 AEGP_ItemH item = nullptr;
                 return b.footage_suite->AEGP_AddFootageToProject(footage, b.root(), &item);
             };
         }},
        {"interpretation",
         [](BundleSide& b) {
             const AEGP_ItemH item = b.placeholder_item();
             return [&b, item] {
                 AEGP_FootageInterp record{};
                 b.footage_suite->AEGP_GetFootageInterpretation(item, 0, &record);
                 return b.footage_suite->AEGP_SetFootageInterpretation(item, 0, &record);
             };
         }},
        {"flag",
         [](BundleSide& b) {
             const AEGP_LayerH layer = b.camera(b.comp());
             return [&b, layer] { return b.layer_suite->AEGP_SetLayerFlag(layer, kLayerFlag3D, 1); };
         }},
        {"offset",
         [](BundleSide& b) {
             const AEGP_LayerH layer = b.camera(b.comp());
             return [&b, layer] { return b.layer_suite->AEGP_SetLayerOffset(layer, &b.four_seconds); };
         }},
        {"in-point",
         [](BundleSide& b) {
             const AEGP_LayerH layer = b.camera(b.comp());
             return [&b, layer] {
                 return b.layer_suite->AEGP_SetLayerInPointAndDuration(layer, kTimeModeLayer, &b.four_seconds,
                                                                       &b.four_seconds);
             };
         }},
        {"transfer mode",
         [](BundleSide& b) {
             const AEGP_LayerH layer = b.camera(b.comp());
             return [&b, layer] {
                 const AEGP_LayerTransferMode mode{kTransferModeAdd, 0, 0};
                 return b.layer_suite->AEGP_SetLayerTransferMode(layer, &mode);
             };
         }},
        {"light type",
         [](BundleSide& b) {
             const AEGP_LayerH layer = b.light(b.comp());
             return [&b, layer] { return b.light_suite->AEGP_SetLightType(layer, kLightTypeSpot); };
         }},
        {"stream value",
         [](BundleSide& b) {
             const AEGP_StreamRefH stream = b.stream(b.camera(b.comp()), kLayerStreamZoom);
             return [&b, stream] {
                 AEGP_StreamValue value{};
                 value.stream = stream;
                 return b.stream_suite->AEGP_SetStreamValue(b.host.plugin_id(), stream, &value);
             };
         }},
        {"keys",
         [](BundleSide& b) {
             const AEGP_AddKeyframesInfoH info = b.additions(b.stream(b.camera(b.comp()), kLayerStreamZoom));
             A_long index = 0;
             b.keyframe_suite->AEGP_AddKeyframes(info, kTimeModeLayer, &b.four_seconds, &index);
             return [&b, info] { return b.keyframe_suite->AEGP_EndAddKeyframes(1, info); };
         }},
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(change.name);
        BundleSide bundle;
        bundle.utility_suite->AEGP_StartUndoGroup("preparation");
        const auto make_change = change.prepare(bundle);
        bundle.utility_suite->AEGP_EndUndoGroup();
        ASSERT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
        EXPECT_EQ(make_change(), kHostErrorNone);
        EXPECT_EQ(bundle.count(RuleViolation::change_outside_undo_group), 1U);
        EXPECT_EQ(bundle.host.conformance().violations().size(), 1U);
    }
}

TEST(Conformance, AllowsOtherCallsOutsideAnUndoGroup) {
    BundleSide bundle;
    bundle.placeholder();
    const char value = 3;
    bundle.data_suite->AEGP_SetData(bundle.blob(), "section", "key", 1, &value);
    bundle.utility_suite->AEGP_ReportInfo(bundle.host.plugin_id(), "text");
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST(UndoSteps, CountTheChangesOfTheOutermostGroup) {
    BundleSide bundle;
    bundle.utility_suite->AEGP_StartUndoGroup("outer");
    bundle.folder();
    bundle.utility_suite->AEGP_StartUndoGroup("inner");
    bundle.folder();
    bundle.utility_suite->AEGP_EndUndoGroup();
    bundle.utility_suite->AEGP_EndUndoGroup();
    bundle.utility_suite->AEGP_StartUndoGroup("second");
    const auto& steps = bundle.host.project().undo_steps;
    ASSERT_EQ(steps.size(), 2U);
    EXPECT_EQ(steps[0].name, "outer");
    EXPECT_EQ(steps[0].changes, 2);
    EXPECT_TRUE(steps[0].closed);
    EXPECT_EQ(steps[1].name, "second");
    EXPECT_FALSE(steps[1].closed);
}

TEST(Conformance, BlamesANestedCallbackForItsOwnLeftoversAlone) {
    BundleSide bundle;
    bundle.host.run("outer", [&]() -> A_Err {
        const AEGP_MemHandle around = bundle.memory();
        bundle.utility_suite->AEGP_StartUndoGroup("around");
        bundle.host.run("inner", [&]() -> A_Err {
            bundle.memory();
            return kHostErrorNone;
        });
        bundle.utility_suite->AEGP_EndUndoGroup();
        return bundle.memory_suite->AEGP_FreeMemHandle(around);
    });
    ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
    EXPECT_EQ(bundle.host.conformance().violations()[0].within.front(), "inner");
    EXPECT_NE(bundle.host.conformance().violations()[0].reason.find("mem:2"), std::string::npos);
}

TEST(Conformance, FindsWhatIsLeftAtTheEndOfTheHost) {
    BundleSide bundle;
    bundle.memory();
    EXPECT_TRUE(bundle.host.conformance().clean()) << "no callback has run yet";
    bundle.host.unload();
    EXPECT_EQ(bundle.count(RuleViolation::memory_left_alive), 1U);
    EXPECT_EQ(bundle.count(RuleViolation::suite_not_released),
              14U);  // BundleSide acquires 16, of which 2 may stay
}

TEST(ConformanceReport, KeepsAThousandViolationsAndCountsTheRest) {
    embedded::ConformanceReport report;
    for (int i = 0; i < 1005; ++i) {
        report.add(embedded::conformance_finding(RuleViolation::bad_argument, i + 1, "f", "wrong"));
    }
    report.add(embedded::conformance_finding(RuleViolation::name_cut, 1, "f", "cut"));
    EXPECT_EQ(report.violations().size(), embedded::ConformanceReport::kMaxFindings);
    EXPECT_EQ(report.dropped(), 5);
    EXPECT_EQ(report.notes().size(), 1U);
    EXPECT_NE(report.to_text().find("call 1 f: bad_argument: wrong\n"), std::string::npos);
    EXPECT_NE(report.to_text().find("call 1 f: name_cut: cut\n5 more\n"), std::string::npos);
}

}  // namespace
