#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "handover/handover.h"
#include "handover/jsx/jsx_text.h"

namespace handover {

struct JsxOptions {
    /// The script names everything that it will touch, and asks.
    bool undo_safe = false;
    /// Absolute: relative paths of footage and of the scene count from here. Empty: from the script's own
    /// folder, as in a package.
    std::string working_folder;
    /// At least 1. The script has the same bytes whatever their number.
    std::size_t threads = 1;
};

/// Writes the script that rebuilds the handover's project in any After Effects from CS3 on: ECMAScript 3 in
/// ASCII. The scene's numbers go through `sink` in pieces, in the order of the handover. Numbers that are not
/// finite, and keys that are not in ascending order, are left out, and the script's summary says so. Same
/// handover, same bytes.
void write_jsx(const Handover& handover, const JsxOptions& options, const Sink& sink);

/// What another script does with the same project.
struct JsxTask {
    std::vector<std::string> head;                     ///< the lines that say what the script is
    std::function<void(JsxText& text)> write_runtime;  ///< functions besides those that rebuild the project
    std::function<void(JsxText& text)> write_run;      ///< after the scene: what to do
};

/// Writes a script that has all that rebuilds the project, and does `task` with it. Otherwise as write_jsx().
void write_jsx_task(const Handover& handover, const JsxOptions& options, const JsxTask& task,
                    const Sink& sink);

}  // namespace handover
