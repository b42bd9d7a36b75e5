#pragma once

// What is open about After Effects, and what a measured table says to it.

#include <optional>
#include <string>
#include <vector>

#include "handover/measuring.h"
#include "handover/proof/measured_table.h"

namespace proof {

enum class Question {
    space_aspect,      ///< whether compositions stretch their space as wide as their pixels
    bank_sense,        ///< where a positive angle about z turns a camera
    new_camera,        ///< whether a new camera turns to its point of interest
    partial_add,       ///< what Add gives where something is half covered
    partial_multiply,  ///< what Multiply gives there
    texture_alpha,     ///< how the colour of a texture is taken
};

enum class Verdict {
    settled,  ///< After Effects does one of the things that are thought of
    another,  ///< it does something else
    untold,   ///< the table does not say
};

struct QuestionAnswer {
    Question question = Question::space_aspect;
    const char* name = "";  ///< of the question, stable: "space-aspect"
    const char* asks = "";  ///< for people: "what a unit of 3D space is where pixels are not square"
    Verdict verdict = Verdict::untold;
    std::string answer;  ///< stable: "pixels"; empty unless it is settled
    std::string text;    ///< for people: what the answer means, what was measured, or why it is not told
    /// Not what the written model, the preview or the plug-in take it to be.
    bool contradicts = false;
};

/// One answer for each question, in their order.
[[nodiscard]] std::vector<QuestionAnswer> answers_in(const MeasuredTable& table,
                                                     const std::optional<handover::TextureTrial>& texture);

}  // namespace proof
