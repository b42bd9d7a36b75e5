#include "cli/project/project_tree.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "cli/project/project_labels.h"
#include "cli/terminal/text_table.h"
#include "host/host_interface.h"
#include "text/plain_number.h"
#include "text/printable.h"

namespace cli {
namespace {

using embedded::Composition;
using embedded::Footage;
using embedded::FootageKind;
using embedded::Id;
using embedded::Item;
using embedded::ItemKind;
using embedded::Layer;
using embedded::LayerKind;
using embedded::Project;

// Deeper lines would be wider than a terminal: the depth is then given as a number.
constexpr std::size_t kDeepestIndent = 12;

std::string indent_of(std::size_t depth) {
    if (depth <= kDeepestIndent) {
        return std::string(depth * 2, ' ');
    }
    return std::string(kDeepestIndent * 2, ' ') + "(" + std::to_string(depth) + " deep) ";
}

std::string shown_name(const std::string& name) {
    return name.empty() ? "(no name)" : text::printable(name);
}

std::string size_text(A_long width, A_long height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string composition_line(const Composition& composition) {
    const double seconds = seconds_of(composition.duration);
    return size_text(composition.width, composition.height) + ", pixel aspect " +
           plain_number(rate_of(composition.pixel_aspect)) + ", " +
           frame_count_text(seconds, composition.frame_rate) + " at " +
           plain_number(rate_of(composition.frame_rate)) + " fps";
}

// What the file is, then how the host interprets it.
std::string footage_line(const Footage& footage) {
    std::string text = footage_label(footage.kind);
    const bool placeholder = footage.kind == FootageKind::placeholder;
    if (placeholder) {
        text += ", replaced by a placeholder";
    } else if (footage.sequence) {
        text += " " + frame_range_text(*footage.sequence);
    }
    text += ", " + size_text(footage.width, footage.height);
    if (placeholder) {
        text += ", " + plain_number(seconds_of(footage.duration)) + " s long";
    } else {
        text +=
            " " + channels_label(footage.channels) + " " + std::to_string(footage.bits_per_channel) + " bit";
    }
    if (footage.interpretation_set) {
        const AEGP_FootageInterp& reading = footage.interpretation;
        const std::string alpha = alpha_label(footage);
        text += (alpha == "none" ? ", no alpha" : ", alpha " + alpha) + ", " + fields_label(reading) +
                ", pixel aspect " + plain_number(rate_of(reading.pixel_aspect));
        if (footage.sequence || reading.conform_fps > 0) {
            text += ", " + plain_number(reading.conform_fps) + " fps";
        }
    }
    return text;
}

struct KeyRange {
    std::size_t count = 0;
    double first = 0;  ///< seconds of layer time
    double last = 0;
};

// The stream with the most keys stands for the layer: all animated streams of an object have the same keys.
KeyRange keys_of(const Layer& layer) {
    KeyRange range;
    for (const auto& [kind, stream] : layer.streams) {
        if (stream.keyframes.size() > range.count) {
            range = {stream.keyframes.size(), seconds_of(stream.keyframes.front().time),
                     seconds_of(stream.keyframes.back().time)};
        }
    }
    return range;
}

std::string keys_text(const Layer& layer, const A_Ratio& rate) {
    const KeyRange keys = keys_of(layer);
    if (keys.count == 0) {
        return layer.kind == LayerKind::footage || layer.kind == LayerKind::composition ? "" : "no keys";
    }
    const double offset = seconds_of(layer.offset);
    const std::string first = frames_text(keys.first + offset, rate);
    const std::string last = frames_text(keys.last + offset, rate);
    return std::to_string(keys.count) + (keys.count == 1 ? " key" : " keys") +
           (first == last ? ", frame " + first : ", frames " + first + "-" + last);
}

std::string scale_text(const Layer& layer) {
    const auto scale = layer.streams.find(kLayerStreamScale);
    if (scale == layer.streams.end() || !scale->second.value_set) {
        return {};
    }
    return "scale " + plain_number(scale->second.value[0]) + " x " + plain_number(scale->second.value[1]) +
           " %";
}

std::vector<Cell> heading_row() {
    std::vector<Cell> row;
    for (const char* word : {"#", "layer", "kind", "blend", "alpha", "fields", "in", "length"}) {
        row.push_back({word, Ink::dim, row.empty() || row.size() >= 6});
    }
    return row;
}

std::vector<Cell> layer_row(const Project& project, const Layer& layer, std::size_t number,
                            const A_Ratio& rate) {
    const bool has_footage = layer.kind == LayerKind::footage;
    const Footage* const footage =
        has_footage ? &project.footage_of(project.item(layer.source_item).content) : nullptr;
    const bool missing = has_footage && footage->kind == FootageKind::placeholder;
    const bool has_blend = has_footage || layer.kind == LayerKind::composition;
    const std::string scale = scale_text(layer);
    const std::string keys = keys_text(layer, rate);
    return {{std::to_string(number), Ink::dim, true},
            {shown_name(layer.name), missing ? Ink::red : Ink::plain},
            {layer_label(project, layer), missing ? Ink::red : Ink::plain},
            {has_blend ? blend_label(layer.transfer) : ""},
            {has_footage ? alpha_label(*footage) : ""},
            {has_footage ? fields_label(footage->interpretation) : ""},
            {frames_text(seconds_of(layer.in_point) + seconds_of(layer.offset), rate), Ink::plain, true},
            {frames_text(seconds_of(layer.duration), rate), Ink::plain, true},
            {scale + (scale.empty() || keys.empty() ? "" : ", ") + keys}};
}

/// Writes the lines of one project.
class TreeWriter {
  public:
    TreeWriter(const Project& project, const Paint& paint)
        : project_(project), paint_(paint), children_(project.items.size() + 1) {
        // Searching the project for the children of each folder would visit every item every time.
        for (const Item& item : project.items) {
            if (item.parent_folder != 0) {
                children_[static_cast<std::size_t>(item.parent_folder)].push_back(item.id);
            }
        }
    }

    // An explicit stack instead of recursion: folders nest as deep as the file says.
    std::string write() {
        struct Entry {
            Id id;
            std::size_t depth;
        };
        std::vector<Entry> waiting;
        const auto push_children = [&](Id folder, std::size_t depth) {
            const std::vector<Id>& children = children_[static_cast<std::size_t>(folder)];
            for (auto child = children.rbegin(); child != children.rend(); ++child) {
                waiting.push_back({*child, depth});
            }
        };
        push_children(embedded::kRootFolder, 0);
        while (!waiting.empty()) {
            const Entry entry = waiting.back();
            waiting.pop_back();
            write_item(project_.item(entry.id), indent_of(entry.depth));
            push_children(entry.id, entry.depth + 1);
        }
        return std::move(text_);
    }

  private:
    void write_item(const Item& item, const std::string& indent) {
        switch (item.kind) {
            case ItemKind::folder:
                text_ += indent + paint_(Ink::cyan, shown_name(item.name) + "/") + '\n';
                break;
            case ItemKind::composition:
                write_composition(item, indent);
                break;
            case ItemKind::footage: {
                const Footage& footage = project_.footage_of(item.content);
                const bool missing = footage.kind == FootageKind::placeholder;
                text_ += indent +
                         paint_(missing ? Ink::red : Ink::plain,
                                shown_name(item.name) + "  " + footage_line(footage)) +
                         '\n';
                break;
            }
        }
    }

    void write_composition(const Item& item, const std::string& indent) {
        const Composition& composition = project_.composition(item.content);
        text_ += indent + paint_(Ink::bold, shown_name(item.name)) + "  composition, " +
                 composition_line(composition) + (composition.layers.empty() ? ", empty" : "") + '\n';
        if (composition.layers.empty()) {
            return;
        }
        TextTable table;
        table.add(heading_row());
        std::size_t number = 0;
        for (const Id layer : composition.layers) {
            table.add(layer_row(project_, project_.layer(layer), ++number, composition.frame_rate));
        }
        for (const std::string& line : table.lines(paint_)) {
            text_ += indent;
            text_ += "  | ";
            text_ += line;
            text_ += '\n';
        }
    }

    const Project& project_;
    const Paint& paint_;
    std::vector<std::vector<Id>> children_;  ///< by folder
    std::string text_;
};

std::string findings_text(const std::vector<diagnostic::Diagnostic>& findings) {
    std::string text;
    for (const diagnostic::Diagnostic& finding : findings) {
        text += "  " + (finding.at.line ? "call " + std::to_string(*finding.at.line) + ' ' : std::string()) +
                text::printable(finding.within.front()) + ": " + text::printable(finding.reason) + " [" +
                finding.code.name() + "]\n";
    }
    return text;
}

}  // namespace

std::string project_tree(const Project& project, const Paint& paint) {
    return TreeWriter(project, paint).write();
}

std::string host_report(const Project& project, const embedded::ConformanceReport& report,
                        const Paint& paint) {
    std::string text;
    if (!project.messages.empty()) {
        text += paint(Ink::bold, "Messages to the user:") + '\n';
        for (const embedded::Message& message : project.messages) {
            text += "  " + text::printable(message.text) + '\n';
        }
    }
    if (!report.violations().empty()) {
        text += paint(Ink::bold, "Rules of the host that the plug-in broke:") + '\n' +
                findings_text(report.violations());
    }
    if (!report.notes().empty()) {
        text += paint(Ink::bold, "Notes of the host:") + '\n' + findings_text(report.notes());
    }
    if (report.dropped() > 0) {
        text += "  and " + std::to_string(report.dropped()) + " more\n";
    }
    return text;
}

std::string project_summary(const Project& project) {
    const auto layers = [&](LayerKind kind) {
        return std::count_if(project.layers.begin(), project.layers.end(),
                             [&](const Layer& layer) { return layer.kind == kind; });
    };
    const auto missing =
        std::count_if(project.footage.begin(), project.footage.end(),
                      [](const Footage& footage) { return footage.kind == FootageKind::placeholder; });
    return text::count_text(std::ssize(project.compositions), "composition", "compositions") + ", " +
           text::count_text(std::ssize(project.footage), "footage item", "footage items") +
           (missing > 0 ? " (" + std::to_string(missing) + " missing)" : "") + ", " +
           text::count_text(layers(LayerKind::camera), "camera", "cameras") + ", " +
           text::count_text(layers(LayerKind::light), "light", "lights") + ", " +
           text::count_text(layers(LayerKind::null), "null", "nulls");
}

}  // namespace cli
