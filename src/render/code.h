#pragma once

#include <cstdint>

#include "diagnostic/code.h"

namespace render {

/// What a frame does not show as the scene says, and why no frame is made.
enum class Code : std::uint8_t {
    placeholder_shown,
    picture_unreadable,
    picture_too_large,
    frame_too_large,
    too_many_layers,
    compositions_too_deep,
};

[[nodiscard]] const diagnostic::CodeInfo& code_info(Code code);

}  // namespace render
