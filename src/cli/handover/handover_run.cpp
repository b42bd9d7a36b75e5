#include "cli/handover/handover_run.h"

#include <memory>
#include <stdexcept>
#include <unordered_map>

#include "cli/project/import_run.h"
#include "embedded/host.h"

namespace cli {
namespace {

using handover::Version;

Place place_of(const SceneReading& reading, const TextPosition& at) {
    return {reading.file, at.offset_bytes, at.line, at.column};
}

// Where a record of the scene is named. Shared, because a std::function is copied.
struct Places {
    std::unordered_map<const void*, TextPosition> names;
    std::unordered_map<const CSceneObject*, const SceneBlock*> objects;
    std::unordered_map<const CFileItem*, const SceneFootage*> footage;
};

std::shared_ptr<const Places> places_in(const SceneFacts& facts) {
    auto places = std::make_shared<Places>();
    for (const SceneBlock& composition : facts.compositions) {
        places->names.emplace(composition.composition, composition.name_at);
    }
    for (const SceneBlock& object : facts.objects) {
        places->names.emplace(object.object, object.name_at);
        places->objects.emplace(object.object, &object);
    }
    for (const SceneFootage& footage : facts.footage) {
        places->names.emplace(footage.file, footage.path_at);
        places->footage.emplace(footage.file, &footage);
    }
    return places;
}

// Imports the scene and has `describe` look at the project; what goes wrong is in `result`.
template <typename Result, typename Describe>
void describe_import(const SceneReading& reading, const FoundBundle& bundle, Result& result,
                     const Describe& describe) {
    if (reading.error) {
        result.diagnostics.push_back(*reading.error);
        result.code = reading.code;
        return;
    }
    const embedded::HostOptions host_options = host_of_kind(kUsualHost);
    embedded::Host host(host_options);
    ImportRun run = import_scene(host, host_options, bundle, reading);
    result.code = run.code;
    if (run.code != ExitCode::fine) {
        result.diagnostics = std::move(run.diagnostics);
        result.problems = std::move(run.problems);
        return;
    }
    try {
        describe(source_of(reading), host.project());
    } catch (const std::runtime_error& error) {
        result.problems.emplace_back(error.what());
        result.code = ExitCode::refused;
        return;
    }
    if (!run.missing_footage.empty()) {
        result.code = ExitCode::footage_missing;
    }
}

}  // namespace

handover::SceneSource source_of(const SceneReading& reading) {
    const std::shared_ptr<const Places> places = places_in(reading.facts);
    const auto whole_file = [&reading] { return Place{reading.file}; };
    return {reading.file,
            *reading.settings,
            [&reading, whole_file](const char* word) {
                const SceneKeyword* const setting = find_keyword(reading.facts.settings, word);
                return setting != nullptr ? place_of(reading, setting->at) : whole_file();
            },
            [&reading, places, whole_file](const void* record) {
                const auto found = places->names.find(record);
                return found != places->names.end() ? place_of(reading, found->second) : whole_file();
            },
            [&reading, places, whole_file](const CSceneObject& object, std::size_t key) {
                const auto found = places->objects.find(&object);
                return found != places->objects.end() && key < found->second->keys.size()
                           ? place_of(reading, found->second->keys[key].at())
                           : whole_file();
            },
            [places](const CFileItem& file) {
                const auto found = places->footage.find(&file);
                return found != places->footage.end() ? found->second->written
                       : file.path != nullptr         ? std::string(file.path)
                                                      : std::string();
            }};
}

HandedOver hand_over(const SceneReading& reading, const FoundBundle& bundle, Version version,
                     const handover::HandoverOptions& options) {
    HandedOver result;
    result.file = reading.file;
    describe_import(reading, bundle, result,
                    [&](const handover::SceneSource& source, const embedded::Project& project) {
                        result.handover = version == Version::imported
                                              ? handover::imported_handover(source, project)
                                              : handover::corrected_handover(source, project, options);
                    });
    return result;
}

HandedOverBoth hand_over_both(const SceneReading& reading, const FoundBundle& bundle,
                              const handover::HandoverOptions& options) {
    HandedOverBoth result;
    describe_import(reading, bundle, result,
                    [&](const handover::SceneSource& source, const embedded::Project& project) {
                        result.imported = handover::imported_handover(source, project);
                        result.corrected = handover::corrected_handover(source, project, options);
                    });
    return result;
}

}  // namespace cli
