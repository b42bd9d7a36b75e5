#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "diagnostic/diagnostic.h"
#include "embedded/project.h"
#include "render/compositing.h"

// What one frame of a composition shows, as a list of steps.

namespace render {

/// Pixels of the outermost composition: `left`, `top` included, `right`, `bottom` not.
struct Area {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = 0;
    std::int64_t bottom = 0;

    [[nodiscard]] bool empty() const { return left >= right || top >= bottom; }
    friend bool operator==(const Area&, const Area&) = default;
};

[[nodiscard]] Area common_area(const Area& a, const Area& b);

/// Where something of this size lies whose centre is that of `around`. Half a pixel that is over goes to the
/// right and to the bottom: a host would blur the picture instead.
[[nodiscard]] Area centred_in(const Area& around, std::int64_t width_px, std::int64_t height_px);

struct PlanStep {
    enum class Kind : std::uint8_t {
        begin,    ///< an empty picture of a nested composition, which the next steps are laid on
        footage,  ///< one picture is laid on the present one
        end,      ///< the present picture is laid on the one around it
    };
    Kind kind = Kind::footage;
    Blend blend = Blend::normal;  ///< of footage and end
    bool first = false;           ///< of footage and end: nothing was laid on that picture before
    embedded::Id footage = 0;     ///< of footage
    std::string file = {};        ///< of footage: the file; empty for placeholders
    Area around = {};             ///< the composition's place
    Area visible = {};            ///< what may change; of begin and end the part of `around` that is seen
};

struct FramePlan {
    std::vector<PlanStep> steps;
    std::size_t depth = 1;  ///< how many pictures there are at most at one time
    std::optional<diagnostic::Diagnostic> error;
};

/// How many frames the composition has: those that begin before its end, at least one.
[[nodiscard]] std::int64_t frame_count(const embedded::Composition& composition);

/// The layers that frame `frame` of the composition shows, from bottom to top, nested compositions in their
/// places. Layers without a picture, and those whose time is over, are not in it: footage of files is seen
/// from its first to its last file, and a file that is missing in between is replaced by the one before it,
/// as a host does. Errors: too_many_layers, compositions_too_deep.
[[nodiscard]] FramePlan plan_frame(const embedded::Project& project, embedded::Id composition,
                                   std::int64_t frame);

/// The file that a sequence shows at `index`, counted from 0, without its folder's existence being checked;
/// nothing outside the sequence.
[[nodiscard]] std::optional<std::string> sequence_file(const embedded::Footage& footage, std::int64_t index);

}  // namespace render
