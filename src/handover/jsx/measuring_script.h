#pragma once

#include "handover/jsx/jsx_script.h"
#include "handover/measuring.h"

namespace handover {

/// Writes the script that rebuilds what a scene's cameras need, in a folder of its own, and lets After
/// Effects say where points land and what colours come out. The script writes the answers beside itself, as a
/// table with the ending "-measured.tsv". docs/handover.md describes it. Same arguments, same bytes.
void write_measuring_script(const MeasuredProject& project, const Measuring& measuring,
                            const JsxOptions& options, const Sink& sink);

}  // namespace handover
