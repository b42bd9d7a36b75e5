#include "embedded/invariants.h"

#include <cstddef>
#include <cstdint>
#include <vector>

#include "embedded/layer_model.h"
#include "embedded/project.h"
#include "embedded/session.h"
#include "embedded/text_encoding.h"

namespace embedded {
namespace {

using BrokenRule = std::optional<std::string>;

std::string named(const char* label, Id id) {
    return label + (":" + std::to_string(id));
}

template <class Table>
bool exists(const Table& table, Id id) {
    return id >= 1 && Project::index(id) < table.size();
}

bool is_time(const A_Time& time) {
    return time.scale != 0;
}

bool is_positive(const A_Ratio& ratio) {
    return ratio.num >= 1 && ratio.den >= 1;
}

/// Passes each entry of a table to `check`, which returns the broken rule or null.
template <class Table, class Check>
BrokenRule each(const char* label, const Table& table, const Check& check) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        const Id expected = static_cast<Id>(i) + 1;
        const char* const wrong =
            table[i].id != expected ? "its id does not match its place" : check(table[i]);
        if (wrong != nullptr) {
            return named(label, expected) + ": " + wrong;
        }
    }
    return std::nullopt;
}

/// What is wrong with a name that the bundle gave; null for nothing.
const char* wrong_name(const std::string& name, bool unicode) {
    if (unicode) {
        return is_utf8(name) ? nullptr : "its name came as UTF-16 and is not UTF-8";
    }
    return name.size() <= kMaxNameLength ? nullptr : "its name is longer than 31 bytes";
}

const char* wrong_content(const Project& project, const Item& item) {
    switch (item.kind) {
        case ItemKind::folder:
            return item.content == 0 ? nullptr : "it is a folder with content";
        case ItemKind::footage:
            return exists(project.footage, item.content) && project.footage_of(item.content).item == item.id
                       ? nullptr
                       : "its footage does not exist or names another item";
        case ItemKind::composition:
            return exists(project.compositions, item.content) &&
                           project.composition(item.content).item == item.id
                       ? nullptr
                       : "its composition does not exist or names another item";
    }
    return "its kind is unknown";
}

const char* wrong_item(const Project& project, const Item& item) {
    if (item.id == kRootFolder) {
        return item.kind == ItemKind::folder && item.parent_folder == 0 && item.content == 0
                   ? nullptr
                   : "it is not the root folder";
    }
    // Items never move, so a folder is older than its contents and cannot contain itself.
    if (item.parent_folder < 1 || item.parent_folder >= item.id ||
        project.item(item.parent_folder).kind != ItemKind::folder) {
        return "it is in no folder";
    }
    // A file keeps its own name, of any length, unless the bundle renames the item.
    const bool named_by_bundle = item.kind != ItemKind::footage || item.unicode_name;
    if (const char* wrong = named_by_bundle ? wrong_name(item.name, item.unicode_name) : nullptr) {
        return wrong;
    }
    return wrong_content(project, item);
}

const char* wrong_sequence(const SequenceFrames& frames) {
    if (frames.count < 1 || frames.padding < 1 || frames.range.first > frames.range.last) {
        return "its sequence has no frames";
    }
    if (frames.gaps.empty()) {
        return nullptr;
    }
    std::int64_t there = frames.range.last - frames.range.first + 1;
    std::int64_t next = frames.range.first + 1;  // the first file exists, so no gap begins earlier
    for (const FrameRange& gap : frames.gaps) {
        if (gap.first < next || gap.last < gap.first || gap.last >= frames.range.last) {
            return "its gaps are out of order or outside the sequence";
        }
        there -= gap.last - gap.first + 1;
        next = gap.last + 2;
    }
    return there == frames.count ? nullptr : "its gaps and its files do not add up to the sequence";
}

const char* wrong_footage(const Project& project, const Footage& footage) {
    if (footage.item != 0 &&
        !(exists(project.items, footage.item) && project.item(footage.item).kind == ItemKind::footage &&
          project.item(footage.item).content == footage.id)) {
        return "its item does not exist or has other content";
    }
    if (footage.width < 1 || footage.height < 1) {
        return "it has no pixels";
    }
    if (!is_time(footage.duration)) {
        return "its duration has no scale";
    }
    const bool is_placeholder = footage.kind == FootageKind::placeholder;
    if (is_placeholder != footage.path.empty()) {
        return "it is a placeholder with a path or a file without one";
    }
    if (const char* wrong = is_placeholder ? wrong_name(footage.name, false) : nullptr) {
        return wrong;
    }
    if ((footage.kind == FootageKind::module_file) != (footage.in_spec != 0) ||
        (footage.in_spec != 0 && !exists(project.in_specs, footage.in_spec))) {
        return "its in-spec does not exist or does not belong to its kind";
    }
    if (footage.sequence && footage.kind != FootageKind::sequence) {
        return "it has frames and is not a sequence";
    }
    return footage.sequence ? wrong_sequence(*footage.sequence) : nullptr;
}

const char* wrong_composition(const Project& project, const Composition& composition) {
    if (!exists(project.items, composition.item) ||
        project.item(composition.item).kind != ItemKind::composition ||
        project.item(composition.item).content != composition.id) {
        return "its item does not exist or has other content";
    }
    if (composition.width < 1 || composition.height < 1) {
        return "it has no pixels";
    }
    if (!is_time(composition.duration) || !is_positive(composition.pixel_aspect) ||
        !is_positive(composition.frame_rate)) {
        return "its duration, pixel aspect or frame rate is not valid";
    }
    return nullptr;
}

const char* wrong_stream(AEGP_LayerStream kind, const Stream& stream) {
    if (stream.kind != kind) {
        return "a stream's kind does not match its place";
    }
    if (component_count(stream.shape) == 0) {
        return "a stream has no components";
    }
    const Keyframe* before = nullptr;
    for (const Keyframe& key : stream.keyframes) {
        if (!is_time(key.time)) {
            return "the time of a key has no scale";
        }
        if (before != nullptr && compare_times(before->time, key.time) >= 0) {
            return "the keys of a stream are out of order";
        }
        before = &key;
    }
    return nullptr;
}

const char* wrong_source(const Project& project, const Layer& layer) {
    const bool needs_source = layer.kind == LayerKind::footage || layer.kind == LayerKind::composition;
    if (!needs_source) {
        return layer.source_item == 0 ? nullptr : "it has a source, which its kind never has";
    }
    const ItemKind wanted = layer.kind == LayerKind::footage ? ItemKind::footage : ItemKind::composition;
    return exists(project.items, layer.source_item) && project.item(layer.source_item).kind == wanted
               ? nullptr
               : "its source does not exist or is of another kind";
}

const char* wrong_layer(const Project& project, const Layer& layer) {
    if (!exists(project.compositions, layer.composition)) {
        return "it is in no composition";
    }
    if (const char* wrong = wrong_source(project, layer)) {
        return wrong;
    }
    if (!is_time(layer.in_point) || !is_time(layer.duration) || !is_time(layer.offset)) {
        return "a time has no scale";
    }
    if (const char* wrong = layer.source_item == 0 ? wrong_name(layer.name, layer.unicode_name) : nullptr) {
        return wrong;
    }
    const bool is_centered = layer.kind == LayerKind::camera || layer.kind == LayerKind::light;
    if (layer.center.has_value() != is_centered) {
        return "only cameras and lights have a centre";
    }
    if (layer.light_type && layer.kind != LayerKind::light) {
        return "only lights have a kind of light";
    }
    for (const auto& [kind, stream] : layer.streams) {
        if (const char* wrong = wrong_stream(kind, stream)) {
            return wrong;
        }
    }
    return nullptr;
}

/// Every layer is listed once, by the composition that it names.
BrokenRule validate_stacking(const Project& project) {
    std::vector<bool> seen(project.layers.size(), false);
    for (const Composition& composition : project.compositions) {
        for (const Id layer : composition.layers) {
            if (!exists(project.layers, layer) || project.layer(layer).composition != composition.id) {
                return named("comp", composition.id) +
                       ": one of its layers does not exist or is in another composition";
            }
            if (seen[Project::index(layer)]) {
                return named("comp", composition.id) + ": a layer is in it twice";
            }
            seen[Project::index(layer)] = true;
        }
    }
    for (std::size_t i = 0; i < seen.size(); ++i) {
        if (!seen[i]) {
            return named("layer", static_cast<Id>(i) + 1) + ": its composition does not list it";
        }
    }
    return std::nullopt;
}

/// The place in the table of the composition that a layer shows; nothing for other layers.
std::optional<std::size_t> shown_by(const Project& project, Id layer) {
    const Layer& looked_at = project.layer(layer);
    if (looked_at.kind != LayerKind::composition) {
        return std::nullopt;
    }
    return Project::index(project.item(looked_at.source_item).content);
}

/// Removes compositions that no remaining one shows until none is left to remove. Those that remain contain
/// themselves.
BrokenRule validate_nesting(const Project& project) {
    std::vector<std::int64_t> shown(project.compositions.size(), 0);
    for (const Layer& layer : project.layers) {
        if (const auto inner = shown_by(project, layer.id)) {
            ++shown[*inner];
        }
    }
    std::vector<std::size_t> free;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (shown[i] == 0) {
            free.push_back(i);
        }
    }
    std::size_t taken = 0;
    while (!free.empty()) {
        const Composition& outer = project.compositions[free.back()];
        free.pop_back();
        ++taken;
        for (const Id layer : outer.layers) {
            const auto inner = shown_by(project, layer);
            if (inner && --shown[*inner] == 0) {
                free.push_back(*inner);
            }
        }
    }
    return taken == shown.size() ? std::nullopt : BrokenRule("a composition contains itself");
}

BrokenRule validate_undo_steps(const Project& project) {
    for (const UndoStep& step : project.undo_steps) {
        if (!step.closed || step.changes < 0) {
            return "undo step \"" + step.name + "\": it is open or counts fewer than 0 changes";
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<std::string> validate_project(const Project& project) {
    if (project.items.empty()) {
        return "there is no root folder";
    }
    BrokenRule found =
        each("item", project.items, [&](const Item& item) { return wrong_item(project, item); });
    if (!found) {
        found = each("footage", project.footage,
                     [&](const Footage& footage) { return wrong_footage(project, footage); });
    }
    if (!found) {
        found = each("comp", project.compositions,
                     [&](const Composition& composition) { return wrong_composition(project, composition); });
    }
    if (!found) {
        found =
            each("layer", project.layers, [&](const Layer& layer) { return wrong_layer(project, layer); });
    }
    if (!found) {
        found = each("inspec", project.in_specs, [](const InSpec& in_spec) {
            // A disposed in-spec keeps what the module said, which may be incomplete.
            return in_spec.disposed || is_time(in_spec.duration) ? nullptr : "its duration has no scale";
        });
    }
    if (!found) {
        found = validate_stacking(project);
    }
    if (!found) {
        found = validate_nesting(project);
    }
    return found ? found : validate_undo_steps(project);
}

}  // namespace embedded
