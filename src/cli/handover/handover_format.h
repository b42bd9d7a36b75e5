#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "handover/handover.h"

namespace cli {

/// A kind of file that a handover is written as.
struct HandoverFormat {
    const char* name;       ///< "jsx"
    const char* extension;  ///< of such files: ".jsx"
    handover::Target target;
};

/// What the user chooses about all of them.
struct HandoverFormatOptions {
    double cut_angle_degrees = 60;
    double scale_m = 0.01;   ///< 3D programs: metres for each of the scene's units
    bool undo_safe = false;  ///< scripts: say what will be touched, and ask
};

[[nodiscard]] const std::vector<HandoverFormat>& handover_formats();
/// Null for any other text.
[[nodiscard]] const HandoverFormat* handover_format_named(std::string_view name);

/// Writes the handover. Throws std::runtime_error if it cannot be written in this format.
void write_handover(const handover::Handover& handover, const HandoverFormat& format,
                    const HandoverFormatOptions& options, const handover::Sink& out);

/// Where what is written differs from the scene: the handover's losses that hold for this format, and its
/// own.
[[nodiscard]] std::vector<diagnostic::Diagnostic> losses_of(const handover::Handover& handover,
                                                            const HandoverFormat& format,
                                                            const HandoverFormatOptions& options);

/// The losses of all formats. What several of them lose in the same place is one, with all its targets.
[[nodiscard]] std::vector<handover::Loss> losses_of_all(const handover::Handover& handover,
                                                        const HandoverFormatOptions& options);

}  // namespace cli
