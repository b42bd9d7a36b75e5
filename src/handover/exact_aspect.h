#pragma once

namespace handover {

/// The shortest decimal number that reads as this pixel aspect, from 0.01 to 100: what the scene's author
/// wrote.
[[nodiscard]] double exact_aspect(float aspect);

}  // namespace handover
