#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "embedded/project.h"
#include "handover/build_handover.h"

namespace handover {

/// A handover on its way from what is imported to what the scene says.
class CorrectionRun {
  public:
    CorrectionRun(const SceneSource& its_scene, const embedded::Project& its_project,
                  const HandoverOptions& its_options, Handover& its_handover)
        : scene(its_scene), project(its_project), options(its_options), handover(its_handover) {}

    [[nodiscard]] bool wants(Correction correction) const { return options.left_out.count(correction) == 0; }

    /// Counts `count` more places that the correction changed; the first sentence stays as the example.
    void changed(Correction correction, const std::string& example, std::int64_t count = 1) {
        AppliedCorrection& applied = applied_.at(static_cast<std::size_t>(correction));
        if (applied.count == 0) {
            applied.example = example;
        }
        applied.count += count;
    }

    /// Puts what was changed into the handover, in the order of the corrections.
    void finish() {
        for (std::size_t i = 0; i < kCorrections; ++i) {
            if (applied_[i].count > 0) {
                applied_[i].correction = static_cast<Correction>(i);
                handover.corrections.push_back(applied_[i]);
            }
        }
    }

    const SceneSource& scene;
    const embedded::Project& project;
    const HandoverOptions& options;
    Handover& handover;

  private:
    std::array<AppliedCorrection, kCorrections> applied_{};
};

// The corrections, in the order in which they are made.

/// The rate that the user gives: of compositions and footage.
void correct_frame_rate(CorrectionRun& run);
/// Pixel aspect with all its digits, and the camera's composition with square pixels.
void correct_aspect(CorrectionRun& run);
/// The names of items and layers.
void correct_names(CorrectionRun& run);
/// Sequences at the frames of their numbers.
void correct_plates(CorrectionRun& run);
/// Cones of spots, anchors of nulls.
void correct_layers(CorrectionRun& run);
/// What cameras, lights and nulls do between and at their keys.
void correct_motion(CorrectionRun& run);
/// Keys that say nothing new.
void drop_key_noise(CorrectionRun& run);

}  // namespace handover
