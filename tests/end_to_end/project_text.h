#pragma once

// A project as text that is compared with text written by hand.

#include <string>

#include "embedded/project.h"

/// The project window, two blanks a level, in the order of making:
///   folder "Main"
///     comp "Main" 720x576 106/100 50@25 2500/100
///     file plate.tif 720x576 alpha 1 fields 1/0 pixels 106/100
///     sequence glow0000.tif 720x576 0-7 at 25.0 alpha 1 fields 1/0 pixels 106/100
///     missing dust.tif 720x576 8@25 alpha 0 fields 0/0 pixels 100/100
///     module cloth.txl 64x64 alpha 0 fields 0/0 pixels 100/100
/// Footage from files goes by the file that was named; "alpha" are the interpretation's flags.
std::string items_text(const embedded::Project& project);

/// The layers of one composition, top to bottom:
///   camera "Camera" keys 3 at 1@24 for 8@24
///   file haze.tga mode 2 at 1@24 for 8@24
///   comp "Held back" mode 4
/// "at" and "for" where the timing was set. Keys: of the streams that have some, which all have as many.
std::string layers_text(const embedded::Project& project, const std::string& composition);
