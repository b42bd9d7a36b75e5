#include "handover/handover_invariants.h"

#include <cmath>
#include <set>
#include <string_view>

#include "text/utf8.h"

namespace handover {
namespace {

/// Keeps the first violation.
class HandoverCheck {
  public:
    explicit HandoverCheck(const Handover& handover) : handover_(handover) {}

    std::optional<std::string> run() {
        items();
        for (std::size_t i = 0; i < handover_.compositions.size(); ++i) {
            composition("composition " + std::to_string(i), handover_.compositions[i]);
        }
        for (std::size_t i = 0; i < handover_.objects.size(); ++i) {
            object("object " + std::to_string(i), handover_.objects[i]);
        }
        for (std::size_t i = 1; i < handover_.corrections.size(); ++i) {
            require(handover_.corrections[i - 1].correction < handover_.corrections[i].correction,
                    "corrections", "are not in their order");
        }
        require(handover_.version == Version::corrected || handover_.corrections.empty(), "corrections",
                "are in an imported project");
        return fault_;
    }

  private:
    // The place is a text of its own only where there is a fault: there may be millions of places.
    template <class Place>
    void require(bool holds, const Place& place, std::string_view fault) {
        if (!holds && !fault_) {
            fault_ = std::string(place) + ' ' + std::string(fault);
        }
    }

    void id(const std::string& place, const std::string& text) {
        constexpr std::size_t kLength = 20;
        require(text.size() == kLength && text.starts_with("vxr-") &&
                    text.find_first_not_of("0123456789abcdef", 4) == std::string::npos,
                place, "has no id");
    }

    void own_id(const std::string& place, const std::string& text) {
        id(place, text);
        require(ids_.insert(text).second, place, "has the id of another");
    }

    void number(const std::string& place, double value) {
        require(std::isfinite(value), place, "has a number that is not finite");
    }

    void items() {
        std::size_t footage = 0;
        std::size_t compositions = 0;
        for (std::size_t i = 0; i < handover_.items.size(); ++i) {
            const Item& item = handover_.items[i];
            const std::string place = "item " + std::to_string(i);
            own_id(place, item.id);
            require(text::is_utf8(item.name), place, "has a name that is not UTF-8");
            require(item.folder == kNone ||
                        (item.folder < i && handover_.items[item.folder].kind == ItemKind::folder),
                    place, "is in no folder before it");
            switch (item.kind) {
                case ItemKind::folder:
                    require(item.content == kNone, place, "is a folder with a content");
                    break;
                case ItemKind::footage:
                    ++footage;
                    require(
                        item.content < handover_.footage.size() && handover_.footage[item.content].item == i,
                        place, "is not the item of its footage");
                    break;
                case ItemKind::composition:
                    ++compositions;
                    require(item.content < handover_.compositions.size() &&
                                handover_.compositions[item.content].item == i,
                            place, "is not the item of its composition");
                    break;
            }
        }
        require(footage == handover_.footage.size() && compositions == handover_.compositions.size(), "items",
                "do not show all footage and compositions");
        require(!handover_.compositions.empty(), "compositions", "lack the root");
        for (std::size_t i = 0; i < handover_.footage.size(); ++i) {
            check(handover_.footage[i], "footage " + std::to_string(i));
        }
    }

    void check(const Footage& footage, const std::string& place) {
        require(text::is_utf8(footage.path), place, "has a path that is not UTF-8");
        require(footage.kind == FootageKind::sequence || !footage.files, place,
                "has files but is no sequence");
        require(!footage.files || (footage.files->first <= footage.files->last &&
                                   footage.files->padding >= 1 && footage.files->missing >= 0 &&
                                   footage.files->missing <= footage.files->last - footage.files->first),
                place, "has numbers that are no range");
        const bool still = footage.kind == FootageKind::still || footage.kind == FootageKind::texture;
        require(!still || (footage.frames == 0 && footage.rate_fps == 0), place, "is a still with a rate");
        number(place, footage.frames);
        number(place, footage.rate_fps);
        number(place, footage.pixel_aspect);
    }

    void composition(const std::string& place, const Composition& composition) {
        require(composition.width_px > 0 && composition.height_px > 0 && composition.pixel_aspect > 0 &&
                    composition.rate_fps > 0,
                place, "has no size or rate");
        number(place, composition.frames);
        for (std::size_t i = 0; i < composition.layers.size(); ++i) {
            layer(place + ", layer " + std::to_string(i), composition.layers[i]);
        }
    }

    void layer(const std::string& place, const Layer& layer) {
        require(text::is_utf8(layer.name), place, "has a name that is not UTF-8");
        const bool shows_item = layer.kind == LayerKind::footage || layer.kind == LayerKind::composition;
        require(shows_item == (layer.item != kNone) && shows_item == (layer.object == kNone), place,
                "shows neither an item nor an object, or both");
        if (shows_item) {
            own_id(place, layer.id);
            require(layer.item < handover_.items.size() &&
                        handover_.items[layer.item].kind ==
                            (layer.kind == LayerKind::footage ? ItemKind::footage : ItemKind::composition),
                    place, "shows an item of another kind");
        } else {
            id(place, layer.id);
            require(layer.object < handover_.objects.size() && handover_.objects[layer.object].id == layer.id,
                    place, "has another id than its object");
        }
        for (const double value :
             {layer.start, layer.in, layer.length, layer.center_px[0], layer.center_px[1]}) {
            number(place, value);
        }
        std::set<Property> seen;
        for (const Track& track : layer.tracks) {
            require(seen.insert(track.property).second, place, "has a property twice");
            check(track, place);
        }
    }

    void check(const Track& track, const std::string& place) {
        const std::size_t size = component_count(track.property);
        require(track.values.size() == size * (track.frames.empty() ? 1 : track.frames.size()), place,
                "has a track without a value for each frame");
        for (std::size_t i = 0; i < track.frames.size(); ++i) {
            number(place, track.frames[i]);
            require(i == 0 || track.frames[i] > track.frames[i - 1], place, "has frames that do not ascend");
        }
        for (const double value : track.values) {
            const bool endless = track.property == Property::zoom && std::isinf(value);
            require(std::isfinite(value) || endless, place, "has a value that is not finite");
        }
        for (std::size_t i = 0; i < track.holds.size(); ++i) {
            require(track.holds[i] < track.frames.size() && (i == 0 || track.holds[i] > track.holds[i - 1]),
                    place, "holds at keys that are not there");
        }
    }

    void object(const std::string& place, const SceneObject& object) {
        own_id(place, object.id);
        for (std::size_t i = 0; i < object.keys.size(); ++i) {
            const ObjectKey& key = object.keys[i];
            require(i == 0 || key.frame > object.keys[i - 1].frame, place, "has frames that do not ascend");
            for (const double value : {key.position[0], key.position[1], key.position[2], key.heading,
                                       key.pitch, key.bank, key.view_angle, key.target_distance}) {
                number(place, value);
            }
        }
    }

    const Handover& handover_;
    std::optional<std::string> fault_;
    std::set<std::string> ids_;
};

}  // namespace

std::optional<std::string> validate_handover(const Handover& handover) {
    return HandoverCheck(handover).run();
}

}  // namespace handover
