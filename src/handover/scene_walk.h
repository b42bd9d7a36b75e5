#pragma once

#include <vector>

#include "composition/model/project_settings.h"
#include "handover/handover.h"

namespace handover {

/// Why the importer makes an item of the project.
enum class Origin {
    composition_folder,   ///< around a composition
    composition,          ///< of the scene
    footage,              ///< a footage entry
    special_passes,       ///< the folder of footage that belongs to no composition
    objects_composition,  ///< "Camera+Light"
};

/// An item of the project that the importer makes from a scene.
struct WalkedItem {
    Origin origin = Origin::composition_folder;
    std::size_t folder = kNone;                 ///< the walked item around it
    const CComposition* composition = nullptr;  ///< its record, for the first two
    const CFileItem* file = nullptr;            ///< its record, if it is footage

    [[nodiscard]] ItemKind kind() const;
};

struct WalkedLayer {
    std::size_t composition = 0;           ///< in the order in which compositions are made
    std::size_t item = kNone;              ///< the walked item that it shows
    const CSceneObject* object = nullptr;  ///< of a camera, light or null
};

/// What the importer makes from a scene, each list in the order in which it is made.
struct SceneWalk {
    std::vector<WalkedItem> items;
    std::vector<WalkedLayer> layers;
    std::vector<const CSceneObject*> objects;  ///< in the order of the file
    std::size_t compositions = 0;
    std::size_t footage = 0;
};

/// Walks the scene as the importer does: the compositions depth first in the order of the file, footage that
/// belongs to none, and the objects, newest first.
[[nodiscard]] SceneWalk walk_scene(const tagProjectSettings& settings);

}  // namespace handover
