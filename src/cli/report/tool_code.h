#pragma once

#include <array>
#include <optional>
#include <string>

#include "diagnostic/diagnostic.h"

namespace cli {

/// What the tools say about a composition file beside the errors of its reader.
enum class ToolCode {
    // Errors: the file cannot be looked at, the plug-in is not offered it, or its reader has a defect.
    cannot_read,
    not_importable,
    internal_error,
    // Losses, warnings and notes; and footage_unreadable, at which an import ends.
    footage_missing,
    footage_unreadable,
    footage_path_unread,
    sequence_gap,
    sequence_single_frame,
    sequence_without_number,
    sequence_short,
    sequence_offset,
    sequence_stray,
    sequence_mixed,
    footage_size,
    premul_without_alpha,
    alpha_uniform,
    value_changed,
    aspect_cut,
    name_cut,
    name_not_utf8,
    light_kind_changed,
    shadow_kind_not_sent,
    angle_not_sent,
    key_outside_range,
    key_out_of_order,
    key_repeated,
    field_of_view,
    range_reversed,
    layer_past_end,
    word_ignored,
    text_after_end,
    outside_host_range,
    name_equal_after_cut,
    name_repeated,
    keys_all_equal,
    hold_drifts,
    path_bends,
    aim_undefined,
    turn_too_far,
    roll_reverses,
    aspect_turns_camera,
};

using ToolCodeTable = std::array<diagnostic::CodeRow<ToolCode>, 41>;

/// Every code, in the order of the enumeration.
[[nodiscard]] const ToolCodeTable& tool_code_table();

[[nodiscard]] const diagnostic::CodeInfo& code_info(ToolCode code);

/// The error for a file whose reader returned a result that breaks one of its invariants: a defect of this
/// program, whatever the file holds. Nothing when `violation` is nothing.
[[nodiscard]] std::optional<diagnostic::Diagnostic> internal_error(
    const std::string& file, const std::optional<std::string>& violation);

}  // namespace cli
