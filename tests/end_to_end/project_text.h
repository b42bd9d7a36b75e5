#pragma once

// A project as text, for comparison with text written by hand.

#include <string>

#include "embedded/project.h"

/// The items of the project window in the order of their creation, indented by two blanks for each level:
///   folder "Main"
///     comp "Main" 720x576 106/100 50@25 2500/100
///     file plate.tif 720x576 alpha 1 fields 1/0 pixels 106/100
///     sequence glow0000.tif 720x576 0-7 at 25.0 alpha 1 fields 1/0 pixels 106/100
///     missing dust.tif 720x576 8@25 alpha 0 fields 0/0 pixels 100/100
///     module cloth.txl 64x64 alpha 0 fields 0/0 pixels 100/100
/// Footage from files is named by its file; the number after "alpha" is the interpretation's flags.
std::string items_text(const embedded::Project& project);

/// The layers of one composition, top to bottom:
///   camera "Camera" keys 3 at 1@24 for 8@24
///   file haze.tga mode 2 at 1@24 for 8@24
///   comp "Held back" mode 4
/// "at" and "for" appear if the timing was set. "keys" is the number of keys of the streams that have any,
/// which all have the same number.
std::string layers_text(const embedded::Project& project, const std::string& composition);
