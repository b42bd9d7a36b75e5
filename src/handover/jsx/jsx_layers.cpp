#include "handover/jsx/jsx_layers.h"

#include <deque>
#include <future>
#include <string_view>
#include <utility>

#include "handover/jsx/jsx_tracks.h"

namespace handover {
namespace {

constexpr std::size_t kMostNotes = 1000;
// The most numbers in a function that is made ahead; each takes up to 25 bytes of text.
constexpr std::size_t kNumbersAhead = 1'000'000;

const char* light_word(LightKind light) {
    switch (light) {
        case LightKind::parallel:
            return "parallel";
        case LightKind::spot:
            return "spot";
        case LightKind::point:
            return "point";
    }
    return "point";
}

void note_left_out(const Layer& layer, const JsxTrack& track, std::vector<std::string>& notes) {
    if (track.left_out() > 0 && notes.size() < kMostNotes) {
        notes.push_back("The " + std::string(jsx_name(track.track().property)) + " of '" + layer.name +
                        "' has " + std::to_string(track.left_out()) +
                        (track.left_out() == 1 ? " value that is" : " values that are") +
                        " not finite or not in order; left out.");
    }
}

void write_layer(JsxText& text, const Handover& handover, std::size_t composition, const Layer& layer,
                 std::vector<std::string>& notes) {
    text << "layer(" << composition << ",{id:" << jsx_string(layer.id) << ",kind:\"" << word_of(layer.kind)
         << "\",name:" << jsx_string(layer.name);
    if (layer.item < handover.items.size()) {
        text << ",item:" << layer.item;
    }
    if (layer.kind == LayerKind::camera || layer.kind == LayerKind::light) {
        text << ",aimed:" << layer.aimed << ",center:[" << finite_or_zero(layer.center_px[0]) << ','
             << finite_or_zero(layer.center_px[1]) << ']';
    } else {
        text << ",blend:\"" << word_of(layer.blend) << "\",threeD:" << layer.three_d;
    }
    if (layer.kind == LayerKind::light) {
        text << ",light:\"" << light_word(layer.light) << '"';
    }
    text << ",start:" << finite_or_zero(layer.start) << ",inFrame:" << finite_or_zero(layer.in)
         << ",length:" << finite_or_zero(layer.length) << ",timed:" << layer.timed << ",marks:[";
    std::vector<JsxTrack> tracks;
    tracks.reserve(layer.tracks.size());
    for (const Track& track : layer.tracks) {
        tracks.emplace_back(track);
        note_left_out(layer, tracks.back(), notes);
        if (tracks.back().empty()) {
            tracks.pop_back();
        }
    }
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        text << (i == 0 ? "" : ",") << '"' << jsx_name(tracks[i].track().property) << "\",\""
             << tracks[i].mark() << '"';
    }
    text << "],read:function(){\n";
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        tracks[i].write(text, i == 0 ? nullptr : &tracks[i - 1]);
    }
    text << "}});\n";
}

// A layer and the item of its composition.
using PlacedLayer = std::pair<std::size_t, const Layer*>;

// The layers of one function of the script.
using LayerGroup = std::vector<PlacedLayer>;

std::vector<LayerGroup> groups_of(const Handover& handover) {
    std::vector<LayerGroup> groups;
    for (const Composition& composition : handover.compositions) {
        if (composition.item >= handover.items.size()) {
            continue;
        }
        for (const Layer& layer : composition.layers) {
            if (groups.empty() || groups.back().size() == kJsxThingsOfFunction) {
                groups.emplace_back();
            }
            groups.back().emplace_back(composition.item, &layer);
        }
    }
    return groups;
}

std::size_t numbers_in(const LayerGroup& group) {
    std::size_t numbers = 0;
    for (const PlacedLayer& placed : group) {
        for (const Track& track : placed.second->tracks) {
            numbers += track.frames.size() + track.values.size() + track.holds.size();
        }
    }
    return numbers;
}

void write_group(JsxText& text, const Handover& handover, const LayerGroup& group,
                 std::vector<std::string>& notes) {
    text << "(function(){\n";
    for (const auto& [composition, layer] : group) {
        write_layer(text, handover, composition, *layer, notes);
    }
    text << "})();\n";
}

struct GroupText {
    std::string script;
    std::vector<std::string> notes;
};

GroupText text_of_group(const Handover& handover, const LayerGroup& group) {
    GroupText made;
    constexpr std::size_t kUsualNumber = 14;  // with its comma
    made.script.reserve(numbers_in(group) * kUsualNumber);
    const Sink sink = [&made](std::string_view piece) { made.script += piece; };
    JsxText text(sink);
    write_group(text, handover, group, made.notes);
    text.flush();
    return made;
}

}  // namespace

void write_layers(JsxText& text, const Handover& handover, std::size_t threads,
                  std::vector<std::string>& notes) {
    const std::vector<LayerGroup> groups = groups_of(handover);
    std::deque<std::future<GroupText>> ahead;
    const auto write_first = [&] {
        const GroupText made = ahead.front().get();
        ahead.pop_front();
        text << made.script;
        for (const std::string& note : made.notes) {
            if (notes.size() < kMostNotes) {
                notes.push_back(note);
            }
        }
    };
    for (const LayerGroup& group : groups) {
        if (threads > 1 && numbers_in(group) <= kNumbersAhead) {
            ahead.push_back(std::async(std::launch::async, [&] { return text_of_group(handover, group); }));
        } else {
            while (!ahead.empty()) {
                write_first();
            }
            write_group(text, handover, group, notes);
        }
        if (ahead.size() > threads) {
            write_first();
        }
    }
    while (!ahead.empty()) {
        write_first();
    }
}

}  // namespace handover
