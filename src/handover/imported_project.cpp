#include "handover/imported_project.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>

#include "embedded/sequence.h"
#include "handover/imported_tracks.h"
#include "host/byte_encoding.h"
#include "system/files.h"
#include "text/ascii.h"
#include "text/printable.h"

namespace handover {
namespace {

constexpr double kFullByte = 255;

[[noreturn]] void differ(const SceneSource& scene, const std::string& difference) {
    throw std::runtime_error(text::printable(scene.file) +
                             ": the project is not that of the scene: " + difference);
}

void compare_counts(const SceneSource& scene, const char* what, std::size_t expected, std::size_t found) {
    if (expected != found) {
        differ(scene, "it has " + std::to_string(found) + " of " + std::to_string(expected) + ' ' + what);
    }
}

const char* item_word(ItemKind kind) {
    switch (kind) {
        case ItemKind::folder:
            return "a folder";
        case ItemKind::footage:
            return "footage";
        case ItemKind::composition:
            break;
    }
    return "a composition";
}

ItemKind kind_of(embedded::ItemKind kind) {
    switch (kind) {
        case embedded::ItemKind::folder:
            return ItemKind::folder;
        case embedded::ItemKind::footage:
            return ItemKind::footage;
        case embedded::ItemKind::composition:
            break;
    }
    return ItemKind::composition;
}

LayerKind kind_of(embedded::LayerKind kind) {
    switch (kind) {
        case embedded::LayerKind::footage:
            return LayerKind::footage;
        case embedded::LayerKind::composition:
            return LayerKind::composition;
        case embedded::LayerKind::camera:
            return LayerKind::camera;
        case embedded::LayerKind::light:
            return LayerKind::light;
        case embedded::LayerKind::null:
            break;
    }
    return LayerKind::null;
}

bool is_object(LayerKind layer, ObjectKind object) {
    switch (object) {
        case ObjectKind::camera:
            return layer == LayerKind::camera;
        case ObjectKind::light:
            return layer == LayerKind::light;
        case ObjectKind::null:
            break;
    }
    return layer == LayerKind::null;
}

LightKind kind_of(const std::optional<AEGP_LightType>& type) {
    switch (type.value_or(kLightTypePoint)) {
        case kLightTypeParallel:
            return LightKind::parallel;
        case kLightTypeSpot:
            return LightKind::spot;
        default:
            return LightKind::point;
    }
}

Blend blend_of(const AEGP_LayerTransferMode& mode) {
    switch (mode.mode) {
        case kTransferModeAdd:
            return Blend::add;
        case kTransferModeMultiply:
            return Blend::multiply;
        default:
            return Blend::normal;
    }
}

double number_of(const A_Ratio& ratio) {
    return ratio.den == 0 ? 0 : static_cast<double>(ratio.num) / static_cast<double>(ratio.den);
}

Alpha alpha_of(const embedded::Footage& footage) {
    const AEGP_AlphaFlags flags = footage.interpretation.alpha.flags;
    if ((flags & kAlphaFlagIgnore) != 0) {
        return Alpha::ignored;
    }
    if (!footage.has_alpha && footage.kind != embedded::FootageKind::placeholder) {
        return Alpha::none;
    }
    return (flags & kAlphaFlagPremultiplied) != 0 ? Alpha::premultiplied : Alpha::straight;
}

Fields fields_of(const FIEL_Label& interlace) {
    if (interlace.type == kFieldTypeWholeFrames) {
        return Fields::none;
    }
    return interlace.order == kFieldOrderUpperFirst ? Fields::upper_first : Fields::lower_first;
}

FootageKind kind_of(embedded::FootageKind kind) {
    switch (kind) {
        case embedded::FootageKind::file:
            return FootageKind::still;
        case embedded::FootageKind::sequence:
            return FootageKind::sequence;
        case embedded::FootageKind::module_file:
            return FootageKind::texture;
        case embedded::FootageKind::placeholder:
            break;
    }
    return FootageKind::placeholder;
}

// The sequence's files, and the path of the first.
void add_files(const embedded::SequenceFrames& frames, Footage& made) {
    const auto path = os::path_of(made.path);
    const auto name = embedded::split_number(os::text_of(path.filename()));
    if (!name) {
        return;
    }
    NumberedFiles files;
    files.prefix = name->prefix;
    files.suffix = name->suffix;
    files.padding = frames.padding;
    files.first = frames.range.first;
    files.last = frames.range.last;
    files.missing = frames.range.last - frames.range.first + 1 - frames.count;
    made.path = os::text_of(path.parent_path() / os::path_of(file_name(files, files.first)));
    made.files = std::move(files);
}

Footage footage_of(const embedded::Footage& footage, const CFileItem& file, double rate_fps) {
    Footage made;
    made.kind = kind_of(footage.kind);
    made.path = footage.path;
    made.width_px = footage.width;
    made.height_px = footage.height;
    made.has_alpha = footage.has_alpha;
    made.alpha = alpha_of(footage);
    const AEGP_AlphaLabel& label = footage.interpretation.alpha;
    made.premultiplied_with = {label.red / kFullByte, label.green / kFullByte, label.blue / kFullByte};
    made.fields = fields_of(footage.interpretation.interlace);
    made.pixel_aspect = number_of(footage.interpretation.pixel_aspect);
    switch (made.kind) {
        case FootageKind::sequence:
            made.frames = footage.duration.value;  // one for each file, at the host's own rate
            made.rate_fps = footage.interpretation.conform_fps;
            if (footage.sequence) {
                add_files(*footage.sequence, made);
            }
            break;
        case FootageKind::placeholder:
            // As a current host reads such a path.
            made.path = utf8_from_name(file.path != nullptr ? file.path : "", ByteEncoding::windows_1252);
            made.frames = frames_of(footage.duration, rate_fps);
            made.rate_fps = rate_fps;
            break;
        case FootageKind::still:
        case FootageKind::texture:
            break;
    }
    return made;
}

/// Fills the handover from the project, entry by entry.
class ProjectReader {
  public:
    ProjectReader(const SceneSource& scene, const SceneWalk& walk, const embedded::Project& project,
                  StableIds& ids, Handover& handover)
        : scene_(scene), walk_(walk), project_(project), ids_(ids), handover_(handover) {}

    void read() {
        // Item 1 is the root folder, which has no entry in the handover.
        compare_counts(scene_, "items", walk_.items.size() + 1, project_.items.size());
        compare_counts(scene_, "footage items", walk_.footage, project_.footage.size());
        compare_counts(scene_, "compositions", walk_.compositions, project_.compositions.size());
        compare_counts(scene_, "layers", walk_.layers.size(), project_.layers.size());
        handover_.footage.resize(walk_.footage);
        handover_.compositions.resize(walk_.compositions);
        for (std::size_t i = 0; i < walk_.items.size(); ++i) {
            add_item(i);
        }
        std::vector<std::string> layer_ids = ids_of_layers();
        for (std::size_t i = 0; i < walk_.compositions; ++i) {
            for (const embedded::Id id : project_.compositions[i].layers) {
                const std::size_t index = embedded::Project::index(id);
                handover_.compositions[i].layers.push_back(layer(index, i, std::move(layer_ids[index])));
            }
        }
    }

  private:
    void add_item(std::size_t index) {
        const WalkedItem& walked = walk_.items[index];
        const embedded::Item& item = project_.items[index + 1];
        const std::string which = "item " + std::to_string(index + 1);
        const embedded::Id folder =
            walked.folder == kNone ? embedded::kRootFolder : project_.items[walked.folder + 1].id;
        if (kind_of(item.kind) != walked.kind()) {
            differ(scene_,
                   which + " is " + item_word(kind_of(item.kind)) + " and not " + item_word(walked.kind()));
        }
        if (item.parent_folder != folder) {
            differ(scene_, which + " is in another folder");
        }
        Item made;
        made.kind = walked.kind();
        made.name = item.name;
        made.folder = walked.folder;
        made.at = place_of(walked);
        keys_.push_back(ids_.next(walked.folder == kNone ? ids_.root() : keys_[walked.folder],
                                  id_kind(walked.origin), id_name(walked)));
        made.id = StableIds::text(keys_.back());
        if (item.content != 0) {
            made.content = embedded::Project::index(item.content);
        }
        if (made.kind == ItemKind::footage) {
            Footage& footage = handover_.footage.at(made.content);
            footage = footage_of(project_.footage.at(made.content), *walked.file, handover_.shot.rate_fps);
            footage.item = index;
            footage.written = scene_.written_path(*walked.file);
        } else if (made.kind == ItemKind::composition) {
            add_composition(index, made.content);
        }
        handover_.items.push_back(std::move(made));
    }

    void add_composition(std::size_t item, std::size_t index) {
        const embedded::Composition& composition = project_.compositions.at(index);
        Composition& made = handover_.compositions.at(index);
        made.item = item;
        made.width_px = composition.width;
        made.height_px = composition.height;
        made.pixel_aspect = number_of(composition.pixel_aspect);
        made.rate_fps = number_of(composition.frame_rate);
        made.frames = frames_of(composition.duration, handover_.shot.rate_fps);
        made.layers.reserve(composition.layers.size());
    }

    // Of layers in the order in which they are made, so that equal ones count in the order of the file.
    std::vector<std::string> ids_of_layers() {
        std::vector<std::string> layer_ids;
        std::vector<std::size_t> items(walk_.compositions);
        for (std::size_t i = 0; i < items.size(); ++i) {
            items[i] = handover_.compositions[i].item;
        }
        std::size_t objects_left = walk_.objects.size();
        for (const WalkedLayer& walked : walk_.layers) {
            if (walked.object != nullptr) {
                layer_ids.push_back(handover_.objects[--objects_left].id);
            } else {
                layer_ids.push_back(StableIds::text(
                    ids_.next(keys_[items[walked.composition]], "layer", id_name(walk_.items[walked.item]))));
            }
        }
        return layer_ids;
    }

    // Objects are made newest first.
    [[nodiscard]] std::size_t object_of(std::size_t index) const { return walk_.layers.size() - 1 - index; }

    Layer layer(std::size_t index, std::size_t composition, std::string id) {
        const WalkedLayer& walked = walk_.layers[index];
        const embedded::Layer& layer = project_.layers[index];
        const std::string which = "layer " + std::to_string(index + 1);
        Layer made;
        made.kind = kind_of(layer.kind);
        made.id = std::move(id);
        made.name = layer.name;
        if (walked.composition != composition) {
            differ(scene_, which + " is in another composition");
        }
        if (walked.object != nullptr) {
            made.object = object_of(index);
            SceneObject& object = handover_.objects[made.object];
            if (!is_object(made.kind, object.kind)) {
                differ(scene_, which + " is of another kind");
            }
            object.name = made.name;
            made.at = object.at;
        } else {
            if (layer.source_item != project_.items[walked.item + 1].id) {
                differ(scene_, which + " shows another item");
            }
            made.item = walked.item;
            made.at = place_of(walk_.items[walked.item]);
        }
        made.blend = blend_of(layer.transfer);
        made.three_d = layer.is_3d();
        made.aimed = layer.looks_at_point_of_interest();
        made.light = kind_of(layer.light_type);
        made.timed = layer.timing_set;
        if (made.timed) {
            made.start = frames_of(layer.offset, handover_.shot.rate_fps);
            made.in = made.start + frames_of(layer.in_point, handover_.shot.rate_fps);
            made.length = frames_of(layer.duration, handover_.shot.rate_fps);
        }
        if (layer.center) {
            made.center_px = {layer.center->x, layer.center->y};
        }
        made.tracks = imported_tracks(layer, handover_.shot.rate_fps);
        return made;
    }

    [[nodiscard]] diagnostic::Place place_of(const WalkedItem& walked) const {
        switch (walked.origin) {
            case Origin::composition_folder:
            case Origin::composition:
                return scene_.place_of(walked.composition);
            case Origin::footage:
                return scene_.place_of(walked.file);
            case Origin::special_passes:
            case Origin::objects_composition:
                break;
        }
        return {scene_.file};
    }

    static const char* id_kind(Origin origin) {
        switch (origin) {
            case Origin::composition_folder:
                return "folder";
            case Origin::composition:
                return "composition";
            case Origin::footage:
                return "footage";
            case Origin::special_passes:
                return "passes";
            case Origin::objects_composition:
                break;
        }
        return "objects";
    }

    // Of footage the last name of its path, which stays when the job moves to another disk.
    [[nodiscard]] std::string id_name(const WalkedItem& walked) const {
        if (walked.composition != nullptr) {
            return walked.composition->name != nullptr ? walked.composition->name : "";
        }
        if (walked.file == nullptr) {
            return {};
        }
        return std::string(text::last_component(scene_.written_path(*walked.file), ":\\/"));
    }

    const SceneSource& scene_;
    const SceneWalk& walk_;
    const embedded::Project& project_;
    StableIds& ids_;
    Handover& handover_;
    std::vector<StableIds::Key> keys_;  // of the items
};

}  // namespace

void add_project(const SceneSource& scene, const SceneWalk& walk, const embedded::Project& project,
                 StableIds& ids, Handover& handover) {
    ProjectReader(scene, walk, project, ids, handover).read();
}

}  // namespace handover
