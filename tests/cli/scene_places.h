#pragma once

#include <string>
#include <vector>

#include "cli/scene/scene_check.h"
#include "support/scene_folder.h"

// What the tests of the checks of scenes share.

inline const std::string kHead =
    "VORTAN XR COMPOSITION\nRESOLUTION 640 360 FROM 1 TO 8 RANGE 8\nFPS 25 ";  // ends in line 3, column 8
// A composition of the size of the pictures that SceneFolder makes.
inline const std::string kSmallHead = "VORTAN XR COMPOSITION\nRESOLUTION 4 4 FROM 1 TO 8 RANGE 8\nFPS 25 ";
inline const std::string kScene = kHead + "COMPOSITION NRM \"Main\" { }\n";  // objects begin in line 4

inline std::vector<cli::Diagnostic> warnings_of(const SceneFolder& folder, const std::string& text) {
    return cli::scene_warnings(cli::read_scene(folder.scene(text)));
}

inline std::vector<cli::Diagnostic> warnings_of(const std::string& text) {
    return warnings_of(SceneFolder(), text);
}

using Places = std::vector<std::string>;

/// "code line:column", one for each warning.
inline Places places_of(const std::vector<cli::Diagnostic>& warnings) {
    Places places;
    for (const cli::Diagnostic& warning : warnings) {
        places.push_back(std::string(warning.code.name()) + ' ' + std::to_string(*warning.at.line) + ':' +
                         std::to_string(*warning.at.column));
    }
    return places;
}

/// The warnings of one code.
inline std::vector<cli::Diagnostic> warnings_of_code(const std::string& text, cli::ToolCode code) {
    std::vector<cli::Diagnostic> warnings = warnings_of(text);
    std::erase_if(warnings, [&](const cli::Diagnostic& one) { return !(one.code == code); });
    return warnings;
}
