#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "cli/page/html.h"
#include "cli/page/page_parts.h"

namespace cli {
namespace {

using handover::Handover;

/// Lists within lists get no deeper: browsers flatten what is nested deeper than some hundred elements.
constexpr std::size_t kDeepest = 24;
/// As many lines of the project window, and rows of a table, are written out. Nobody reads more.
constexpr std::size_t kMostItems = 5000;
constexpr std::size_t kMostRows = 2000;

const char* kind_name(handover::FootageKind kind) {
    switch (kind) {
        case handover::FootageKind::still:
            return "still";
        case handover::FootageKind::sequence:
            return "sequence";
        case handover::FootageKind::texture:
            return "texture";
        case handover::FootageKind::placeholder:
            return "missing";
    }
    return "";
}

const char* alpha_name(const handover::Footage& footage) {
    switch (footage.alpha) {
        case handover::Alpha::none:
            return "none";
        case handover::Alpha::ignored:
            return "ignored";
        case handover::Alpha::straight:
            return "straight";
        case handover::Alpha::premultiplied:
            return "premultiplied";
    }
    return "";
}

const char* fields_name(handover::Fields fields) {
    switch (fields) {
        case handover::Fields::none:
            return "";
        case handover::Fields::upper_first:
            return "upper first";
        case handover::Fields::lower_first:
            return "lower first";
    }
    return "";
}

std::string size_html(std::int32_t width_px, std::int32_t height_px) {
    return std::to_string(width_px) + " &times; " + std::to_string(height_px);
}

std::string cut_note(std::size_t shown, std::size_t count) {
    return shown == count ? std::string()
                          : "<p class=\"where\">and " + grouped(static_cast<std::int64_t>(count - shown)) +
                                " more, which <code>vxr import --json</code> lists</p>";
}

std::string layers_html(const Handover& handover, const handover::Composition& composition) {
    if (composition.layers.empty()) {
        return "<p class=\"where\">no layers</p>";
    }
    std::string html =
        wide_table("Layers") + row_header("#layer|name|what|mode|#first frame|#frames") + "<tbody>";
    const std::size_t shown = std::min(composition.layers.size(), kMostRows);
    for (std::size_t i = 0; i < shown; ++i) {
        const handover::Layer& layer = composition.layers[i];
        const bool picture =
            layer.kind == handover::LayerKind::footage || layer.kind == handover::LayerKind::composition;
        // A layer has the name of its source unless it has one of its own.
        const std::string& name = !layer.name.empty() || layer.item == handover::kNone
                                      ? layer.name
                                      : handover.items[layer.item].name;
        html += "<tr><td class=\"number\">" + std::to_string(i + 1) + "</td><th scope=\"row\">" +
                html_name(name) + "</th><td>" + word_of(layer.kind) + "</td><td>" +
                (picture ? word_of(layer.blend) : "") + "</td><td class=\"number\">" +
                (layer.timed ? html_number(layer.in) : "") + "</td><td class=\"number\">" +
                (layer.timed ? html_number(layer.length) : "") + "</td></tr>";
    }
    return html + "</tbody></table></div>" + cut_note(shown, composition.layers.size());
}

std::string item_html(const Handover& handover, std::size_t index) {
    const handover::Item& item = handover.items[index];
    switch (item.kind) {
        case handover::ItemKind::folder:
            return "<span class=\"kind\">folder</span> " + html_name(item.name);
        case handover::ItemKind::footage: {
            const handover::Footage& footage = handover.footage[item.content];
            const bool missing = footage.kind == handover::FootageKind::placeholder;
            return std::string("<span class=\"kind") + (missing ? " missing" : "") + "\">" +
                   kind_name(footage.kind) + "</span> " + html_name(item.name);
        }
        case handover::ItemKind::composition:
            break;
    }
    const handover::Composition& composition = handover.compositions[item.content];
    return "<details><summary><span class=\"kind\">composition</span> " + html_name(item.name) +
           " <span class=\"where\">" + size_html(composition.width_px, composition.height_px) + ", " +
           html_number(composition.rate_fps) + " fps, " + html_number(composition.frames) + " frames, " +
           counted(static_cast<std::int64_t>(composition.layers.size()), "layer", "layers") +
           "</span></summary>" + layers_html(handover, composition) + "</details>";
}

// The folders with what is in them, as a list in lists. Without recursion: scenes nest a thousand folders.
std::string tree_html(const Handover& handover, const PagePlace& place) {
    const std::size_t count = handover.items.size();
    std::vector<std::vector<std::size_t>> inside(count + 1);  // the last for the root
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t folder = handover.items[i].folder;
        inside[folder == handover::kNone ? count : folder].push_back(i);
    }
    struct Open {
        std::size_t folder;
        std::size_t next;
        bool listed;  // has a list of its own in the page
    };
    std::string html = subheading(place, "Folders and compositions") + "<ul class=\"tree\">";
    std::vector<Open> open{{count, 0, true}};
    std::size_t lists = 1;
    std::size_t shown = 0;
    while (!open.empty()) {
        Open& top = open.back();
        if (top.next >= inside[top.folder].size() || shown >= kMostItems) {
            if (top.listed) {
                html += top.folder == count ? "</ul>" : "</ul></li>";
                --lists;
            }
            open.pop_back();
            continue;
        }
        const std::size_t item = inside[top.folder][top.next++];
        ++shown;
        html += "<li>" + item_html(handover, item);
        const bool holds = !inside[item].empty();
        const bool listed = holds && lists < kDeepest;
        html += listed ? "<ul>" : "</li>";
        lists += listed ? 1 : 0;
        if (holds) {
            open.push_back({item, 0, listed});
        }
    }
    return html + cut_note(shown, count);
}

std::string footage_html(const Handover& handover, const PagePlace& place) {
    if (handover.footage.empty()) {
        return {};
    }
    std::string html = subheading(place, "Footage") + wide_table("Footage", "footage") +
                       row_header("name|kind|size|#frames|#fps|alpha|fields|file") + "<tbody>";
    const std::size_t shown = std::min(handover.footage.size(), kMostRows);
    for (std::size_t i = 0; i < shown; ++i) {
        const handover::Footage& footage = handover.footage[i];
        const std::string name =
            footage.item == handover::kNone ? std::string() : handover.items[footage.item].name;
        const bool missing = footage.kind == handover::FootageKind::placeholder;
        html += "<tr data-footage=\"" + std::to_string(i) + "\"><th scope=\"row\">" + html_name(name) +
                "</th><td>" +
                (missing ? "<span class=\"mark error\">missing</span>" : kind_name(footage.kind)) +
                "</td><td>" + size_html(footage.width_px, footage.height_px) + "</td><td class=\"number\">" +
                (footage.frames > 0 ? html_number(footage.frames) : "") + "</td><td class=\"number\">" +
                (footage.rate_fps > 0 ? html_number(footage.rate_fps) : "") + "</td><td>" +
                alpha_name(footage) + "</td><td>" + fields_name(footage.fields) + "</td><td class=\"path\">" +
                html_name(footage.path.empty() ? footage.written : footage.path) + "</td></tr>";
    }
    return html + "</tbody></table></div>" + cut_note(shown, handover.footage.size());
}

std::string objects_html(const Handover& handover, const PagePlace& place) {
    if (handover.objects.empty()) {
        return {};
    }
    std::string html = subheading(place, "Cameras, lights and nulls") +
                       wide_table("Cameras, lights and nulls") +
                       row_header("name|kind|#keys|#first key|#last key|#line") + "<tbody>";
    const std::size_t shown = std::min(handover.objects.size(), kMostRows);
    for (std::size_t i = 0; i < shown; ++i) {
        const handover::SceneObject& object = handover.objects[i];
        const auto frame = [&](bool first) {
            return object.keys.empty()
                       ? std::string()
                       : grouped(first ? object.keys.front().frame : object.keys.back().frame);
        };
        html += "<tr><th scope=\"row\">" + html_name(object.name) + "</th><td>" + word_of(object.kind) +
                (object.kind == handover::ObjectKind::light ? " " + html_text(object.light_word) : "") +
                "</td><td class=\"number\">" + grouped(static_cast<std::int64_t>(object.keys.size())) +
                "</td><td class=\"number\">" + frame(true) + "</td><td class=\"number\">" + frame(false) +
                "</td><td class=\"number\">" + (object.at.line ? grouped(*object.at.line) : std::string()) +
                "</td></tr>";
    }
    return html + "</tbody></table></div>" + cut_note(shown, handover.objects.size()) +
           "<div class=\"curves\" data-curves=\"" + place.id +
           "\"><p class=\"scripted\">Keys are drawn as curves here when the page may run its "
           "script.</p></div>";
}

}  // namespace

std::string contents_part(const PageScene& scene, const PagePlace& place) {
    std::string html = part_heading(place, "contents", "What is in it?");
    if (!scene.imported) {
        return html + "<p>Nothing arrives.</p>";
    }
    return html + tree_html(*scene.imported, place) + footage_html(*scene.imported, place) +
           objects_html(*scene.imported, place);
}

}  // namespace cli
