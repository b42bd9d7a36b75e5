#include "end_to_end/project_text.h"

#include <set>
#include <stdexcept>

namespace {

using embedded::Footage;
using embedded::FootageKind;
using embedded::Id;
using embedded::Item;
using embedded::ItemKind;
using embedded::Layer;
using embedded::LayerKind;
using embedded::Project;

std::string time_text(const A_Time& time) {
    return std::to_string(time.value) + "@" + std::to_string(time.scale);
}

std::string ratio_text(const A_Ratio& ratio) {
    return std::to_string(ratio.num) + "/" + std::to_string(ratio.den);
}

std::string size_text(A_long width, A_long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string quoted(const std::string& name) {
    return "\"" + name + "\"";
}

std::string footage_name(const Footage& footage) {
    return footage.kind == FootageKind::placeholder ? footage.name
                                                    : footage.path.substr(footage.path.find_last_of('/') + 1);
}

std::string kind_word(const Footage& footage) {
    switch (footage.kind) {
        case FootageKind::file:
            return "file";
        case FootageKind::sequence:
            return "sequence";
        case FootageKind::module_file:
            return "module";
        case FootageKind::placeholder:
            break;
    }
    return "missing";
}

std::string footage_text(const Footage& footage) {
    std::string text =
        kind_word(footage) + " " + footage_name(footage) + " " + size_text(footage.width, footage.height);
    if (footage.kind == FootageKind::placeholder) {
        text += " " + time_text(footage.duration);
    }
    const AEGP_FootageInterp& read_as = footage.interpretation;
    if (footage.sequence) {
        const embedded::FrameRange& range = footage.sequence->range;
        text +=
            " " + std::to_string(range.first) + "-" + std::to_string(range.last) + " at " +
            std::to_string(read_as.conform_fps).substr(0, std::to_string(read_as.conform_fps).find('.') + 2);
        if (!footage.sequence->gaps.empty()) {
            text += " with gaps";
        }
    }
    return text + " alpha " + std::to_string(read_as.alpha.flags) + " fields " +
           std::to_string(read_as.interlace.type) + "/" + std::to_string(read_as.interlace.order) +
           " pixels " + ratio_text(read_as.pixel_aspect);
}

std::string item_text(const Project& project, const Item& item) {
    switch (item.kind) {
        case ItemKind::folder:
            return "folder " + quoted(item.name);
        case ItemKind::composition: {
            const embedded::Composition& comp = project.composition(item.content);
            return "comp " + quoted(item.name) + " " + size_text(comp.width, comp.height) + " " +
                   ratio_text(comp.pixel_aspect) + " " + time_text(comp.duration) + " " +
                   ratio_text(comp.frame_rate);
        }
        case ItemKind::footage:
            break;
    }
    return footage_text(project.footage_of(item.content));
}

void append_children(const Project& project, Id folder, const std::string& indent, std::string& text) {
    for (const Id id : project.children_of(folder)) {
        text += indent + item_text(project, project.item(id)) + "\n";
        if (project.item(id).kind == ItemKind::folder) {
            append_children(project, id, indent + "  ", text);
        }
    }
}

std::string keys_text(const Layer& layer) {
    std::set<std::size_t> counts;
    for (const auto& [kind, stream] : layer.streams) {
        if (!stream.keyframes.empty()) {
            counts.insert(stream.keyframes.size());
        }
    }
    if (counts.size() > 1) {
        throw std::runtime_error("streams of " + layer.name + " have different numbers of keys");
    }
    return " keys " + std::to_string(counts.empty() ? 0 : *counts.begin());
}

std::string layer_text(const Project& project, const Layer& layer) {
    const auto what = [&]() -> std::string {
        switch (layer.kind) {
            case LayerKind::camera:
                return "camera " + quoted(layer.name) + keys_text(layer);
            case LayerKind::light:
                return "light " + quoted(layer.name) + " type " +
                       std::to_string(layer.light_type.value_or(-1)) + keys_text(layer);
            case LayerKind::null:
                return "null " + quoted(layer.name) + (layer.is_3d() ? "" : " flat") + keys_text(layer);
            default:
                break;
        }
        const Item& source = project.item(layer.source_item);
        const std::string mode = " mode " + std::to_string(layer.transfer.mode);
        if (source.kind == ItemKind::composition) {
            return "comp " + quoted(source.name) + mode;
        }
        const Footage& footage = project.footage_of(source.content);
        return kind_word(footage) + " " + footage_name(footage) + mode;
    };
    return what() +
           (layer.timing_set ? " at " + time_text(layer.offset) + " for " + time_text(layer.duration) : "");
}

}  // namespace

std::string items_text(const Project& project) {
    std::string text;
    append_children(project, embedded::kRootFolder, "", text);
    return text;
}

std::string layers_text(const Project& project, const std::string& composition) {
    for (const embedded::Composition& comp : project.compositions) {
        if (project.item(comp.item).name != composition) {
            continue;
        }
        std::string text;
        for (const Id id : comp.layers) {
            text += layer_text(project, project.layer(id)) + "\n";
        }
        return text;
    }
    throw std::runtime_error("no composition " + composition);
}
