#pragma once

#include <functional>
#include <string>

#include "composition/model/project_settings.h"
#include "embedded/project.h"
#include "handover/handover.h"

namespace handover {

/// A scene as the importer reads it, and where its file says what.
struct SceneSource {
    std::string file;  ///< as the user named it
    const tagProjectSettings& settings;
    /// Of a setting's word, "ASPECT".
    std::function<diagnostic::Place(const char* word)> place_of_setting;
    /// Of a CComposition, a CFileItem or a CSceneObject of `settings`.
    std::function<diagnostic::Place(const void* record)> place_of;
    /// Of a key, by its index in `keys`.
    std::function<diagnostic::Place(const CSceneObject& object, std::size_t key)> place_of_key;
    /// The path of a footage entry as the scene writes it, any bytes.
    std::function<std::string(const CFileItem& file)> written_path;
};

/// Describes the project that the plug-in has built from the scene in a current host; `project` is all of it.
/// Throws std::runtime_error if the project does not come from this scene, as after an import that broke off.
[[nodiscard]] Handover imported_handover(const SceneSource& scene, const embedded::Project& project);

/// The same with every correction but those left out. Each is in `corrections` if it changed anything.
[[nodiscard]] Handover corrected_handover(const SceneSource& scene, const embedded::Project& project,
                                          const HandoverOptions& options);

}  // namespace handover
