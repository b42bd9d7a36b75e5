#pragma once

#include <span>

namespace cli {

/// What the tools tell beside the reading errors of composition/read/read_error.h.
enum class Code {
    // Errors: the file cannot be looked at, is none that the plug-in is offered, or its reader has a defect.
    cannot_read,
    not_importable,
    unsound_result,
    // Warnings.
    footage_missing,
    footage_unreadable,
    footage_path_unread,
    sequence_gap,
    sequence_single_frame,
    sequence_without_number,
    value_changed,
    aspect_cut,
    name_cut,
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
};

struct CodeRow {
    Code code;
    const char* name;     ///< stable: "footage-missing"
    const char* meaning;  ///< one sentence
};

/// Every code, in the order of the enumeration.
std::span<const CodeRow> code_table();

const char* code_name(Code code);

/// Whether a file to which this happens is refused.
bool is_error(Code code);

}  // namespace cli
