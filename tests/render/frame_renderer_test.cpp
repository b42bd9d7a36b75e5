#include "render/frame_renderer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "render/code.h"
#include "render/frame_plan.h"
#include "render/square_pixels.h"

namespace {

using embedded::Id;

constexpr A_u_long kRate = 25;

/// A project that no importer would make, piece by piece.
class MadeProject {
  public:
    Id composition(A_long width, A_long height, A_long frames = 10) {
        embedded::Composition made;
        made.id = static_cast<Id>(project.compositions.size()) + 1;
        made.width = width;
        made.height = height;
        made.duration = {frames, kRate};
        made.frame_rate = {2500, 100};
        made.item = item(embedded::ItemKind::composition, made.id);
        project.compositions.push_back(made);
        return made.id;
    }

    Id footage(A_long width, A_long height, AEGP_AlphaFlags alpha) {
        embedded::Footage made;
        made.id = static_cast<Id>(project.footage.size()) + 1;
        made.kind = embedded::FootageKind::module_file;
        made.path = std::to_string(made.id);
        made.width = width;
        made.height = height;
        made.interpretation.alpha.flags = alpha;
        made.item = item(embedded::ItemKind::footage, made.id);
        project.footage.push_back(made);
        return made.id;
    }

    /// On top of the layers that are there.
    embedded::Layer& add(Id composition, Id source_item, PF_TransferMode mode) {
        embedded::Layer made;
        made.id = static_cast<Id>(project.layers.size()) + 1;
        made.composition = composition;
        made.source_item = source_item;
        made.transfer.mode = mode;
        made.in_point = made.offset = {0, kRate};
        made.duration = {10, kRate};
        project.layers.push_back(made);
        project.compositions[static_cast<std::size_t>(composition) - 1].layers.push_front(made.id);
        return project.layers.back();
    }
    embedded::Layer& add_composition(Id to, Id inner, PF_TransferMode mode = kTransferModeNormal) {
        return add(to, project.composition(inner).item, mode);
    }
    embedded::Layer& add_footage(Id to, Id footage, PF_TransferMode mode = kTransferModeNormal) {
        return add(to, project.footage_of(footage).item, mode);
    }

    embedded::Project project = embedded::empty_project();

  private:
    Id item(embedded::ItemKind kind, Id content) {
        embedded::Item made;
        made.id = static_cast<Id>(project.items.size()) + 1;
        made.kind = kind;
        made.name = "item " + std::to_string(made.id);
        made.parent_folder = embedded::kRootFolder;
        made.content = content;
        project.items.push_back(made);
        return made.id;
    }
};

/// Bytes that differ from footage to footage and from place to place.
render::PictureReading noise(const embedded::Footage& footage) {
    render::Picture picture;
    picture.width_px = footage.width;
    picture.height_px = footage.height;
    picture.has_alpha = true;
    auto state = static_cast<std::uint32_t>(footage.id) * 2654435761U;
    for (std::size_t i = 0; i < picture.row_bytes() * static_cast<std::size_t>(footage.height); ++i) {
        state = state * 1664525U + 1013904223U;
        picture.bytes.push_back(static_cast<std::uint8_t>(state >> 24U));
    }
    return {std::move(picture), {}};
}

std::vector<float> drawn(const MadeProject& made, const render::RenderOptions& options) {
    const embedded::Composition& composition = made.project.compositions.front();
    const auto row_values = static_cast<std::size_t>(composition.width) * render::kChannels;
    std::vector<float> values(row_values * static_cast<std::size_t>(composition.height), -1);
    render::FrameRenderer renderer(made.project, noise, options);
    const render::RenderedFrame frame =
        renderer.render(composition.id, 0, [&](std::int64_t y, const float* row) {
            std::copy_n(
                row, row_values,
                values.begin() + static_cast<std::ptrdiff_t>(y * static_cast<std::int64_t>(row_values)));
        });
    EXPECT_FALSE(frame.error.has_value());
    EXPECT_TRUE(frame.findings.empty());
    return values;
}

/// Pictures of several sizes in compositions of several sizes, three deep.
MadeProject made_scene() {
    MadeProject made;
    const Id root = made.composition(37, 41);
    const Id inner = made.composition(50, 20);
    const Id deepest = made.composition(10, 60);
    constexpr PF_TransferMode kModes[] = {kTransferModeNormal, kTransferModeAdd, kTransferModeMultiply};
    int n = 0;
    for (const Id composition : {root, inner, deepest}) {
        for (int i = 0; i < 4; ++i, ++n) {
            const Id footage =
                made.footage(20 + 7 * i, 60 - 11 * i, n % 2 == 0 ? kAlphaFlagPremultiplied : 0U);
            made.add_footage(composition, footage, kModes[n % 3]);
        }
    }
    made.add_composition(inner, deepest, kTransferModeAdd);
    made.add_composition(root, inner, kTransferModeMultiply);
    made.add_footage(root, made.footage(5, 5, 0), kTransferModeAdd);
    return made;
}

struct MemoryCase {
    const char* why;
    std::size_t threads;
    std::int64_t pictures_bytes;
    std::int64_t rows_bytes;
};

TEST(FrameRenderer, TheSameWhateverTheMemoryAndTheThreads) {
    const MadeProject made = made_scene();
    const std::vector<float> expected = drawn(made, {});
    ASSERT_NE(expected, std::vector<float>(expected.size(), 0.0F));
    constexpr std::int64_t kPlenty = std::int64_t{1} << 30;
    const MemoryCase cases[] = {
        {"more threads than rows", 64, kPlenty, kPlenty},
        {"one row a tile", 3, kPlenty, 1},
        {"one picture a pass, all rows at once", 1, 1, kPlenty},
        {"a few pictures a pass, on threads", 3, 1, kPlenty},
        {"one picture a pass, one row a band", 1, 1, 1},
        {"passes that end within a composition, bands of some rows", 2, 9000, 20000},
    };
    for (const MemoryCase& one : cases) {
        render::RenderOptions options;
        options.threads = one.threads;
        options.pictures_bytes = one.pictures_bytes;
        options.rows_bytes = one.rows_bytes;
        EXPECT_EQ(drawn(made, options), expected) << one.why;
    }
}

TEST(FramePlan, CompositionsThatContainEachOtherAreRefused) {
    MadeProject made;
    const Id a = made.composition(8, 8);
    const Id b = made.composition(8, 8);
    made.add_composition(a, b);
    made.add_composition(b, a);
    const render::FramePlan plan = render::plan_frame(made.project, a, 0);
    ASSERT_TRUE(plan.error.has_value());
    EXPECT_EQ(plan.error->code, render::Code::compositions_too_deep);
    EXPECT_EQ(plan.error->reason, "\"item 3\" is nested more than 1024 levels deep");
    EXPECT_TRUE(plan.steps.empty());
}

TEST(FramePlan, LayersThatMultiplyAreRefused) {
    MadeProject made;
    Id inner = made.composition(8, 8);
    made.add_footage(inner, made.footage(8, 8, 0));
    for (int level = 0; level < 30; ++level) {
        const Id outer = made.composition(8, 8);
        made.add_composition(outer, inner);
        made.add_composition(outer, inner);
        inner = outer;
    }
    const render::FramePlan plan = render::plan_frame(made.project, inner, 0);
    ASSERT_TRUE(plan.error.has_value());
    EXPECT_EQ(plan.error->code, render::Code::too_many_layers);
    EXPECT_TRUE(plan.steps.empty());
}

TEST(FramePlan, LargeCompositionsAreRefusedBeforeAnythingIsDrawn) {
    MadeProject made;
    made.add_footage(made.composition(30000, 30000), made.footage(8, 8, 0));
    render::FrameRenderer renderer(made.project, noise, {});
    const render::RenderedFrame frame =
        renderer.render(1, 0, [](std::int64_t, const float*) { FAIL() << "a row was drawn"; });
    ASSERT_TRUE(frame.error.has_value());
    EXPECT_EQ(frame.error->code, render::Code::frame_too_large);
}

struct TimeCase {
    const char* why;
    A_Time offset;
    A_Time in_point;
    A_Time duration;
    std::vector<std::int64_t> shown;
};

TEST(FramePlan, LayersAreShownFromInPointToEnd) {
    const TimeCase cases[] = {
        {"from the first frame", {0, kRate}, {0, kRate}, {3, kRate}, {0, 1, 2}},
        {"later by its offset", {4, kRate}, {0, kRate}, {2, kRate}, {4, 5}},
        {"an in-point in layer time adds to the offset", {2, kRate}, {3, kRate}, {2, kRate}, {5, 6}},
        {"begun before the composition", {-3, kRate}, {0, kRate}, {5, kRate}, {0, 1}},
        {"times in other fractions", {1, 5}, {0, 1}, {1, 5}, {5, 6, 7, 8, 9}},
        {"no length, no frame", {0, kRate}, {0, kRate}, {0, kRate}, {}},
    };
    for (const TimeCase& one : cases) {
        MadeProject made;
        const Id root = made.composition(8, 8);
        embedded::Layer& layer = made.add_footage(root, made.footage(8, 8, 0));
        layer.offset = one.offset;
        layer.in_point = one.in_point;
        layer.duration = one.duration;
        std::vector<std::int64_t> shown;
        for (std::int64_t frame = 0; frame < 10; ++frame) {
            if (!render::plan_frame(made.project, root, frame).steps.empty()) {
                shown.push_back(frame);
            }
        }
        EXPECT_EQ(shown, one.shown) << one.why;
    }
}

TEST(FramePlan, ACompositionWithAnotherRateShowsTheFrameOfItsOwnTime) {
    MadeProject made;
    const Id root = made.composition(8, 8);
    const Id inner = made.composition(8, 8, 4);  // 4 frames of 25 a second, as ten a second: 0.4 s
    embedded::Composition& slow = made.project.compositions.back();
    slow.frame_rate = {10, 1};
    slow.duration = {4, 10};
    made.add_composition(root, inner).duration = {10, kRate};
    // Frames 0 to 2 of it, 0.1 s long each; the third ends at 0.4 s.
    embedded::Layer& layer = made.add_footage(inner, made.footage(8, 8, 0));
    layer.offset = {2, 10};
    layer.duration = {1, 10};
    std::vector<std::int64_t> shown;
    for (std::int64_t frame = 0; frame < 10; ++frame) {
        if (!render::plan_frame(made.project, root, frame).steps.empty()) {
            shown.push_back(frame);
        }
    }
    // 0.2 s to 0.3 s: frames 5 (0.2 s), 6 and 7 (0.28 s).
    EXPECT_EQ(shown, (std::vector<std::int64_t>{5, 6, 7}));
}

TEST(SquarePixels, EveryRowKeepsItsColourAtAnyAspect) {
    for (const double aspect : {0.01, 0.3, 0.91, 1.0, 1.06, 1.42, 2.0, 37.5, 100.0}) {
        for (const std::int64_t width : {1, 2, 7, 100}) {
            const render::SquarePixels square(width, aspect);
            const std::vector<float> row(static_cast<std::size_t>(width) * render::kChannels, 0.25F);
            std::vector<float> stretched(static_cast<std::size_t>(square.width()) * render::kChannels, -1);
            if (!square.same()) {
                square.stretch(row.data(), stretched.data());
                for (const float value : stretched) {
                    ASSERT_NEAR(value, 0.25F, 1e-5F) << width << " x " << aspect;
                }
            }
        }
    }
}

}  // namespace
