// What only a current host asks of an input module, and which mistakes it finds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "embedded/testing.h"

namespace {

using embedded::RuleViolation;
using testing::ElementsAre;
using testing::IsEmpty;

/// What the module does wrong; by default nothing.
struct Script {
    bool leaves_importable = false;
    bool leaves_info = false;
    bool leaves_name = false;
    bool leaves_counts = false;
    bool leaves_flags = false;
    bool draws_all = false;  ///< whatever region is required
    bool draws_nothing = false;
    bool reports = false;  ///< while it draws
    bool changes_spec = false;
    A_u_char colour = 9;
};
Script script;

struct Seen {
    bool null_count = false;
    bool flags_given = false;
    bool main_thread = false;
    bool inflated_on_main_thread = true;
    bool disposed_on_main_thread = true;
    void* options = nullptr;
    AEIO_Handle inflated = nullptr;
    AEIO_InSpecH spec = nullptr;
    AEIO_DrawSparseFramePB request = {};
};
Seen seen;
std::thread::id main_thread;

const AEGP_IOInSuite5* in_suite = nullptr;
const AEGP_MemorySuite1* memory_suite = nullptr;
const AEGP_UtilitySuite7* utility_suite = nullptr;
AEGP_PluginID plugin_id = 0;
AEGP_MemHandle flat = nullptr;

bool on_main_thread() {
    return std::this_thread::get_id() == main_thread;
}

AEGP_MemHandle new_handle() {
    AEGP_MemHandle made = nullptr;
    memory_suite->AEGP_NewMemHandle(plugin_id, "made", 8, kMemFlagClear, &made);
    return made;
}

A_Err verify(AEIO_BasicData*, A_long, const A_UTF16Char*, A_Boolean* importable) {
    if (!script.leaves_importable) {
        *importable = 1;
    }
    return kHostErrorNone;
}

A_Err init(AEIO_BasicData*, const A_UTF16Char*, AEIO_InSpecH spec) {
    void* old = nullptr;
    in_suite->AEGP_SetInSpecOptionsHandle(spec, new_handle(), &old);
    const A_Time still = {0, 30};
    in_suite->AEGP_SetInSpecDuration(spec, &still);
    return in_suite->AEGP_SetInSpecDimensions(spec, 4, 3);
}

A_Err info(AEIO_BasicData*, AEIO_InSpecH, AEIO_Verbiage* verbiage) {
    if (!script.leaves_info) {
        verbiage->type[0] = 0;
        verbiage->sub_type[0] = 0;
        if (!script.leaves_name) {
            verbiage->name[0] = 0;
        }
    }
    return kHostErrorNone;
}

A_Err count(AEIO_BasicData*, AEIO_InSpecH, A_long* number) {
    if (number == nullptr) {
        seen.null_count = true;
    } else if (!script.leaves_counts) {
        *number = 1;
    }
    return kHostErrorNone;
}

A_Err draw(AEIO_BasicData*, AEIO_InSpecH spec, const AEIO_DrawSparseFramePB* request, PF_LayerDef* world,
           AEIO_DrawingFlags* flags) {
    seen.spec = spec;
    seen.request = *request;
    seen.flags_given = flags != nullptr;
    seen.main_thread = on_main_thread();
    in_suite->AEGP_GetInSpecOptionsHandle(spec, &seen.options);
    if (flags != nullptr && !script.leaves_flags) {
        *flags = 0;
    }
    if (script.reports) {
        utility_suite->AEGP_ReportInfo(plugin_id, "while drawing");
    }
    if (script.changes_spec) {
        in_suite->AEGP_SetInSpecDepth(spec, 24);
    }
    const A_LRect whole = {0, 0, world->width, world->height};
    const A_LRect part = script.draws_all ? whole : request->required_region;
    for (A_long y = part.top; y < part.bottom && !script.draws_nothing; ++y) {
        for (A_long x = part.left; x < part.right; ++x) {
            unsigned char* const row =
                reinterpret_cast<unsigned char*>(world->data) + std::ptrdiff_t{y} * world->row_bytes;
            std::memset(row + std::ptrdiff_t{x} * 4, script.colour, 4);
        }
    }
    return kHostErrorNone;
}

A_Err dispose(AEIO_BasicData*, AEIO_InSpecH spec) {
    seen.disposed_on_main_thread = on_main_thread();
    void* options = nullptr;
    in_suite->AEGP_GetInSpecOptionsHandle(spec, &options);
    return options == nullptr ? kHostErrorNone
                              : memory_suite->AEGP_FreeMemHandle(static_cast<AEGP_MemHandle>(options));
}

class CurrentModule : public testing::Test {
  protected:
    explicit CurrentModule(A_long minor = 0) : host_(options(minor)) {
        script = {};
        seen = {};
        flat = nullptr;
        main_thread = std::this_thread::get_id();
        plugin_id = host_.plugin_id();
        in_suite = host_.acquire<AEGP_IOInSuite5>("AEGP IO In Suite", 5);
        memory_suite = host_.acquire<AEGP_MemorySuite1>("AEGP Memory Suite", 1);
        utility_suite = host_.acquire<AEGP_UtilitySuite7>("AEGP Utility Suite", 7);
        register_module();
    }

    static embedded::HostOptions options(A_long minor) {
        embedded::HostOptions made;
        made.version = {13, minor};
        return made;
    }

    void register_module() {
        std::array<ReservedSlot, kFunctionBlock4Fields> slots;
        slots.fill(reinterpret_cast<ReservedSlot>(+[] { return kHostUseDefaultCallback; }));
        auto functions = std::bit_cast<AEIO_FunctionBlock4>(slots);
        functions.AEIO_VerifyFileImportable = verify;
        functions.AEIO_InitInSpecFromFile = init;
        functions.AEIO_GetInSpecInfo = info;
        functions.AEIO_NumAuxFiles = count;
        functions.AEIO_GetNumAuxChannels = count;
        functions.AEIO_DrawSparseFrame = draw;
        functions.AEIO_DisposeInSpec = dispose;
        functions.AEIO_FlattenOptions = [](AEIO_BasicData*, AEIO_InSpecH, AEIO_Handle* handle) {
            flat = new_handle();
            *handle = flat;
            return kHostErrorNone;
        };
        functions.AEIO_InflateOptions = [](AEIO_BasicData*, AEIO_InSpecH spec, AEIO_Handle handle) {
            seen.inflated = handle;
            seen.inflated_on_main_thread = on_main_thread();
            return in_suite->AEGP_SetInSpecDepth(spec, 32);
        };
        AEIO_ModuleInfo record{};
        record.signature = four_char_code("TEST");
        record.num_extensions = 1;
        record.read_kinds[0].ext = {'.', {'t', 's', 't'}};
        const auto* suite = host_.acquire<AEGP_RegisterSuite6>("AEGP Register Suite", 6);
        ASSERT_EQ(suite->AEGP_RegisterIO(plugin_id, nullptr, &record, &functions), kHostErrorNone);
    }

    embedded::Id open() {
        const embedded::OpenResult opened = host_.open_with_module("/a/b.tst");
        EXPECT_EQ(opened.error, "");
        return opened.in_spec;
    }

    embedded::DrawResult draw_part(embedded::Id in_spec, std::uint8_t fill = 0x11) {
        embedded::FrameShape shape;
        shape.width_px = 2;
        shape.height_px = 2;
        shape.fill = fill;
        shape.resolution_divisor = 2;
        shape.required_region = A_LRect{1, 0, 2, 2};
        return host_.draw(in_spec, shape);
    }

    std::vector<std::string> findings() {
        std::vector<std::string> all;
        for (const diagnostic::Diagnostic& found : host_.conformance().violations()) {
            all.push_back(std::string(found.code.name()) + " in " + found.within.front());
        }
        return all;
    }

    embedded::TestHost host_;
};

TEST_F(CurrentModule, IsAskedWithNullAndWithTheFramesScaleAndRegion) {
    const embedded::Id in_spec = open();
    EXPECT_TRUE(seen.null_count);
    const embedded::DrawResult drawn = draw_part(in_spec);
    EXPECT_EQ(drawn.pixels.at(0).red, 0x11);
    EXPECT_EQ(drawn.pixels.at(1).red, 9);
    EXPECT_TRUE(seen.main_thread);
    EXPECT_TRUE(seen.flags_given);
    EXPECT_EQ(seen.request.scale_x.num, 1);
    EXPECT_EQ(seen.request.scale_x.den, 2U);
    EXPECT_EQ(seen.request.scale_y.den, 2U);
    EXPECT_EQ(seen.request.required_region.left, 1);
    EXPECT_EQ(seen.request.required_region.bottom, 2);
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(CurrentModule, OutputsThatAreLeftAreFound) {
    script.leaves_name = true;
    script.leaves_counts = true;
    script.leaves_flags = true;
    draw_part(open());
    EXPECT_THAT(
        findings(),
        ElementsAre("output_not_set in AEIO_GetInSpecInfo", "output_not_set in AEIO_NumAuxFiles",
                    "output_not_set in AEIO_GetNumAuxChannels", "output_not_set in AEIO_DrawSparseFrame"));
}

TEST_F(CurrentModule, AVerbiageThatIsLeftIsFoundAndEmpty) {
    script.leaves_info = true;
    const embedded::Id in_spec = open();
    EXPECT_EQ(host_.project().in_spec(in_spec).type_text, "");
    EXPECT_THAT(findings(), ElementsAre("output_not_set in AEIO_GetInSpecInfo"));
}

TEST_F(CurrentModule, AnAnswerThatIsLeftIsFoundAndNo) {
    script.leaves_importable = true;
    EXPECT_EQ(host_.open_with_module("/a/b.tst").error, "the module does not accept the file");
    EXPECT_THAT(findings(), ElementsAre("output_not_set in AEIO_VerifyFileImportable"));
}

TEST_F(CurrentModule, PixelsOutsideTheRegionAreFound) {
    script.draws_all = true;
    draw_part(open());
    EXPECT_THAT(findings(), ElementsAre("write_outside_frame in AEIO_DrawSparseFrame"));
}

TEST_F(CurrentModule, AFrameThatIsLeftIsFound) {
    script.draws_nothing = true;
    draw_part(open());
    EXPECT_THAT(findings(), ElementsAre("frame_not_drawn in AEIO_DrawSparseFrame"));
}

TEST_F(CurrentModule, APictureThatLooksLikeTheFillIsDrawn) {
    script.colour = 0x11;
    draw_part(open(), 0x11);
    EXPECT_THAT(findings(), IsEmpty());
}

TEST_F(CurrentModule, OnTheMainThreadItMayReportAndChangeItsSpec) {
    script.reports = true;
    script.changes_spec = true;
    draw_part(open());
    EXPECT_EQ(host_.messages().size(), 1U);
    EXPECT_THAT(findings(), IsEmpty());
}

// Interface 13.5 and later.
class CopiedModule : public CurrentModule {
  protected:
    CopiedModule() : CurrentModule(5) {}
};

TEST_F(CopiedModule, IsDrawnOnAnotherThreadWithoutOptionsAndFlags) {
    const embedded::Id in_spec = open();
    const embedded::DrawResult drawn = draw_part(in_spec);
    EXPECT_EQ(drawn.callback.code, 0);
    EXPECT_EQ(drawn.pixels.at(1).red, 9);
    EXPECT_FALSE(seen.main_thread);
    EXPECT_FALSE(seen.inflated_on_main_thread);
    EXPECT_FALSE(seen.disposed_on_main_thread);
    EXPECT_FALSE(seen.flags_given);
    EXPECT_EQ(seen.options, nullptr);
    EXPECT_NE(seen.spec, host_.in_spec_handle(in_spec));
    EXPECT_EQ(seen.inflated, flat);
    EXPECT_NE(flat, nullptr);
    const embedded::InSpec& copy = host_.project().in_specs.back();
    EXPECT_EQ(copy.copy_of, in_spec);
    EXPECT_EQ(copy.path, "/a/b.tst");
    EXPECT_EQ(copy.depth, 32) << "inflating may change the copy";
    EXPECT_TRUE(copy.disposed);
    EXPECT_FALSE(host_.project().in_spec(in_spec).disposed);
    EXPECT_THAT(findings(), IsEmpty());
    EXPECT_EQ(host_.validate().value_or(""), "");
    EXPECT_EQ(memory_suite->AEGP_LockMemHandle(flat, &seen.options), kHostErrorParameter)
        << "the host has freed it";
}

TEST_F(CopiedModule, ReportsAndChangesWhileDrawingAreRefusedAndFound) {
    script.reports = true;
    script.changes_spec = true;
    draw_part(open());
    EXPECT_THAT(host_.messages(), IsEmpty());
    EXPECT_EQ(host_.project().in_specs.back().depth, 32);
    EXPECT_THAT(findings(), ElementsAre("call_off_main_thread in AEGP_ReportInfo",
                                        "copy_changed in AEGP_SetInSpecDepth"));
}

TEST(CopyingHosts, AreCurrentOnesFromInterface135On) {
    const struct {
        embedded::HostGeneration generation;
        embedded::InterfaceVersion version;
        bool copies;
    } cases[] = {
        {embedded::HostGeneration::today, {13, 4}, false},
        {embedded::HostGeneration::today, {13, 5}, true},
        {embedded::HostGeneration::today, {14, 0}, true},
        {embedded::HostGeneration::today, {9, 31}, false},
        {embedded::HostGeneration::classic, {13, 5}, false},
    };
    for (const auto& c : cases) {
        embedded::HostOptions options;
        options.generation = c.generation;
        options.version = c.version;
        EXPECT_EQ(options.draws_from_copies(), c.copies) << c.version.major << "." << c.version.minor;
    }
}

}  // namespace
