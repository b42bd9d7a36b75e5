#pragma once

#include <string>

/// What a composition file made for measuring holds.
struct SceneShape {
    int objects = 0;          ///< cameras, lights and nulls in turn
    int keys_per_object = 0;  ///< one a frame, from frame 0
    int nesting = 1;          ///< compositions, each inside the one before, the root counted
    int layers = 0;           ///< pictures in the innermost composition, none of which exists
};

/// The text of such a file. The same shape gives the same bytes on every machine.
[[nodiscard]] std::string composition_text(const SceneShape& shape);
