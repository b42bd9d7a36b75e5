#include "handover/proof/file_targets.h"

#include <memory>

#include "handover/proof/gltf_model.h"
#include "handover/proof/usda_model.h"

namespace proof {
namespace {

constexpr const char* kNoSuchCamera = "the file has no camera of this id";

GltfPicture picture_of(const handover::Handover& handover) {
    return {static_cast<double>(handover.shot.width_px), static_cast<double>(handover.shot.height_px),
            static_cast<double>(handover.shot.from), handover.shot.rate_fps};
}

ProofTarget gltf_target(const handover::Handover& handover, const std::shared_ptr<const GltfFile>& file,
                        bool animates_angle) {
    ProofTarget target;
    target.name = animates_angle ? "glTF" : "glTF, without KHR_animation_pointer";
    target.judged = animates_angle;
    if (!animates_angle) {
        target.suspects = {Cause::view_angle};
    }
    target.camera = [&handover, file, animates_angle](std::size_t object, const std::set<Cause>& without,
                                                      std::string& problem) {
        auto camera = file->camera(handover.objects.at(object).id, picture_of(handover),
                                   {animates_angle || without.contains(Cause::view_angle)});
        if (camera == nullptr) {
            problem = kNoSuchCamera;
        }
        return camera;
    };
    target.position = [&handover, file](std::size_t object, double frame) {
        return file->position(handover.objects.at(object).id, frame, picture_of(handover));
    };
    return target;
}

}  // namespace

std::vector<ProofTarget> gltf_targets(const handover::Handover& handover, std::string_view bytes) {
    const std::shared_ptr<const GltfFile> file = read_glb(bytes);
    std::vector<ProofTarget> targets{gltf_target(handover, file, true)};
    if (file->uses_animation_pointer()) {
        targets.push_back(gltf_target(handover, file, false));
    }
    return targets;
}

std::vector<ProofTarget> usda_targets(const handover::Handover& handover, std::string_view text) {
    const std::shared_ptr<const UsdaFile> file = read_usda(text);
    ProofTarget target;
    target.name = "USD";
    target.judged = true;
    target.camera = [&handover, file](std::size_t object, const std::set<Cause>& /*without*/,
                                      std::string& problem) {
        auto camera =
            file->camera(handover.objects.at(object).id, handover.shot.width_px, handover.shot.height_px);
        if (camera == nullptr) {
            problem = kNoSuchCamera;
        }
        return camera;
    };
    target.position = [&handover, file](std::size_t object, double frame) {
        return file->position(handover.objects.at(object).id, frame);
    };
    return {target};
}

}  // namespace proof
