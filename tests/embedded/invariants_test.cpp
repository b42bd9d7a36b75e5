// The invariants of projects and of the handles behind them: all hold for what a host makes, and each case
// breaks one.

#include "embedded/invariants.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "embedded/bundle_side.h"
#include "embedded/session.h"
#include "support/changed_value.h"

namespace {

using embedded::FootageKind;
using embedded::FrameRange;
using embedded::ItemKind;
using embedded::Project;
using embedded::Session;

constexpr A_Time kNever{0, 0};

/// A composition with a placeholder, a composition, a camera with three keys, a light and a null as layers;
/// an in-spec with options; memory without an owner.
struct FilledHost {
    BundleSide bundle;

    FilledHost() {
        bundle.host.run("filling", [this] {
            fill();
            return kHostErrorNone;
        });
    }

    static Session& session() { return *Session::active(); }

    [[nodiscard]] AEGP_MemHandle memory() {
        AEGP_MemHandle block = nullptr;
        bundle.memory_suite->AEGP_NewMemHandle(bundle.host.plugin_id(), "memory", 8, 0, &block);
        return block;
    }

  private:
    void fill() {
        bundle.utility_suite->AEGP_StartUndoGroup("step");
        const AEGP_CompH outer = bundle.comp("outer");
        AEGP_LayerH layer = nullptr;
        bundle.layer_suite->AEGP_AddLayer(bundle.placeholder_item(), outer, &layer);
        bundle.layer_suite->AEGP_AddLayer(bundle.item_of(bundle.comp("inner")), outer, &layer);
        add_keys(bundle.camera(outer));
        bundle.light(outer);
        bundle.comp_suite->AEGP_CreateNullInComp("null", outer, nullptr, &layer);
        bundle.utility_suite->AEGP_EndUndoGroup();
        const embedded::Id in_spec = bundle.host.new_in_spec("picture.txl");
        void* none = nullptr;
        bundle.io_in_suite->AEGP_SetInSpecOptionsHandle(bundle.host.in_spec_handle(in_spec), memory(), &none);
    }

    void add_keys(AEGP_LayerH layer) {
        const AEGP_PluginID id = bundle.host.plugin_id();
        AEGP_StreamRefH stream = nullptr;
        bundle.stream_suite->AEGP_GetNewLayerStream(id, layer, kLayerStreamZoom, &stream);
        AEGP_AddKeyframesInfoH keys = nullptr;
        bundle.keyframe_suite->AEGP_StartAddKeyframes(stream, &keys);
        for (A_long frame = 0; frame < 3; ++frame) {
            const A_Time time{frame, 25};
            A_long index = 0;
            bundle.keyframe_suite->AEGP_AddKeyframes(keys, kTimeModeLayer, &time, &index);
        }
        bundle.keyframe_suite->AEGP_EndAddKeyframes(1, keys);
        bundle.stream_suite->AEGP_DisposeStream(stream);
    }
};

// Ids in the project above: items 2 outer, 3 placeholder, 4 inner; layers 1 placeholder, 2 inner, 3 camera,
// 4 light, 5 null.
struct Case {
    const char* name;
    const char* broken_rule;
    void (*break_it)(Project&);
};

/// Files 2, 3, 5, 6 and 9 of a sequence.
void make_sequence(Project& p, std::vector<FrameRange> gaps) {
    embedded::Footage& footage = p.footage[0];
    footage.kind = FootageKind::sequence;
    footage.path = "s.tif";
    footage.sequence = embedded::SequenceFrames{"s#.tif", {2, 9}, 5, 1, std::move(gaps)};
}

const Case kCases[] = {
    {"no items", "there is no root folder", [](Project& p) { p.items.clear(); }},
    {"an item at the wrong place", "item:2: its id does not match its place",
     [](Project& p) { p.items[1].id = 3; }},
    {"a root folder in a folder", "item:1: it is not the root folder",
     [](Project& p) { p.items[0].parent_folder = 1; }},
    {"a root that is not a folder", "item:1: it is not the root folder",
     [](Project& p) { p.items[0].kind = ItemKind::footage; }},
    {"an item without folder", "item:2: it is in no folder",
     [](Project& p) { p.items[1].parent_folder = 0; }},
    {"an item in itself", "item:2: it is in no folder", [](Project& p) { p.items[1].parent_folder = 2; }},
    {"an item in something other than a folder", "item:3: it is in no folder",
     [](Project& p) { p.items[2].parent_folder = 2; }},
    {"a name of 32 bytes", "item:2: its name is longer than 31 bytes",
     [](Project& p) { p.items[1].name.assign(32, 'n'); }},
    {"a composition's item with another composition",
     "item:2: its composition does not exist or names another item",
     [](Project& p) { p.items[1].content = 2; }},
    {"a composition's item without a composition",
     "item:2: its composition does not exist or names another item",
     [](Project& p) { p.items[1].content = 3; }},
    {"a footage item without footage", "item:3: its footage does not exist or names another item",
     [](Project& p) { p.items[2].content = 2; }},
    {"a folder with content", "item:5: it is a folder with content",
     [](Project& p) {
         p.items.push_back({5, ItemKind::folder, "f", 1, 1});
     }},
    {"an item of unknown kind", "item:2: its kind is unknown",
     [](Project& p) { p.items[1].kind = static_cast<ItemKind>(9); }},
    {"footage at the wrong place", "footage:1: its id does not match its place",
     [](Project& p) { p.footage[0].id = 0; }},
    {"footage with the item of other footage", "footage:2: its item does not exist or has other content",
     [](Project& p) {
         p.footage.push_back(p.footage[0]);
         p.footage[1].id = 2;
     }},
    {"footage without pixels", "footage:1: it has no pixels", [](Project& p) { p.footage[0].width = 0; }},
    {"footage without time", "footage:1: its duration has no scale",
     [](Project& p) { p.footage[0].duration = kNever; }},
    {"a placeholder with a path", "footage:1: it is a placeholder with a path or a file without one",
     [](Project& p) { p.footage[0].path = "p"; }},
    {"a file without a path", "footage:1: it is a placeholder with a path or a file without one",
     [](Project& p) { p.footage[0].kind = FootageKind::file; }},
    {"a placeholder with a long name", "footage:1: its name is longer than 31 bytes",
     [](Project& p) { p.footage[0].name.assign(32, 'n'); }},
    {"a placeholder with an in-spec", "footage:1: its in-spec does not exist or does not belong to its kind",
     [](Project& p) { p.footage[0].in_spec = 1; }},
    {"a module's file without an in-spec",
     "footage:1: its in-spec does not exist or does not belong to its kind",
     [](Project& p) {
         p.footage[0].kind = FootageKind::module_file;
         p.footage[0].path = "p.txl";
     }},
    {"a module's file with an unknown in-spec",
     "footage:1: its in-spec does not exist or does not belong to its kind",
     [](Project& p) {
         p.footage[0].kind = FootageKind::module_file;
         p.footage[0].path = "p.txl";
         p.footage[0].in_spec = 2;
     }},
    {"frames of something other than a sequence", "footage:1: it has frames and is not a sequence",
     [](Project& p) { p.footage[0].sequence.emplace(); }},
    {"a sequence without frames", "footage:1: its sequence has no frames",
     [](Project& p) {
         make_sequence(p, {});
         p.footage[0].sequence->count = 0;
     }},
    {"a sequence that ends before it begins", "footage:1: its sequence has no frames",
     [](Project& p) {
         make_sequence(p, {});
         p.footage[0].sequence->range = {3, 2};
     }},
    {"a sequence with gaps", nullptr,
     [](Project& p) {
         make_sequence(p, {{4, 4}, {7, 8}});
     }},
    {"a gap before the first file", "footage:1: its gaps are out of order or outside the sequence",
     [](Project& p) {
         make_sequence(p, {{2, 2}, {7, 8}});
     }},
    {"a gap up to the last file", "footage:1: its gaps are out of order or outside the sequence",
     [](Project& p) {
         make_sequence(p, {{4, 4}, {8, 9}});
     }},
    {"gaps without a file between them", "footage:1: its gaps are out of order or outside the sequence",
     [](Project& p) {
         make_sequence(p, {{4, 4}, {5, 6}});
     }},
    {"a gap that ends before it begins", "footage:1: its gaps are out of order or outside the sequence",
     [](Project& p) {
         make_sequence(p, {{5, 4}});
     }},
    {"one gap missing", "footage:1: its gaps and its files do not add up to the sequence",
     [](Project& p) {
         make_sequence(p, {{7, 8}});
     }},
    {"a composition at the wrong place", "comp:1: its id does not match its place",
     [](Project& p) { p.compositions[0].id = 2; }},
    {"a composition with the item of another composition",
     "comp:3: its item does not exist or has other content",
     [](Project& p) {
         p.compositions.push_back(p.compositions[0]);
         p.compositions[2].id = 3;
     }},
    {"a composition without an item", "comp:3: its item does not exist or has other content",
     [](Project& p) {
         p.compositions.push_back(p.compositions[0]);
         p.compositions[2].id = 3;
         p.compositions[2].item = 0;
     }},
    {"a composition without pixels", "comp:1: it has no pixels",
     [](Project& p) { p.compositions[0].height = 0; }},
    {"a composition without time", "comp:1: its duration, pixel aspect or frame rate is not valid",
     [](Project& p) { p.compositions[0].duration = kNever; }},
    {"a composition without aspect", "comp:1: its duration, pixel aspect or frame rate is not valid",
     [](Project& p) {
         p.compositions[0].pixel_aspect = {0, 1};
     }},
    {"a composition without a rate", "comp:1: its duration, pixel aspect or frame rate is not valid",
     [](Project& p) {
         p.compositions[0].frame_rate = {1, 0};
     }},
    {"a layer at the wrong place", "layer:1: its id does not match its place",
     [](Project& p) { p.layers[0].id = 2; }},
    {"a layer without composition", "layer:1: it is in no composition",
     [](Project& p) { p.layers[0].composition = 3; }},
    {"a layer with a source of another kind", "layer:1: its source does not exist or is of another kind",
     [](Project& p) { p.layers[0].source_item = 4; }},
    {"a layer without a source", "layer:2: its source does not exist or is of another kind",
     [](Project& p) { p.layers[1].source_item = 0; }},
    {"a null with a source", "layer:5: it has a source, which its kind never has",
     [](Project& p) { p.layers[4].source_item = 3; }},
    {"a layer without an in-point", "layer:1: a time has no scale",
     [](Project& p) { p.layers[0].in_point = kNever; }},
    {"a layer without a duration", "layer:1: a time has no scale",
     [](Project& p) { p.layers[0].duration = kNever; }},
    {"a layer without an offset", "layer:1: a time has no scale",
     [](Project& p) { p.layers[0].offset = kNever; }},
    {"a null with a long name", "layer:5: its name is longer than 31 bytes",
     [](Project& p) { p.layers[4].name.assign(32, 'n'); }},
    {"a null with a centre", "layer:5: only cameras and lights have a centre",
     [](Project& p) { p.layers[4].center = A_FloatPoint{}; }},
    {"a camera without a centre", "layer:3: only cameras and lights have a centre",
     [](Project& p) { p.layers[2].center.reset(); }},
    {"a camera that is a kind of light", "layer:3: only lights have a kind of light",
     [](Project& p) { p.layers[2].light_type = kLightTypeSpot; }},
    {"a stream at the wrong place", "layer:3: a stream's kind does not match its place",
     [](Project& p) { p.layers[2].streams[kLayerStreamZoom].kind = kLayerStreamPosition; }},
    {"a stream of unknown shape", "layer:3: a stream has no components",
     [](Project& p) { p.layers[2].streams[kLayerStreamZoom].shape = static_cast<embedded::StreamShape>(9); }},
    {"a key without time", "layer:3: the time of a key has no scale",
     [](Project& p) { p.layers[2].streams[kLayerStreamZoom].keyframes[2].time = kNever; }},
    {"two keys at the same time", "layer:3: the keys of a stream are out of order",
     [](Project& p) {
         p.layers[2].streams[kLayerStreamZoom].keyframes[2].time = {2, 50};
     }},
    {"an in-spec at the wrong place", "inspec:1: its id does not match its place",
     [](Project& p) { p.in_specs[0].id = 2; }},
    {"an in-spec without time", "inspec:1: its duration has no scale",
     [](Project& p) { p.in_specs[0].duration = kNever; }},
    {"a disposed in-spec without time", nullptr,
     [](Project& p) {
         p.in_specs[0].duration = kNever;
         p.in_specs[0].disposed = true;
     }},
    {"a composition with an unknown layer",
     "comp:1: one of its layers does not exist or is in another composition",
     [](Project& p) { p.compositions[0].layers.push_back(6); }},
    {"a composition with the layer of another composition",
     "comp:2: one of its layers does not exist or is in another composition",
     [](Project& p) { p.compositions[1].layers.push_back(1); }},
    {"a layer that is listed twice", "comp:1: a layer is in it twice",
     [](Project& p) { p.compositions[0].layers.push_back(1); }},
    {"a layer that its composition does not list", "layer:5: its composition does not list it",
     [](Project& p) { p.compositions[0].layers.pop_front(); }},
    {"a composition within itself", "a composition contains itself",
     [](Project& p) { p.layers[1].source_item = 2; }},
    {"an undo step that is open", "undo step \"step\": it is open or counts fewer than 0 changes",
     [](Project& p) { p.undo_steps[0].closed = false; }},
    {"an undo step with a negative number of changes",
     "undo step \"step\": it is open or counts fewer than 0 changes",
     [](Project& p) { p.undo_steps[0].changes = -1; }},
};

TEST(ProjectInvariants, HoldForWhatAHostMakes) {
    EXPECT_EQ(embedded::validate_project(embedded::empty_project()), std::nullopt);
    const FilledHost filled;
    ASSERT_EQ(filled.bundle.host.project().layers.size(), 5U);
    ASSERT_EQ(filled.bundle.host.project().items.size(), 4U);
    EXPECT_EQ(filled.bundle.host.validate(), std::nullopt);
}

TEST(ProjectInvariants, AreFoundBrokenOneByOne) {
    const FilledHost filled;
    for (const Case& broken : kCases) {
        SCOPED_TRACE(broken.name);
        Project project = filled.bundle.host.project();
        broken.break_it(project);
        EXPECT_EQ(embedded::validate_project(project), broken.broken_rule == nullptr
                                                           ? std::nullopt
                                                           : std::optional<std::string>(broken.broken_rule));
    }
}

struct SessionCase {
    const char* name;
    const char* broken_rule;
    Undo (*break_it)(Session&);
};

Undo add_to(std::vector<std::string>& list) {
    list.emplace_back();
    return [&list] { list.pop_back(); };
}

const SessionCase kSessionCases[] = {
    {"an object without a handle", "outspec: 0 handles for 1 objects",
     [](Session& s) { return add_to(s.out_spec_paths); }},
    {"a stream that no layer has", "stream:1: no layer has it",
     [](Session& s) { return changed(s.stream_refs[0].kind, kLayerStreamColor); }},
    {"a stream without a layer", "stream:1: no layer has it",
     [](Session& s) { return changed(s.stream_refs[0].layer, 6); }},
    {"additions without a stream", "additions:1: their stream does not exist",
     [](Session& s) { return changed(s.additions[0].stream_ref, 2); }},
    {"memory at the wrong place", "mem:1: its id does not match its place",
     [](Session& s) { return changed(s.memory.block(1).id, 2); }},
    {"memory with a negative lock count", "mem:1: its lock count is negative",
     [](Session& s) { return changed(s.memory.block(1).locks, -1); }},
    {"memory of an in-spec without options", "mem:1: its in-spec has other options",
     [](Session& s) { return changed(s.project.in_specs[0].options, 0); }},
    {"memory of an unknown in-spec", "mem:1: its in-spec has other options",
     [](Session& s) { return changed(s.memory.block(1).in_spec, 2); }},
    {"options without an owner", "inspec:1: its options do not exist or belong to another in-spec",
     [](Session& s) { return changed(s.memory.block(1).in_spec, 0); }},
    {"options that are not memory", "inspec:1: its options do not exist or belong to another in-spec",
     [](Session& s) {
         const Undo detach = changed(s.memory.block(1).in_spec, 0);
         const Undo point = changed(s.project.in_specs[0].options, 2);
         return Undo([detach, point] {
             point();
             detach();
         });
     }},
    {"an in-spec disposed of before its handle", "inspec:1: its handle is alive and it is not",
     [](Session& s) { return changed(s.project.in_specs[0].disposed, true); }},
};

TEST(SessionInvariants, AreFoundBrokenOneByOne) {
    const FilledHost filled;
    for (const SessionCase& broken : kSessionCases) {
        SCOPED_TRACE(broken.name);
        const Undo mend = broken.break_it(FilledHost::session());
        EXPECT_EQ(filled.bundle.host.validate(), broken.broken_rule);
        mend();
        EXPECT_EQ(filled.bundle.host.validate(), std::nullopt);
    }
}

TEST(SessionInvariants, CoverHandlesThatDieTooEarly) {
    FilledHost filled;
    FilledHost::session().handles.kill(embedded::HandleKind::layer, 2);
    EXPECT_EQ(filled.bundle.host.validate(), "layer:2: it is alive and its handle is not");
}

TEST(SessionInvariants, CoverWhatIsOpenBetweenCallbacks) {
    FilledHost filled;
    const AEGP_CompH comp = filled.bundle.comp();
    AEGP_StreamRefH stream = nullptr;
    filled.bundle.stream_suite->AEGP_GetNewLayerStream(filled.bundle.host.plugin_id(),
                                                       filled.bundle.camera(comp), kLayerStreamZoom, &stream);
    EXPECT_EQ(filled.bundle.host.validate(), "stream:2: its handle is alive and it is not");
    filled.bundle.stream_suite->AEGP_DisposeStream(stream);
    EXPECT_EQ(filled.bundle.host.validate(), std::nullopt);
}

}  // namespace
