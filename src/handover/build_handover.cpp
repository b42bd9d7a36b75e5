#include "handover/build_handover.h"

#include "handover/correction_run.h"
#include "handover/exact_aspect.h"
#include "handover/host_losses.h"
#include "handover/imported_project.h"
#include "handover/scene_objects.h"
#include "handover/scene_walk.h"
#include "handover/stable_id.h"

namespace handover {
namespace {

Fields scene_fields(A_long fields) {
    if (fields == kFieldsNone) {
        return Fields::none;
    }
    return fields == kFieldsEven ? Fields::upper_first : Fields::lower_first;
}

Shot shot_of(const SceneSource& scene) {
    const tagProjectSettings& settings = scene.settings;
    Shot shot;
    shot.file = scene.file;
    shot.width_px = settings.width;
    shot.height_px = settings.height;
    shot.pixel_aspect = exact_aspect(settings.aspect);
    shot.from = settings.from;
    shot.to = settings.to;
    shot.range = settings.range;
    shot.written_fps = settings.fps;
    shot.rate_fps = settings.fps;
    shot.local = settings.local != 0;
    shot.fields = scene_fields(settings.fields);
    return shot;
}

Handover read(const SceneSource& scene, const embedded::Project& project) {
    Handover handover;
    handover.version = Version::imported;
    handover.shot = shot_of(scene);
    const SceneWalk walk = walk_scene(scene.settings);
    StableIds ids(scene.file);
    handover.objects = scene_objects(scene, walk, ids, handover.losses);
    add_project(scene, walk, project, ids, handover);
    return handover;
}

}  // namespace

Handover imported_handover(const SceneSource& scene, const embedded::Project& project) {
    Handover handover = read(scene, project);
    add_host_losses(scene, handover);
    return handover;
}

Handover corrected_handover(const SceneSource& scene, const embedded::Project& project,
                            const HandoverOptions& options) {
    Handover handover = read(scene, project);
    handover.version = Version::corrected;
    CorrectionRun run(scene, project, options, handover);
    correct_frame_rate(run);
    correct_aspect(run);
    correct_names(run);
    correct_plates(run);
    correct_motion(run);
    correct_layers(run);
    drop_key_noise(run);
    run.finish();
    add_host_losses(scene, handover);
    return handover;
}

}  // namespace handover
