#pragma once

// What After Effects was measured to do, against the scene and against the written model.

#include <cstdint>
#include <string>
#include <vector>

#include "composition/model/project_settings.h"
#include "handover/measuring.h"
#include "handover/proof/comparison.h"
#include "handover/proof/landing.h"
#include "handover/proof/measured_table.h"
#include "handover/proof/open_questions.h"

namespace proof {

/// How far a written model is from what was measured.
struct ModelDistance {
    std::string model;      ///< "corrected, stretched"
    double largest_px = 0;  ///< of all points that were compared; infinite if the model loses one
};

struct MeasuredTarget {
    std::string target;  ///< "corrected"
    bool judged = false;
    std::int64_t compared = 0;
    std::int64_t missing = 0;  ///< in the scene's picture, and not measured
    double largest_px = 0;
    double mean_px = 0;
    double frame = 0;  ///< of the largest
    Landing truth;
    Landing landed;
    std::vector<ModelDistance> models;

    [[nodiscard]] bool meets_goal() const;
};

struct MeasuredCameraResult {
    std::string name;
    std::int64_t moments = 0;
    std::vector<MeasuredTarget> targets;  ///< corrected, then imported
};

struct MeasuredResult {
    std::vector<MeasuredCameraResult> cameras;
    std::vector<QuestionAnswer> answers;

    /// What is corrected is where the scene has it.
    [[nodiscard]] bool meets_goal() const;
    /// Nothing that is settled contradicts what this system takes After Effects to do.
    [[nodiscard]] bool is_as_written() const;
};

/// Why the table cannot be judged by this scene; an empty reason if it can.
[[nodiscard]] TableRefusal unfit(const MeasuredTable& table, const handover::Measuring& plan);

/// Compares a table that is fit for the plan. `models` are those of the imported and the corrected project.
[[nodiscard]] MeasuredResult judge(const MeasuredTable& table, const handover::Measuring& plan,
                                   const tagProjectSettings& settings,
                                   const std::vector<ProofTarget>& models);

}  // namespace proof
