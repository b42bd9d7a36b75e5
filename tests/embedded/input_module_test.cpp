// Input modules: which functions the host calls, in which order, and what it keeps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "embedded/project_json.h"
#include "embedded/scripted_module.h"

namespace {

using embedded::RuleViolation;
using scripted::called;
using scripted::script;
using ::testing::ElementsAre;

TEST_F(InputModule, IsListedWithNameExtensionsAndFlags) {
    ASSERT_EQ(bundle.host.modules().size(), 1U);
    const embedded::Module& module = bundle.host.modules()[0];
    EXPECT_EQ(module.name(), "Test module");
    EXPECT_THAT(module.extensions(), ElementsAre(".tst"));
    EXPECT_THAT(module.flag_labels(), ElementsAre("input", "file", "still", "bit 5"));
    EXPECT_EQ(bundle.host.module_for("/some.where/x.tSt"), &module);
    EXPECT_EQ(bundle.host.module_for("x.png"), nullptr);
    EXPECT_EQ(bundle.host.module_for("tst"), nullptr);
}

TEST_F(InputModule, IsCalledInOrderAndTheHostUsesTheInSpecByDefault) {
    const embedded::InSpec& in_spec = bundle.host.project().in_spec(open());
    EXPECT_THAT(called, ElementsAre("verify", "init", "info", "dimensions", "duration"));
    EXPECT_EQ(in_spec.path, "/a/b.TST");
    EXPECT_EQ(in_spec.module_signature, four_char_code("TEST"));
    EXPECT_EQ(in_spec.options, 1);
    EXPECT_EQ(in_spec.depth, 32);
    EXPECT_EQ(in_spec.width, 8);
    EXPECT_EQ(in_spec.height, 4);
    EXPECT_FALSE(in_spec.dimensions_from_module);
    EXPECT_EQ(in_spec.duration.scale, 30U);
    EXPECT_FALSE(in_spec.duration_from_module);
    EXPECT_EQ(in_spec.size_bytes, 192);
    EXPECT_EQ(in_spec.native_fps, 0x1E0000);
    EXPECT_EQ(in_spec.alpha_label->alpha_type, kAlphaTypePremultiplied);
    EXPECT_EQ(in_spec.type_text, "type");
    EXPECT_EQ(in_spec.sub_type_text, std::string(128, 's'));
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
    EXPECT_EQ(embedded::project_to_json(bundle.host.project())["in_specs"][0]["module"], "TEST");
}

TEST_F(InputModule, OverridesTheInSpecWhereItAnswers) {
    script.dimensions = kHostErrorNone;
    script.duration = kHostErrorNone;
    const embedded::InSpec& in_spec = bundle.host.project().in_spec(open());
    EXPECT_EQ(in_spec.width, 99);
    EXPECT_EQ(in_spec.height, 77);
    EXPECT_TRUE(in_spec.dimensions_from_module);
    EXPECT_EQ(in_spec.duration.value, 50);
    EXPECT_TRUE(in_spec.duration_from_module);
}

struct FailureCase {
    const char* name;
    std::function<void()> change;
    A_Err code;
    const char* error;
    std::vector<std::string> calls;
};

TEST_F(InputModule, ThatCannotOpenAFileLeavesNothingOpen) {
    const FailureCase cases[] = {
        {"verify fails", [] { script.verify = 5; }, 5, "the module could not verify the file", {"verify"}},
        {"the module does not accept the file",
         [] { script.importable = 0; },
         1,
         "the module does not accept the file",
         {"verify"}},
        {"init fails with its options attached",
         [] { script.init = 3; },
         3,
         "the module could not read the file",
         {"verify", "init", "dispose"}},
        {"init fails without options",
         [] {
             script.init = 3;
             script.attach_options = false;
         },
         3,
         "the module could not read the file",
         {"verify", "init"}},
        {"info fails",
         [] { script.info = 6; },
         6,
         "the module could not describe the file",
         {"verify", "init", "info", "dispose"}},
        {"dimensions fail",
         [] { script.dimensions = 7; },
         7,
         "the module could not give the dimensions",
         {"verify", "init", "info", "dimensions", "dispose"}},
        {"duration fails",
         [] { script.duration = 8; },
         8,
         "the module could not give the duration",
         {"verify", "init", "info", "dimensions", "duration", "dispose"}},
        {"no size at all",
         [] { script.set_size = false; },
         1,
         "the module gave no dimensions or no duration",
         {"verify", "init", "info", "dimensions", "duration", "dispose"}},
    };
    for (const FailureCase& c : cases) {
        SCOPED_TRACE(c.name);
        script = {};
        called.clear();
        c.change();
        const embedded::OpenResult opened = bundle.host.open_with_module("x.tst");
        EXPECT_EQ(opened.in_spec, 0);
        EXPECT_EQ(opened.callback.code, c.code);
        EXPECT_EQ(opened.error, c.error);
        EXPECT_EQ(called, c.calls);
        for (const embedded::InSpec& in_spec : bundle.host.project().in_specs) {
            EXPECT_TRUE(in_spec.disposed);
        }
    }
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST_F(InputModule, ThatThrowsTheMissingSuiteExceptionFailsWithIt) {
    script.throw_in_init = true;
    const embedded::OpenResult opened = bundle.host.open_with_module("x.tst");
    EXPECT_EQ(opened.callback.code, kHostErrorMissingSuite);
    EXPECT_TRUE(opened.callback.missing_suite);
    EXPECT_EQ(bundle.count(RuleViolation::missing_suite_exception), 1U);
}

TEST_F(InputModule, ThatLeaksAHandleIsReported) {
    script.leak = true;
    script.init = 3;
    script.attach_options = false;
    bundle.host.open_with_module("x.tst");
    ASSERT_EQ(bundle.host.conformance().violations().size(), 1U) << bundle.host.conformance().to_text();
    EXPECT_EQ(bundle.host.conformance().violations()[0].code, RuleViolation::memory_left_alive);
    EXPECT_EQ(bundle.host.conformance().violations()[0].within.front(), "AEIO_InitInSpecFromFile");
}

TEST_F(InputModule, ThatKeepsItsOptionsOnDisposalIsReported) {
    script.free_on_dispose = false;
    EXPECT_EQ(bundle.host.dispose(open()).code, kHostErrorNone);
    EXPECT_EQ(bundle.count(RuleViolation::memory_left_alive), 1U);
}

TEST_F(InputModule, IsDisposedOfOnce) {
    const embedded::Id in_spec = open();
    EXPECT_EQ(bundle.host.dispose(in_spec).code, kHostErrorNone);
    EXPECT_TRUE(bundle.host.project().in_spec(in_spec).disposed);
    EXPECT_EQ(bundle.host.project().in_spec(in_spec).options, 0);
    EXPECT_EQ(bundle.host.dispose(in_spec).code, kHostErrorParameter);
    EXPECT_EQ(std::count(called.begin(), called.end(), "dispose"), 1);
    EXPECT_EQ(bundle.host.dispose(0).code, kHostErrorParameter);
    EXPECT_EQ(bundle.host.dispose(99).code, kHostErrorParameter);
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST_F(InputModule, DisposesOfEverythingBeforeTheBundleUnloads) {
    open();
    open();
    bundle.host.unload();
    EXPECT_EQ(std::count(called.begin(), called.end(), "dispose"), 2);
    EXPECT_EQ(bundle.count(RuleViolation::memory_left_alive), 0U) << bundle.host.conformance().to_text();
    EXPECT_TRUE(bundle.host.modules().empty());
}

TEST_F(InputModule, DrawsIntoFramesOfAnyShape) {
    const embedded::Id in_spec = open();
    for (const A_long row_bytes : {0, 9, 64, -8, -12}) {
        SCOPED_TRACE(row_bytes);
        called.clear();
        embedded::FrameShape shape;
        shape.width_px = 2;
        shape.height_px = 3;
        shape.row_bytes = row_bytes;
        shape.origin_x = -5;
        shape.origin_y = 6;
        const embedded::DrawResult drawn = bundle.host.draw(in_spec, shape);
        EXPECT_EQ(drawn.error, "");
        EXPECT_EQ(drawn.callback.code, kHostErrorNone);
        EXPECT_THAT(called, ElementsAre("draw 2x3 at -5,6"));
        ASSERT_EQ(drawn.pixels.size(), 6U);
        EXPECT_EQ(drawn.pixels[0].alpha, 0);
        EXPECT_EQ(drawn.pixels[1].blue, 7);
        EXPECT_EQ(drawn.pixels[5].alpha, 36);
    }
    EXPECT_TRUE(bundle.host.conformance().clean()) << bundle.host.conformance().to_text();
}

TEST_F(InputModule, ThatDrawsOutsideTheFrameIsReported) {
    script.overdraw_bytes = 1;
    embedded::FrameShape shape;
    shape.width_px = 2;
    shape.height_px = 1;
    bundle.host.draw(open(), shape);
    EXPECT_EQ(bundle.count(RuleViolation::write_outside_frame), 1U);
}

TEST_F(InputModule, IsNotCalledForImpossibleFrames) {
    const embedded::Id in_spec = open();
    called.clear();
    embedded::FrameShape shape;
    shape.width_px = -1;
    EXPECT_EQ(bundle.host.draw(in_spec, shape).error, "a frame of negative size");
    EXPECT_EQ(bundle.host.draw(77, {}).error, "no open in-spec with this id");
    bundle.host.dispose(in_spec);
    EXPECT_EQ(bundle.host.draw(in_spec, {}).error, "no open in-spec with this id");
    EXPECT_THAT(called, ElementsAre("dispose"));
}

TEST_F(InputModule, ReadsFootageWithItsExtension) {
    AEGP_FootageH footage = nullptr;
    ASSERT_EQ(bundle.footage_suite->AEGP_NewFootage(bundle.host.plugin_id(), "/a/b.tst", nullptr, nullptr, 0,
                                                    nullptr, &footage),
              kHostErrorNone);
    const embedded::Footage& made = bundle.host.project().footage.at(0);
    EXPECT_EQ(made.kind, embedded::FootageKind::module_file);
    EXPECT_EQ(made.name, "b.tst");
    EXPECT_EQ(made.width, 8);
    EXPECT_EQ(made.height, 4);
    EXPECT_EQ(made.channels, 4);
    EXPECT_TRUE(made.has_alpha);
    EXPECT_TRUE(made.alpha_premultiplied);
    EXPECT_EQ(made.interpretation.native_fps, 30.0);
    EXPECT_EQ(made.interpretation.depth, 32);
    EXPECT_EQ(made.interpretation.alpha.flags, kAlphaFlagPremultiplied);
    EXPECT_EQ(made.in_spec, 1);
}

TEST_F(InputModule, ThatRefusesAFileFailsTheFootageWithItsError) {
    script.init = 3;
    script.attach_options = false;
    AEGP_FootageH footage = nullptr;
    EXPECT_EQ(bundle.footage_suite->AEGP_NewFootage(bundle.host.plugin_id(), "/a/b.tst", nullptr, nullptr, 0,
                                                    nullptr, &footage),
              3);
    EXPECT_EQ(footage, nullptr);
    EXPECT_TRUE(bundle.host.project().footage.empty());
}

TEST_F(InputModule, CallsAreLoggedInsideTheCallThatCausedThem) {
    std::vector<std::string> functions;
    bundle.host.log_calls([&functions](std::string_view line) {
        functions.push_back(nlohmann::ordered_json::parse(line)["function"].get<std::string>());
    });
    AEGP_FootageH footage = nullptr;
    bundle.footage_suite->AEGP_NewFootage(bundle.host.plugin_id(), "/a/b.tst", nullptr, nullptr, 0, nullptr,
                                          &footage);
    bundle.host.log_calls(nullptr);
    EXPECT_THAT(functions,
                ElementsAre("AEGP_NewFootage", "AEGP_NewMemHandle", "AEGP_SetInSpecOptionsHandle",
                            "AEGP_SetInSpecDepth", "AEGP_SetInSpecDuration", "AEGP_SetInSpecDimensions",
                            "AEGP_SetInSpecSize", "AEGP_SetInSpecNativeFPS", "AEGP_SetInSpecAlphaLabel"));
}

}  // namespace
