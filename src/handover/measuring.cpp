#include "handover/measuring.h"

#include <algorithm>
#include <utility>

namespace handover {
namespace {

const char* word_of(Version version) {
    return version == Version::imported ? "imported" : "corrected";
}

bool is_wanted(const Composition& composition, const Measuring& measuring) {
    return std::any_of(composition.layers.begin(), composition.layers.end(), [&](const Layer& layer) {
        return layer.kind == LayerKind::camera &&
               std::any_of(measuring.cameras.begin(), measuring.cameras.end(),
                           [&](const MeasuredCamera& camera) { return camera.object == layer.object; });
    });
}

class MeasuredProjectMaker {
  public:
    explicit MeasuredProjectMaker(const Measuring& measuring) : measuring_(measuring) {}

    void begin(const Handover& like) {
        Handover& project = made.project;
        project.version = Version::corrected;
        project.shot = like.shot;
        add_folder("all", "Measured: " + name_of_root(like), kNone);
    }

    void add(const Handover& from) {
        if (from.compositions.empty()) {
            return;
        }
        const std::string word = word_of(from.version);
        const std::size_t folder = add_folder(word, word, 0);
        // What the parts of `from` become; items that are left out stay kNone.
        std::vector<std::size_t> items(from.items.size(), kNone);
        std::vector<const Composition*> kept;
        for (const Composition& composition : from.compositions) {
            const bool is_root = &composition == &from.compositions.front();
            if (composition.item < from.items.size() && (is_root || is_wanted(composition, measuring_))) {
                Item item = from.items[composition.item];
                item.id = id_of(word, item.id);
                item.folder = folder;
                item.content = made.project.compositions.size() + kept.size();
                items[composition.item] = made.project.items.size();
                made.project.items.push_back(std::move(item));
                kept.push_back(&composition);
            }
        }
        const std::size_t root = made.project.compositions.size();
        for (const Composition* const composition : kept) {
            made.project.compositions.push_back(copy_of(*composition, items, word));
        }
        add_views(from.version, root);
    }

    MeasuredProject made;

  private:
    static std::string name_of_root(const Handover& handover) {
        const bool named =
            !handover.compositions.empty() && handover.compositions.front().item < handover.items.size();
        return named ? handover.items[handover.compositions.front().item].name : std::string();
    }

    static std::string id_of(const std::string& word, const std::string& id) {
        return "vxr-measured-" + word + "-" + id;
    }

    std::size_t add_folder(const std::string& id, const std::string& name, std::size_t folder) {
        Item item;
        item.kind = ItemKind::folder;
        item.id = "vxr-measured-" + id;
        item.name = name;
        item.folder = folder;
        made.project.items.push_back(std::move(item));
        return made.project.items.size() - 1;
    }

    static Composition copy_of(const Composition& composition, const std::vector<std::size_t>& items,
                               const std::string& word) {
        Composition copy;
        copy.item = items[composition.item];
        copy.width_px = composition.width_px;
        copy.height_px = composition.height_px;
        copy.pixel_aspect = composition.pixel_aspect;
        copy.frames = composition.frames;
        copy.rate_fps = composition.rate_fps;
        for (const Layer& layer : composition.layers) {
            const bool shows = layer.kind == LayerKind::composition && layer.item < items.size() &&
                               items[layer.item] != kNone;
            if (shows || layer.kind == LayerKind::camera || layer.kind == LayerKind::null) {
                copy.layers.push_back(layer);
                copy.layers.back().id = id_of(word, layer.id);
                copy.layers.back().item = shows ? items[layer.item] : kNone;
            }
        }
        return copy;
    }

    // Of the compositions from `root` on.
    void add_views(Version version, std::size_t root) {
        const std::vector<Composition>& compositions = made.project.compositions;
        for (std::size_t camera = 0; camera < measuring_.cameras.size(); ++camera) {
            MeasuredView view;
            view.version = version;
            view.camera = camera;
            view.root = compositions[root].item;
            for (std::size_t i = root; i < compositions.size() && view.item == kNone; ++i) {
                view.layer = layer_with(compositions[i], [&](const Layer& layer) {
                    return layer.kind == LayerKind::camera &&
                           layer.object == measuring_.cameras[camera].object;
                });
                view.item = view.layer == kNone ? kNone : compositions[i].item;
            }
            if (view.item != kNone && view.item != view.root) {
                view.shown_by = layer_with(compositions[root], [&](const Layer& layer) {
                    return layer.kind == LayerKind::composition && layer.item == view.item;
                });
            }
            if (view.item == kNone || (view.item != view.root && view.shown_by == kNone)) {
                made.absent.push_back("Camera " + std::to_string(camera + 1) + " is not in the root of the " +
                                      word_of(version) + " project.");
            } else {
                made.views.push_back(view);
            }
        }
    }

    template <typename Wanted>
    static std::size_t layer_with(const Composition& composition, Wanted wanted) {
        const auto found = std::find_if(composition.layers.begin(), composition.layers.end(), wanted);
        return found == composition.layers.end()
                   ? kNone
                   : static_cast<std::size_t>(found - composition.layers.begin());
    }

    const Measuring& measuring_;
};

}  // namespace

MeasuredProject measured_project(const Handover& imported, const Handover& corrected,
                                 const Measuring& measuring) {
    MeasuredProjectMaker maker(measuring);
    maker.begin(corrected);
    maker.add(corrected);
    maker.add(imported);
    return std::move(maker.made);
}

}  // namespace handover
